#pragma once
// A keyed collection of image lists, as the image-list control holds them
// for the other controls: lists in a dense array by position from 1, their
// keys in a sorted array beside it. Lists go in and out whole as the ".lIL"
// byte stream:
//
//   0   4  magic 0x4C56494C, little-endian ("LIVL")
//   4   4  version: 2 is written; anything up to 2 is read, above raises 1974
//   8   4  image width
//   12  4  image height
//   16  4  byte length K of the key (UTF-16, little-endian, no terminator)
//   20  K  the key
//   then the list's body (see cListImages::WriteBody)
//
// Errors go out as vantor::Error with the texts and sources of the image
// lists; an error a lower layer raises during import or export goes out
// again under the import's or export's own source.
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "imaging/IItemData.h"
#include "imaging/ItemKeys.h"
#include "runtime/String.h"
#include "runtime/Variant.h"
#include "server/Dispatch.h"

namespace vantor::imaging {

class cImageList;
class cListImages;

class cImageLists : public server::Dispatch, public IItemData::Source {
 public:
  static constexpr uint32_t kMagic = 0x4C56494C;
  static constexpr int32_t kVersion = 2;

  cImageLists();
  ~cImageLists() override;
  static void Register();

  // The list by position or key; no object (and no error) for none.
  std::shared_ptr<cImageList> get_Item(const Variant& Index);
  // Whether lists export their pixels compressed (on by default).
  bool get_Compression() const { return compression_; }
  void put_Compression(bool v) { compression_ = v; }
  // Whether saving needs zlib for PNG: compression is on and some list has
  // pixels that are not already held as the compressed bytes they came from.
  bool get_CompressionNeeded() const;
  int32_t get_Count() const { return static_cast<int32_t>(lists_.size()); }
  // Every list goes, with its images; handles on them turn stale.
  void Clear();
  // 1962 when Index names no list.
  void Remove(const Variant& Index);
  int32_t MaxImages(int32_t imageWidth, int32_t imageHeight) const;
  // A new, empty list with room for InitImageCount images (below 1 counts
  // as 1): 1973 when that count reaches MaxImages for the size (so always
  // for a size below 1), 1963 for a key in use, 1977 when the surface
  // cannot be made. An empty key leaves the list without one.
  std::shared_ptr<cImageList> Add(int32_t Width, int32_t Height, const String& Key,
                                  int32_t InitImageCount = 1);
  int32_t IsKeyAssigned(const String& Key) const;
  // A list from a ".lIL" stream, appended. The key is Key or, when that is
  // empty, the stream's own; a key in use gets "(n)" behind it, the first
  // free n from 1. Raises 1975 for data that is not such a stream or does
  // not hold together, 1974 for a version this code does not know; a bad
  // stream leaves no list behind.
  std::shared_ptr<cImageList> ImportImageList(const std::vector<uint8_t>& inData,
                                              const String& Key);
  std::shared_ptr<cImageList> ImportImageList(std::span<const uint8_t> inData, const String& Key);
  // The list as a ".lIL" stream; 1962 when Index names no list, 1976 when
  // the stream cannot be made.
  void ExportImageList(const Variant& Index, std::vector<uint8_t>& outData);
  // The width and height of every picture a stream offers: each picture of
  // an icon or cursor file, or the one picture of an image. The pairs go
  // into arraySizes as a Long array (width, height, width, height...); the
  // result is their count, 0 (and an empty array) when the stream is no
  // picture.
  int32_t ImageSizesFromStream(const std::vector<uint8_t>& inStream, Variant& arraySizes);

  // ---- for C++ users
  // The images of the list at a position from 1; null for none.
  std::shared_ptr<cListImages> ImagesAt(int32_t position) const;

  // ---- IItemData::Source
  int32_t ItemDataLong(int32_t DataName, int32_t oID) override;
  void SetItemDataLong(int32_t DataName, int32_t oID, int32_t value) override;
  String ItemDataString(int32_t DataName, int32_t oID) override;
  void SetItemDataString(int32_t DataName, int32_t oID, const String& value) override;
  ObjectPtr ItemDataObject(int32_t DataName, int32_t oID) override;

 protected:
  const server::Bindings* Bound() const override;

 private:
  struct ListEntry {
    int32_t id;
    String key;
    std::shared_ptr<cListImages> images;
  };

  int32_t PositionOf(int32_t id) const;
  int32_t PositionOrStale(int32_t DataName, int32_t id) const;
  std::shared_ptr<cImageList> HandleOf(int32_t position);
  std::shared_ptr<cImageList> Append(String key, std::shared_ptr<cListImages> images);
  std::shared_ptr<cImageList> Import(std::span<const uint8_t> inData, const String& Key);
  // The key itself when free, else key "(" n ")" with the first free n.
  String FreeKey(const String& key) const;

  std::vector<ListEntry> lists_;
  ItemKeys keys_;
  bool compression_ = true;
  int32_t nextId_ = 1;
};

}  // namespace vantor::imaging
