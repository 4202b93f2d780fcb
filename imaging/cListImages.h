#pragma once
// The images of one image list: all of one size, packed side by side into
// a single surface that is `capacity` images wide, image n (from 1) at
// column (n - 1) x width. Keys and tags are kept beside the images; the
// images themselves are handed out as light `cListImage` handles that ask
// for their data through this collection's door.
//
// A list that came from a stream with DelayLoaded on keeps its compressed
// image data and builds the surface only on first use. Compressed data that
// came in is also kept as the list's source bytes while the pixels stay as
// they were, so that a list saves again to the very bytes it was read from.
//
// A list's surface holds at most 1024000 pixels, which bounds the number of
// images by their size (MaxImages).
//
// Errors go out as vantor::Error: 1962 for an unknown image where one is
// required, 1963 for a key already used, 1973 past MaxImages, 1977 when the
// surface cannot be made. Images that fail to load give no image and no error.
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "imaging/IItemData.h"
#include "imaging/ItemKeys.h"
#include "imaging/c32bppDIB.h"
#include "runtime/String.h"
#include "runtime/Variant.h"
#include "server/Dispatch.h"
#include "server/StdPicture.h"

namespace vantor::imaging {

class cListImage;

class cListImages : public server::Dispatch, public IItemData::Source {
 public:
  // The pixel budget of one list's surface.
  static constexpr int32_t kMaxPixels = 1024000;
  // Images of a list of this size fit into one surface; 0 when either side
  // is below 1.
  static int32_t MaxImagesFor(int32_t imageWidth, int32_t imageHeight);

  // A list of no size, which takes no image (the class factory's).
  cListImages();
  ~cListImages() override;
  static void Register();
  // Sizes the list and makes room for `initImageCount` images (1 at least);
  // raises 1977 when the surface cannot be made. Images there go.
  void Initialize(int32_t imageWidth, int32_t imageHeight, int32_t initImageCount);

  // ---- the members of the type library
  // The image by position or key; no object (and no error) for none.
  std::shared_ptr<cListImage> get_Item(const Variant& Index);
  // Draws one image through the surface's Render, the source rectangle
  // taken inside the image's slot; sizes of 0 take the whole image.
  bool Render(const Variant& Index, int32_t destinationDC, int32_t DestX, int32_t DestY,
              int32_t DestWidth = 0, int32_t DestHeight = 0, int32_t srcX = 0, int32_t srcY = 0,
              int32_t srcwidth = 0, int32_t srcheight = 0, int32_t Opacity = 100,
              int32_t grayScale = -1, float LightAdjustment = 0, float Angle = 0,
              bool CenterOnDestXY = false);
  // The images from StartIndex to EndIndex (either way round) in a row, one
  // image width apart, the first at (DestX, DestY). False when an index
  // names no image or an image did not draw.
  bool RenderRange(const Variant& StartIndex, const Variant& EndIndex, int32_t destinationDC,
                   int32_t DestX, int32_t DestY, int32_t Opacity = 100, int32_t grayScale = -1,
                   float LightAdjustment = 0);
  // An icon of the image, which the caller owns; 0 on failure. On this
  // system an icon handle is a 32-bit bottom-up DIB section (a bitmap) of
  // pre-multiplied pixels whose transparent ones, the icon's mask, have
  // alpha 0: DeleteObject frees it, AlphaBlend draws it, and
  // c32bppDIB::LoadPicture_ByHandle reads it.
  int32_t ExtractIcon(const Variant& Index, int32_t& Rtn_BitDepth);
  // As ExtractIcon, from the image drawn first with the options: MirrorAxisX
  // reverses the x axis (left and right), MirrorAxisY the y axis. A rotated
  // icon is a square whose side is the image's diagonal, so no corner is cut.
  int32_t ExtractIconEx(const Variant& Index, bool MirrorAxisX, bool MirrorAxisY, int32_t Opacity,
                        int32_t grayScale, float LightAdjustment, float Angle,
                        int32_t& Rtn_iconWidth, int32_t& Rtn_iconHeight, int32_t& Rtn_BitDepth);
  // On: the list, once saved and read again, keeps its image data compressed
  // until first use. Off unpacks a list that is waiting now.
  bool get_DelayLoaded() const { return delayLoaded_; }
  void put_DelayLoaded(bool v);
  int32_t get_Count() const { return count_; }
  // No images, no keys, no surface; the size stays, so the list is usable.
  void Clear();
  // Later images move one slot back; an index that names no image does
  // nothing.
  void Remove(const Variant& Index);
  int32_t IsKeyAssigned(const String& Key) const;
  int32_t get_MaxImages() const { return MaxImagesFor(width_, height_); }

