#pragma once
// One image of an image list, as a light handle: the door to its list and
// the image's identity, nothing else. Its key, tag and position live in the
// list; a handle whose image has been removed (or whose list was cleared)
// raises 1962 on every member.
#include <cstdint>
#include <memory>

#include "imaging/IItemData.h"
#include "runtime/String.h"
#include "server/Dispatch.h"

namespace vantor::imaging {

class cListImage : public server::Dispatch {
 public:
  // A handle on nothing, as the class factory makes one.
  cListImage();
  cListImage(std::shared_ptr<IItemData> door, int32_t id);
  static void Register();

  // Key and tag are text kept beside the image; a new key must be free in
  // the list (1963 otherwise), and an empty one leaves the image without.
  String get_Key() const;
  void put_Key(String v);
  // The 1-based position; a new one moves the image there.
  int32_t get_Index() const;
  void put_Index(int32_t v);
  String get_Tag() const;
  void put_Tag(String v);
  int32_t get_Width() const;
  int32_t get_Height() const;

  int32_t ID() const { return id_; }

 protected:
  const server::Bindings* Bound() const override;

 private:
  std::shared_ptr<IItemData> door_;
  int32_t id_ = 0;
};

}  // namespace vantor::imaging
