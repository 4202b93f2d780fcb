#include "imaging/cImageList.h"

#include "imaging/cListImages.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::imaging {

cImageList::cImageList()
    : Dispatch(*server::TypeLibrary::Get().FindClass("cImageList")),
      door_(std::make_shared<IItemData>()) {}

cImageList::cImageList(std::shared_ptr<IItemData> door, int32_t id) : cImageList() {
  if (door) door_ = std::move(door);
  id_ = id;
}

void cImageList::Register() {
  server::Registry::Instance().Register("cImageList",
                                        [] { return std::make_shared<cImageList>(); });
}

std::shared_ptr<cListImages> cImageList::get_Images() const {
  auto images =
      std::dynamic_pointer_cast<cListImages>(door_->get_ClassDataObject(dnListImages, id_));
  if (!images) IItemData::RaiseStale(dnListImages);
  return images;
}

String cImageList::get_Key() const {
  return door_->get_ClassDataString(dnListKey, id_);
}
void cImageList::put_Key(String v) {
  door_->put_ClassDataString(dnListKey, id_, std::move(v));
}
int32_t cImageList::get_Index() const {
  return door_->get_ClassDataLong(dnListIndex, id_);
}
void cImageList::put_Index(int32_t v) {
  door_->put_ClassDataLong(dnListIndex, id_, v);
}
int32_t cImageList::get_Width() const {
  return get_Images()->ImageWidth();
}
int32_t cImageList::get_Height() const {
  return get_Images()->ImageHeight();
}
int32_t cImageList::get_MaxImages() const {
  return get_Images()->get_MaxImages();
}

const server::Bindings* cImageList::Bound() const {
  static const server::Bindings bindings =
      server::Binder<cImageList>(Info())
          .Get("Images", &cImageList::get_Images)
          .Property("Key", &cImageList::get_Key, &cImageList::put_Key)
          .Property("Index", &cImageList::get_Index, &cImageList::put_Index)
          .Get("Width", &cImageList::get_Width)
          .Get("Height", &cImageList::get_Height)
          .Get("MaxImages", &cImageList::get_MaxImages)
          .Done();
  return &bindings;
}

}  // namespace vantor::imaging
