#include "imaging/cImageLists.h"

#include <algorithm>
#include <exception>
#include <string>

#include "imaging/ListErrors.h"
#include "imaging/c32bppDIB.h"
#include "imaging/cImageList.h"
#include "imaging/cListImages.h"
#include "runtime/Error.h"
#include "runtime/SafeArray.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::imaging {

namespace {

constexpr size_t kHeaderBytes = 20;

void Put32(std::vector<uint8_t>& out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

uint32_t Le32(std::span<const uint8_t> d, size_t at) {
  return static_cast<uint32_t>(d[at]) | static_cast<uint32_t>(d[at + 1]) << 8 |
         static_cast<uint32_t>(d[at + 2]) << 16 | static_cast<uint32_t>(d[at + 3]) << 24;
}

}  // namespace

cImageLists::cImageLists() : Dispatch(*server::TypeLibrary::Get().FindClass("cImageLists")) {}

cImageLists::~cImageLists() = default;

void cImageLists::Register() {
  server::Registry::Instance().Register("cImageLists",
                                        [] { return std::make_shared<cImageLists>(); });
}

// ---------------------------------------------------------------- lookup

int32_t cImageLists::PositionOf(int32_t id) const {
  for (size_t i = 0; i < lists_.size(); ++i) {
    if (lists_[i].id == id) return static_cast<int32_t>(i + 1);
  }
  return 0;
}

int32_t cImageLists::PositionOrStale(int32_t DataName, int32_t id) const {
  const int32_t position = PositionOf(id);
  if (position == 0) IItemData::RaiseStale(DataName);
  return position;
}

std::shared_ptr<cImageList> cImageLists::HandleOf(int32_t position) {
  // A collection not held by a shared pointer cannot lend a door; its
  // handles lead nowhere.
  auto self = std::static_pointer_cast<cImageLists>(weak_from_this().lock());
  auto door = self ? std::make_shared<IItemData>(std::move(self)) : nullptr;
  return std::make_shared<cImageList>(std::move(door),
                                      lists_[static_cast<size_t>(position - 1)].id);
}

std::shared_ptr<cImageList> cImageLists::get_Item(const Variant& Index) {
  const int32_t position = keys_.Resolve(Index, get_Count());
  return position == 0 ? nullptr : HandleOf(position);
}

std::shared_ptr<cListImages> cImageLists::ImagesAt(int32_t position) const {
  if (position < 1 || position > get_Count()) return nullptr;
  return lists_[static_cast<size_t>(position - 1)].images;
}

int32_t cImageLists::IsKeyAssigned(const String& Key) const {
  return keys_.Find(Key);
}

int32_t cImageLists::MaxImages(int32_t imageWidth, int32_t imageHeight) const {
  return cListImages::MaxImagesFor(imageWidth, imageHeight);
}

bool cImageLists::get_CompressionNeeded() const {
  if (!compression_) return false;
  return std::any_of(lists_.begin(), lists_.end(), [](const ListEntry& e) {
    return e.images->Capacity() > 0 && !e.images->HoldsCompressedBytes();
  });
}

// ---------------------------------------------------------------- changes

std::shared_ptr<cImageList> cImageLists::Append(String key, std::shared_ptr<cListImages> images) {
  const int32_t position = get_Count() + 1;
  lists_.push_back(ListEntry{nextId_++, key, std::move(images)});
  keys_.InsertAt(position, key);
  return HandleOf(position);
}

std::shared_ptr<cImageList> cImageLists::Add(int32_t Width, int32_t Height, const String& Key,
                                             int32_t InitImageCount) {
  const int32_t slots = std::max(InitImageCount, 1);
  if (slots >= MaxImages(Width, Height)) {
    ListErrors::Raise(ListErrors::kTooManyImages, u"ImageLists.Add");
  }
  if (keys_.Find(Key) != 0) ListErrors::Raise(ListErrors::kDuplicatedKey, u"ImageLists.Add");
  auto images = std::make_shared<cListImages>();
  images->Initialize(Width, Height, slots);
  return Append(Key, std::move(images));
}

void cImageLists::Remove(const Variant& Index) {
  const int32_t position = keys_.Resolve(Index, get_Count());
  if (position == 0) ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"ImageLists.Remove");
  lists_[static_cast<size_t>(position - 1)].images->Clear();
  lists_.erase(lists_.begin() + (position - 1));
  keys_.RemoveAt(position);
}

