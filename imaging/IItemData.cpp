#include "imaging/IItemData.h"

#include "imaging/ListErrors.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::imaging {

IItemData::IItemData() : Dispatch(*server::TypeLibrary::Get().FindClass("IItemData")) {}

IItemData::IItemData(std::shared_ptr<Source> source) : IItemData() {
  source_ = std::move(source);
}

void IItemData::Register() {
  server::Registry::Instance().Register("IItemData", [] { return std::make_shared<IItemData>(); });
}

void IItemData::RaiseStale(int32_t DataName) {
  switch (DataName) {
    case dnListKey:
      ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"ImageLists.Key", u"Invalid Key");
    case dnListIndex:
    case dnListImages:
      ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"ImageLists.Index", u"Invalid Index");
    default:
      ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"Images.Index");
  }
}

int32_t IItemData::get_ClassDataLong(int32_t DataName, int32_t oID) const {
  if (!source_) RaiseStale(DataName);
  return source_->ItemDataLong(DataName, oID);
}

void IItemData::put_ClassDataLong(int32_t DataName, int32_t oID, int32_t value) {
  if (!source_) RaiseStale(DataName);
  source_->SetItemDataLong(DataName, oID, value);
}

String IItemData::get_ClassDataString(int32_t DataName, int32_t oID) const {
  if (!source_) RaiseStale(DataName);
  return source_->ItemDataString(DataName, oID);
}

void IItemData::put_ClassDataString(int32_t DataName, int32_t oID, String value) {
  if (!source_) RaiseStale(DataName);
  source_->SetItemDataString(DataName, oID, value);
}

ObjectPtr IItemData::get_ClassDataObject(int32_t DataName, int32_t oID) const {
  if (!source_) RaiseStale(DataName);
  return source_->ItemDataObject(DataName, oID);
}

const server::Bindings* IItemData::Bound() const {
  static const server::Bindings bindings =
      server::Binder<IItemData>(Info())
          .Property("ClassDataLong", &IItemData::get_ClassDataLong, &IItemData::put_ClassDataLong)
          .Property("ClassDataString", &IItemData::get_ClassDataString,
                    &IItemData::put_ClassDataString)
          .Get("ClassDataObject", &IItemData::get_ClassDataObject)
          .Done();
  return &bindings;
}

}  // namespace vantor::imaging
