#pragma once
// The image-list control: invisible at run time, it holds named image lists
// for the other controls on its form. Its only members are About and
// ImageLists. It persists "Count", the number of lists, and each list as
// the ".lIL" stream under "Img1", "Img2"..., read back in that order.
#include <memory>

#include "imaging/cImageLists.h"
#include "server/PropertyBag.h"
#include "server/UserControl.h"

namespace vantor::imaging {

class USImageList : public server::UserControl {
 public:
  USImageList();
  ~USImageList() override;
  static void Register();

  std::shared_ptr<cImageLists> get_ImageLists() const { return imageLists_; }

 protected:
  void InitProperties() override;
  void ReadProperties(const server::PropertyBag& bag) override;
  void WriteProperties(server::PropertyBag& bag) override;
  void Terminate() override;
  const server::Bindings* Bound() const override;

 private:
  std::shared_ptr<cImageLists> imageLists_;
};

}  // namespace vantor::imaging