void cImageLists::Clear() {
  for (ListEntry& e : lists_) e.images->Clear();
  lists_.clear();
  keys_.Clear();
}

// ---------------------------------------------------------------- the stream

String cImageLists::FreeKey(const String& key) const {
  if (keys_.Find(key) == 0) return key;
  for (int32_t n = 1;; ++n) {
    String candidate = key + u"(" + FromUtf8(std::to_string(n)) + u")";
    if (keys_.Find(candidate) == 0) return candidate;
  }
}

std::shared_ptr<cImageList> cImageLists::Import(std::span<const uint8_t> inData,
                                                const String& Key) {
  constexpr StringView kSource = u"ImageLists.ImportImageList";
  if (inData.size() < kHeaderBytes || Le32(inData, 0) != kMagic) {
    ListErrors::Raise(ListErrors::kImportFailed, kSource);
  }
  if (Le32(inData, 4) > static_cast<uint32_t>(kVersion)) {
    ListErrors::Raise(ListErrors::kBadVersion, kSource);
  }
  const auto width = static_cast<int32_t>(Le32(inData, 8));
  const auto height = static_cast<int32_t>(Le32(inData, 12));
  const size_t keyBytes = Le32(inData, 16);
  if (keyBytes % 2 != 0 || keyBytes > inData.size() - kHeaderBytes) {
    ListErrors::Raise(ListErrors::kImportFailed, kSource);
  }
  String streamKey(keyBytes / 2, u'\0');
  for (size_t i = 0; i < streamKey.size(); ++i) {
    streamKey[i] =
        static_cast<char16_t>(inData[kHeaderBytes + 2 * i] | inData[kHeaderBytes + 2 * i + 1] << 8);
  }
  auto images = std::make_shared<cListImages>();
  const int32_t failure = images->ReadBody(inData.subspan(kHeaderBytes + keyBytes), width, height);
  if (failure != 0) ListErrors::Raise(failure, kSource);
  return Append(FreeKey(Key.empty() ? streamKey : Key), std::move(images));
}

std::shared_ptr<cImageList> cImageLists::ImportImageList(std::span<const uint8_t> inData,
                                                         const String& Key) {
  constexpr StringView kSource = u"ImageLists.ImportImageList";
  // The list joins the collection only once it is whole, so a failure
  // leaves nothing behind; the error goes out under the import's name.
  try {
    return Import(inData, Key);
  } catch (const Error& e) {
    ListErrors::Raise(e.Number(), kSource, e.Description());
  } catch (const std::exception&) {
    ListErrors::Raise(ListErrors::kImportFailed, kSource);
  }
}

std::shared_ptr<cImageList> cImageLists::ImportImageList(const std::vector<uint8_t>& inData,
                                                         const String& Key) {
  return ImportImageList(std::span<const uint8_t>(inData), Key);
}

void cImageLists::ExportImageList(const Variant& Index, std::vector<uint8_t>& outData) {
  constexpr StringView kSource = u"ImageLists.ExportImageList";
  const int32_t position = keys_.Resolve(Index, get_Count());
  if (position == 0) ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, kSource);
  const ListEntry& entry = lists_[static_cast<size_t>(position - 1)];
  std::vector<uint8_t> out;
  bool made = false;
  try {
    Put32(out, kMagic);
    Put32(out, kVersion);
    Put32(out, static_cast<uint32_t>(entry.images->ImageWidth()));
    Put32(out, static_cast<uint32_t>(entry.images->ImageHeight()));
    Put32(out, static_cast<uint32_t>(entry.key.size() * 2));
    for (const char16_t c : entry.key) {
      out.push_back(static_cast<uint8_t>(c));
      out.push_back(static_cast<uint8_t>(c >> 8));
    }
    made = entry.images->WriteBody(out, compression_);
  } catch (const Error& e) {
    ListErrors::Raise(e.Number(), kSource, e.Description());
  } catch (const std::exception&) {
    made = false;
  }
  if (!made) ListErrors::Raise(ListErrors::kExportFailed, kSource);
  outData = std::move(out);
}

