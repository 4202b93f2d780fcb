#include "imaging/USImageList.h"

#include <string>
#include <vector>

#include "runtime/Error.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::imaging {

namespace {

String ListKey(int32_t n) {
  return u"Img" + FromUtf8(std::to_string(n));
}

}  // namespace

USImageList::USImageList()
    : UserControl(*server::TypeLibrary::Get().FindClass("USImageList")),
      imageLists_(std::make_shared<cImageLists>()) {}

USImageList::~USImageList() = default;

void USImageList::Register() {
  server::Registry::Instance().Register("USImageList",
                                        [] { return std::make_shared<USImageList>(); });
}

void USImageList::InitProperties() {
  imageLists_->Clear();
}

void USImageList::ReadProperties(const server::PropertyBag& bag) {
  imageLists_->Clear();
  const int32_t count = bag.ReadProperty(u"Count", Variant(int32_t{0})).ToLong();
  for (int32_t n = 1; n <= count; ++n) {
    const Variant value = bag.ReadProperty(ListKey(n));
    const SafeArray* bytes = value.Array();
    if (bytes == nullptr || bytes->ElementType() != vbByte) continue;
    // One list that does not read costs that list only.
    try {
      imageLists_->ImportImageList(bytes->Bytes(), u"");
    } catch (const Error&) {
      Err().Clear();
    }
  }
}

void USImageList::WriteProperties(server::PropertyBag& bag) {
  const int32_t count = imageLists_->get_Count();
  bag.WriteProperty(u"Count", Variant(count), Variant(int32_t{0}));
  for (int32_t n = 1; n <= count; ++n) {
    std::vector<uint8_t> stream;
    try {
      imageLists_->ExportImageList(Variant(n), stream);
    } catch (const Error&) {
      Err().Clear();
      bag.Remove(ListKey(n));
      continue;
    }
    bag.WriteProperty(ListKey(n), Variant(std::move(stream)));
  }
}

void USImageList::Terminate() {
  imageLists_->Clear();
}

const server::Bindings* USImageList::Bound() const {
  // About waits for the themed message box; it answers "not implemented"
  // until then.
  static const server::Bindings bindings =
      server::Binder<USImageList>(Info()).Get("ImageLists", &USImageList::get_ImageLists).Done();
  return &bindings;
}

}  // namespace vantor::imaging
