#include "imaging/cListImage.h"

#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::imaging {

cListImage::cListImage()
    : Dispatch(*server::TypeLibrary::Get().FindClass("cListImage")),
      door_(std::make_shared<IItemData>()) {}

cListImage::cListImage(std::shared_ptr<IItemData> door, int32_t id) : cListImage() {
  if (door) door_ = std::move(door);
  id_ = id;
}

void cListImage::Register() {
  server::Registry::Instance().Register("cListImage",
                                        [] { return std::make_shared<cListImage>(); });
}

String cListImage::get_Key() const {
  return door_->get_ClassDataString(dnImageKey, id_);
}
void cListImage::put_Key(String v) {
  door_->put_ClassDataString(dnImageKey, id_, std::move(v));
}
int32_t cListImage::get_Index() const {
  return door_->get_ClassDataLong(dnImageIndex, id_);
}
void cListImage::put_Index(int32_t v) {
  door_->put_ClassDataLong(dnImageIndex, id_, v);
}
String cListImage::get_Tag() const {
  return door_->get_ClassDataString(dnImageTag, id_);
}
void cListImage::put_Tag(String v) {
  door_->put_ClassDataString(dnImageTag, id_, std::move(v));
}
int32_t cListImage::get_Width() const {
  return door_->get_ClassDataLong(dnImageWidth, id_);
}
int32_t cListImage::get_Height() const {
  return door_->get_ClassDataLong(dnImageHeight, id_);
}

const server::Bindings* cListImage::Bound() const {
  static const server::Bindings bindings =
      server::Binder<cListImage>(Info())
          .Property("Key", &cListImage::get_Key, &cListImage::put_Key)
          .Property("Index", &cListImage::get_Index, &cListImage::put_Index)
          .Property("Tag", &cListImage::get_Tag, &cListImage::put_Tag)
          .Get("Width", &cListImage::get_Width)
          .Get("Height", &cListImage::get_Height)
          .Done();
  return &bindings;
}

}  // namespace vantor::imaging