  // The adders load the picture by the surface's loader for its kind (icon
  // pictures chosen for the list's size), fit it into a slot and insert it
  // at Index (by default at the end; a position up to Count + 1, or the key
  // of the image it goes before). With Scaled the picture is scaled down as
  // needed, keeping its shape, and centred in its slot; without, it is put
  // at the slot's top left at its own size, cut at the slot's edge. A
  // picture that does not load, or an Index that names no place, gives no
  // image.
  std::shared_ptr<cListImage> AddImage_fromStream(const std::vector<uint8_t>& inStream,
                                                  const Variant& Index, const String& Key,
                                                  const String& Tag, int32_t streamStart,
                                                  int32_t streamLength, int32_t iconBitDepth,
                                                  bool Scaled);
  std::shared_ptr<cListImage> AddImage_fromClipBoard(const Variant& Index, const String& Key,
                                                     const String& Tag, bool Scaled);
  std::shared_ptr<cListImage> AddImage_fromFile(const String& FileName, const Variant& Index,
                                                const String& Key, const String& Tag,
                                                int32_t iconBitDepth, bool Scaled);
  std::shared_ptr<cListImage> AddImage_fromResource(const Variant& ResIndex,
                                                    const Variant& ResSection,
                                                    const ObjectPtr& VBglobal, const Variant& Index,
                                                    const String& Key, const String& Tag,
                                                    int32_t streamStart, int32_t streamLength,
                                                    int32_t iconBitDepth, bool Scaled);
  std::shared_ptr<cListImage> AddImage_fromStdPicture(
      const std::shared_ptr<server::StdPicture>& stdPic, const Variant& Index, const String& Key,
      const String& Tag, bool Scaled);
  std::shared_ptr<cListImage> AddImage_fromHandle(int32_t Handle, const Variant& Index,
                                                  const String& Key, const String& Tag,
                                                  bool Scaled);
  // Any loaded surface as a new image.
  std::shared_ptr<cListImage> AddImage(c32bppDIB& picture, const Variant& Index, const String& Key,
                                       const String& Tag, bool Scaled);

  // ---- for the collection and the controls
  int32_t ImageWidth() const { return width_; }
  int32_t ImageHeight() const { return height_; }
  int32_t Capacity() const { return capacity_; }
  // The packed surface, unpacked first when the list waits; null when the
  // list has none.
  c32bppDIB* Surface();
  // Whether the pixels are still only compressed bytes.
  bool IsWaiting() const { return waiting_; }
  // Whether the compressed bytes the list came from still tell its pixels.
  bool HoldsCompressedBytes() const { return packedKind_ != Packed::None; }

  // The list's part of the exported stream. With `compression` the pixels
  // go as PNG (or as the compressed bytes the list came from), through
  // cHuffman when no PNG can be made; without, as they lie in memory.
  // False when the data cannot be made.
  bool WriteBody(std::vector<uint8_t>& out, bool compression);
  // Takes a stream's body in place of everything the list holds, checked
  // against the header's image size. 0 on success, else the error number
  // (1974 for a body version this code does not know, 1975 for bad data);
  // on failure the list is unchanged.
  int32_t ReadBody(std::span<const uint8_t> body, int32_t headerWidth, int32_t headerHeight);

  // Tests make every new surface, and the data of every export, fail as on
  // a system out of resources.
  static void SimulateLowResourcesForTesting(bool low);

  // ---- IItemData::Source
  int32_t ItemDataLong(int32_t DataName, int32_t oID) override;
  void SetItemDataLong(int32_t DataName, int32_t oID, int32_t value) override;
  String ItemDataString(int32_t DataName, int32_t oID) override;
  void SetItemDataString(int32_t DataName, int32_t oID, const String& value) override;
  ObjectPtr ItemDataObject(int32_t DataName, int32_t oID) override;

 protected:
  const server::Bindings* Bound() const override;

 private:
  struct ImageRecord {
    int32_t id;
    String key;
    String tag;
  };
  enum class Packed : uint8_t { None, Png, Huffman };

  // The 1-based position of the image with this identity, 0 when it has gone.
  int32_t PositionOf(int32_t id) const;
  int32_t PositionOrStale(int32_t DataName, int32_t id) const;
  std::shared_ptr<cListImage> HandleOf(int32_t position);
  // 1973 and 1963 for an image that cannot come in; the insert position,
  // or 0 for an Index that names no place.
  int32_t PrepareAdd(const Variant& Index, const String& Key) const;
  std::shared_ptr<cListImage> Place(c32bppDIB& picture, int32_t at, const String& Key,
                                    const String& Tag, bool Scaled);
  // Builds the surface from the kept bytes; false when they do not unpack.
  bool Unpack();
  // Unpacks, or raises 1977 for a change that needs the pixels.
  void UnpackForChange();
  // Room for one more image; 1977 when the surface cannot grow.
  void Grow();
  // The pixels changed: kept source bytes no longer tell them.
  void PixelsChanged();
  uint8_t* SlotRow(int32_t slot, int32_t y) const;
  void MoveSlots(int32_t from, int32_t to, int32_t count);
  void ClearSlot(int32_t slot);
  void MoveImage(int32_t from, int32_t to);
  void RescanAlpha();
  // The raw surface in memory order, or unpacked from the bytes of a kind.
  static bool DecodeSurface(std::span<const uint8_t> data, Packed kind, int32_t width,
                            int32_t height, std::unique_ptr<c32bppDIB>& out);

  int32_t count_ = 0;
  int32_t capacity_ = 0;
  std::unique_ptr<c32bppDIB> surface_;
  std::vector<ImageRecord> records_;
  ItemKeys keys_;
  int32_t width_ = 0;
  int32_t height_ = 0;
  bool delayLoaded_ = false;
  std::vector<uint8_t> packed_;
  Packed packedKind_ = Packed::None;
  bool waiting_ = false;  // the pixels are only in packed_
  int32_t nextId_ = 1;
};

}  // namespace vantor::imaging
