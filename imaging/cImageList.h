#pragma once
// One list of an image-list collection, as a light handle: the door to the
// collection and the list's identity. Its key and position live in the
// collection, its images in the `cListImages` the collection keeps for it.
// Once the list is removed (or the collection cleared) the handle raises
// 1962: "Invalid Key" from Key, "Invalid Index" from the rest.
#include <cstdint>
#include <memory>

#include "imaging/IItemData.h"
#include "runtime/String.h"
#include "server/Dispatch.h"

namespace vantor::imaging {

class cListImages;

class cImageList : public server::Dispatch {
 public:
  // A handle on nothing, as the class factory makes one.
  cImageList();
  cImageList(std::shared_ptr<IItemData> door, int32_t id);
  static void Register();

  std::shared_ptr<cListImages> get_Images() const;
  // A new key must be free among the lists (1963 otherwise); an empty one
  // leaves the list without.
  String get_Key() const;
  void put_Key(String v);
  // The 1-based position; a new one moves the list there.
  int32_t get_Index() const;
  void put_Index(int32_t v);
  int32_t get_Width() const;
  int32_t get_Height() const;
  int32_t get_MaxImages() const;

  int32_t ID() const { return id_; }

 protected:
  const server::Bindings* Bound() const override;

 private:
  std::shared_ptr<IItemData> door_;
  int32_t id_ = 0;
};

}  // namespace vantor::imaging