int32_t cImageLists::ImageSizesFromStream(const std::vector<uint8_t>& inStream,
                                          Variant& arraySizes) {
  arraySizes = Variant(SafeArray(vbLong, {}));
  c32bppDIB probe;
  if (!probe.LoadPicture_Stream(inStream, 0, 0, 0, 0, 0, true)) return 0;
  std::vector<IconSize> sizes;
  if (probe.SourceIconSizes(sizes) == 0) {
    sizes.assign(1, IconSize{probe.get_Width(), probe.get_Height(), 32});
  }
  const auto count = static_cast<int32_t>(sizes.size());
  SafeArray pairs(vbLong, {SafeArray::Bound{0, count * 2}});
  for (int32_t i = 0; i < count; ++i) {
    pairs.Set(2 * i, Variant(sizes[static_cast<size_t>(i)].width));
    pairs.Set(2 * i + 1, Variant(sizes[static_cast<size_t>(i)].height));
  }
  arraySizes = Variant(std::move(pairs));
  return count;
}

// ---------------------------------------------------------------- the door

int32_t cImageLists::ItemDataLong(int32_t DataName, int32_t oID) {
  const int32_t position = PositionOrStale(DataName, oID);
  return DataName == dnListIndex ? position : 0;
}

void cImageLists::SetItemDataLong(int32_t DataName, int32_t oID, int32_t value) {
  const int32_t position = PositionOrStale(DataName, oID);
  if (DataName != dnListIndex) return;
  if (value < 1 || value > get_Count()) {
    ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"ImageLists.Index", u"Invalid Index");
  }
  if (value == position) return;
  ListEntry entry = lists_[static_cast<size_t>(position - 1)];
  lists_.erase(lists_.begin() + (position - 1));
  lists_.insert(lists_.begin() + (value - 1), entry);
  keys_.RemoveAt(position);
  keys_.InsertAt(value, entry.key);
}

String cImageLists::ItemDataString(int32_t DataName, int32_t oID) {
  const int32_t position = PositionOrStale(DataName, oID);
  return DataName == dnListKey ? lists_[static_cast<size_t>(position - 1)].key : String();
}

void cImageLists::SetItemDataString(int32_t DataName, int32_t oID, const String& value) {
  const int32_t position = PositionOrStale(DataName, oID);
  ListEntry& entry = lists_[static_cast<size_t>(position - 1)];
  if (DataName != dnListKey || value == entry.key) return;
  if (keys_.Find(value) != 0) ListErrors::Raise(ListErrors::kDuplicatedKey, u"ImageLists.Key");
  keys_.Rename(position, value);
  entry.key = value;
}

ObjectPtr cImageLists::ItemDataObject(int32_t DataName, int32_t oID) {
  const int32_t position = PositionOrStale(DataName, oID);
  return DataName == dnListImages ? lists_[static_cast<size_t>(position - 1)].images : nullptr;
}

// ---------------------------------------------------------------- bindings

const server::Bindings* cImageLists::Bound() const {
  // xcom_IEnum waits for the object model's enumerator; it answers "not
  // implemented" until then.
  static const server::Bindings bindings =
      server::Binder<cImageLists>(Info())
          .Get("Item", &cImageLists::get_Item)
          .Property("Compression", &cImageLists::get_Compression, &cImageLists::put_Compression)
          .Get("CompressionNeeded", &cImageLists::get_CompressionNeeded)
          .Get("Count", &cImageLists::get_Count)
          .Method("Clear", &cImageLists::Clear)
          .Method("Remove", &cImageLists::Remove)
          .Method("MaxImages", &cImageLists::MaxImages)
          .Method("Add", &cImageLists::Add)
          .Method("IsKeyAssigned", &cImageLists::IsKeyAssigned)
          .Method("ImportImageList",
                  static_cast<std::shared_ptr<cImageList> (cImageLists::*)(
                      const std::vector<uint8_t>&, const String&)>(&cImageLists::ImportImageList))
          .Method("ExportImageList", &cImageLists::ExportImageList)
          .Method("ImageSizesFromStream", &cImageLists::ImageSizesFromStream)
          .Done();
  return &bindings;
}

}  // namespace vantor::imaging
