#include "imaging/cListImages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>

#include "imaging/ListErrors.h"
#include "imaging/cHuffman.h"
#include "imaging/cListImage.h"
#include "platform/Gdi.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::imaging {

namespace {

// The layout of a body of the exported stream, from its first byte.
constexpr size_t kBodyHeader = 24;
constexpr int32_t kBodyVersion = 3;
// Bits of the body's first byte: how the image data is stored, and whether
// keys and tags follow.
constexpr uint8_t kDataPng = 1;
constexpr uint8_t kDataHuffman = 2;
constexpr uint8_t kHasTable = 4;
// Bit of the flag byte: the table went through cHuffman, and its stored
// length comes first.
constexpr uint8_t kTableHuffman = 1;
// Tables longer than this are worth compressing.
constexpr size_t kTableCompressFrom = 1024;

bool lowResources = false;

// A surface of the given size, or null where the system has no room.
std::unique_ptr<c32bppDIB> NewSurface(int32_t width, int32_t height) {
  auto surface = std::make_unique<c32bppDIB>();
  if (lowResources || !surface->InitializeDIB(width, height)) return nullptr;
  return surface;
}

void Put16(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(v >> 8));
}

void Put32(std::vector<uint8_t>& out, uint32_t v) {
  Put16(out, v & 0xFFFF);
  Put16(out, v >> 16);
}

uint32_t Le32(std::span<const uint8_t> d, size_t at) {
  return static_cast<uint32_t>(d[at]) | static_cast<uint32_t>(d[at + 1]) << 8 |
         static_cast<uint32_t>(d[at + 2]) << 16 | static_cast<uint32_t>(d[at + 3]) << 24;
}

void PutText(std::vector<uint8_t>& out, StringView text) {
  for (const char16_t c : text) Put16(out, c);
}

String TextAt(std::span<const uint8_t> d, size_t at, size_t bytes) {
  String text(bytes / 2, u'\0');
  for (size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char16_t>(d[at + 2 * i] | d[at + 2 * i + 1] << 8);
  }
  return text;
}

// The PNG writer keeps colours straight, c x 255 / a, and the reader
// multiplies back, c x a / 255, both truncating; so a colour of partial
// alpha can come back one lower, and again at every save, until it is gone.
// For each alpha and colour, this gives the colour to hand the writer so
// that the reader gives back the colour itself, or where no colour does,
// the nearest below it, which from then on comes back unchanged.
const std::array<std::array<uint8_t, 256>, 256>& PngKeeping() {
  static const auto table = [] {
    auto t = std::make_unique<std::array<std::array<uint8_t, 256>, 256>>();
    for (int a = 0; a < 256; ++a) {
      const auto back = [a](int k) { return a == 0 ? 0 : (k * 255 / a) * a / 255; };
      int k = 0;
      for (int c = 0; c < 256; ++c) {
        while (k + 1 <= a && back(k + 1) <= c) ++k;
        (*t)[static_cast<size_t>(a)][static_cast<size_t>(c)] = static_cast<uint8_t>(c > a ? c : k);
      }
    }
    return t;
  }();
  return *table;
}

// The surface's PNG, made from a copy whose colours of partial alpha are
// chosen as above.
bool SavePng(const c32bppDIB& surface, std::vector<uint8_t>& out) {
  c32bppDIB copy;
  const int32_t w = surface.get_Width(), h = surface.get_Height();
  if (!copy.InitializeDIB(w, h)) return false;
  const size_t bytes = static_cast<size_t>(w) * static_cast<size_t>(h) * 4;
  uint8_t* p = copy.get_BitsPointer();
  std::memcpy(p, surface.get_BitsPointer(), bytes);
  const auto& keeping = PngKeeping();
  for (size_t i = 0; i < bytes; i += 4) {
    const uint8_t a = p[i + 3];
    if (a == 0 || a == 255) continue;
    for (size_t k = 0; k < 3; ++k) p[i + k] = keeping[a][p[i + k]];
  }
  copy.put_Alpha(surface.get_Alpha());
  return copy.SaveToStream_PNG(out);
}

// The platform's handles are table values that fit in 32 bits; hosts keep
// them in a Long.
HDC DcOf(int32_t value) {
  return reinterpret_cast<HDC>(static_cast<uintptr_t>(static_cast<uint32_t>(value)));
}

template <class H>
int32_t LongOf(H handle) {
  return static_cast<int32_t>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle)));
}

// Whether the surface's Render turns the picture for this angle.
bool Rotates(float angle) {
  return std::isfinite(angle) && (std::floor(angle) != angle || std::fmod(angle, 360.0f) != 0);
}

// The icon this system hands out: a bottom-up 32-bit DIB section with the
// picture's pre-multiplied pixels; what the mask hides has alpha 0.
HBITMAP IconOf(const PixelView& picture) {
  if (picture.Empty()) return nullptr;
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = picture.width;
  info.bmiHeader.biHeight = picture.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP icon = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (icon == nullptr || bits == nullptr) {
    if (icon != nullptr) DeleteObject(icon);
    return nullptr;
  }
  const size_t bytes = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4;
  auto* out = static_cast<uint8_t*>(bits);
  std::memcpy(out, picture.bits, bytes);
  for (size_t i = 0; i < bytes; i += 4) {
    if (out[i + 3] == 0) out[i] = out[i + 1] = out[i + 2] = 0;
  }
  return icon;
}

}  // namespace

int32_t cListImages::MaxImagesFor(int32_t imageWidth, int32_t imageHeight) {
  if (imageWidth < 1 || imageHeight < 1) return 0;
  return static_cast<int32_t>(kMaxPixels / (int64_t{imageWidth} * int64_t{imageHeight}));
}

cListImages::cListImages() : Dispatch(*server::TypeLibrary::Get().FindClass("cListImages")) {}

cListImages::~cListImages() = default;

void cListImages::Register() {
  server::Registry::Instance().Register("cListImages",
                                        [] { return std::make_shared<cListImages>(); });
}

void cListImages::Initialize(int32_t imageWidth, int32_t imageHeight, int32_t initImageCount) {
  Clear();
  width_ = std::max(imageWidth, 0);
  height_ = std::max(imageHeight, 0);
  const int32_t slots = std::min(std::max(initImageCount, 1), get_MaxImages());
  if (slots < 1) return;
  auto surface = NewSurface(slots * width_, height_);
  if (!surface) ListErrors::Raise(ListErrors::kLowResources, u"Images");
  surface_ = std::move(surface);
  capacity_ = slots;
}

void cListImages::SimulateLowResourcesForTesting(bool low) {
  lowResources = low;
}

// ---------------------------------------------------------------- lookup

int32_t cListImages::PositionOf(int32_t id) const {
  for (size_t i = 0; i < records_.size(); ++i) {
    if (records_[i].id == id) return static_cast<int32_t>(i + 1);
  }
  return 0;
}

int32_t cListImages::PositionOrStale(int32_t DataName, int32_t id) const {
  const int32_t position = PositionOf(id);
  if (position == 0) IItemData::RaiseStale(DataName);
  return position;
}

std::shared_ptr<cListImage> cListImages::HandleOf(int32_t position) {
  // A list not held by a shared pointer cannot lend a door; its handles
  // lead nowhere.
  auto self = std::static_pointer_cast<cListImages>(weak_from_this().lock());
  auto door = self ? std::make_shared<IItemData>(std::move(self)) : nullptr;
  return std::make_shared<cListImage>(std::move(door),
                                      records_[static_cast<size_t>(position - 1)].id);
}

std::shared_ptr<cListImage> cListImages::get_Item(const Variant& Index) {
  const int32_t position = keys_.Resolve(Index, count_);
  return position == 0 ? nullptr : HandleOf(position);
}

int32_t cListImages::IsKeyAssigned(const String& Key) const {
  return keys_.Find(Key);
}

// ---------------------------------------------------------------- pixels

uint8_t* cListImages::SlotRow(int32_t slot, int32_t y) const {
  const size_t stride = static_cast<size_t>(capacity_) * static_cast<size_t>(width_) * 4;
  return surface_->get_BitsPointer() + static_cast<size_t>(height_ - 1 - y) * stride +
         static_cast<size_t>(slot) * static_cast<size_t>(width_) * 4;
}

// `count` slots from `from` (0-based) to `to`, overlapping as they may.
void cListImages::MoveSlots(int32_t from, int32_t to, int32_t count) {
  if (count <= 0 || from == to) return;
  const size_t bytes = static_cast<size_t>(count) * static_cast<size_t>(width_) * 4;
  for (int32_t y = 0; y < height_; ++y) std::memmove(SlotRow(to, y), SlotRow(from, y), bytes);
}

void cListImages::ClearSlot(int32_t slot) {
  for (int32_t y = 0; y < height_; ++y) {
    std::memset(SlotRow(slot, y), 0, static_cast<size_t>(width_) * 4);
  }
}

void cListImages::RescanAlpha() {
  if (!surface_) return;
  const uint8_t* p = surface_->get_BitsPointer();
  const size_t bytes =
      static_cast<size_t>(surface_->get_Width()) * static_cast<size_t>(surface_->get_Height()) * 4;
  ENUM_ALPHA_TYPE kind = Alpha_Simple;
  for (size_t i = 3; i < bytes; i += 4) {
    if (p[i] != 0 && p[i] != 255) {
      kind = Alpha_Complex;
      break;
    }
  }
  surface_->put_Alpha(kind);
}

void cListImages::PixelsChanged() {
  packed_.clear();
  packed_.shrink_to_fit();
  packedKind_ = Packed::None;
}

bool cListImages::DecodeSurface(std::span<const uint8_t> data, Packed kind, int32_t width,
                                int32_t height, std::unique_ptr<c32bppDIB>& out) {
  out.reset();
  auto surface = std::make_unique<c32bppDIB>();
  const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
  if (kind == Packed::Png) {
    // Whatever the surface's loader reads, as long as the size is right.
    if (!surface->LoadPicture_Stream(data) || surface->get_Width() != width ||
        surface->get_Height() != height) {
      return false;
    }
  } else {
    std::vector<uint8_t> unpacked;
    std::span<const uint8_t> raw = data;
    if (kind == Packed::Huffman) {
      if (!cHuffman::DecodeByteArray(data, unpacked)) return false;
      raw = unpacked;
    }
    if (raw.size() != bytes || !surface->InitializeDIB(width, height)) return false;
    uint8_t* p = surface->get_BitsPointer();
    std::memcpy(p, raw.data(), bytes);
    // Pixels are pre-multiplied: no colour above its alpha, whatever the
    // bytes said.
    for (size_t i = 0; i < bytes; i += 4) {
      const uint8_t a = p[i + 3];
      p[i] = std::min(p[i], a);
      p[i + 1] = std::min(p[i + 1], a);
      p[i + 2] = std::min(p[i + 2], a);
    }
  }
  out = std::move(surface);
  return true;
}

bool cListImages::Unpack() {
  if (!waiting_) return true;
  std::unique_ptr<c32bppDIB> surface;
  if (!DecodeSurface(packed_, packedKind_, capacity_ * width_, height_, surface)) return false;
  surface_ = std::move(surface);
  waiting_ = false;
  RescanAlpha();
  return true;
}

void cListImages::UnpackForChange() {
  if (!Unpack()) ListErrors::Raise(ListErrors::kLowResources, u"Images");
}

c32bppDIB* cListImages::Surface() {
  return Unpack() ? surface_.get() : nullptr;
}

void cListImages::put_DelayLoaded(bool v) {
  delayLoaded_ = v;
  if (!v) Unpack();
}

void cListImages::Grow() {
  const int32_t most = get_MaxImages();
  int32_t slots = capacity_ == 0 ? 1 : capacity_ * 2;
  slots = std::min(std::max(slots, count_ + 1), most);
  auto surface = slots > capacity_ ? NewSurface(slots * width_, height_) : nullptr;
  if (!surface) ListErrors::Raise(ListErrors::kLowResources, u"Images");
  if (surface_) {
    const size_t oldRow = static_cast<size_t>(capacity_) * static_cast<size_t>(width_) * 4;
    const size_t newRow = static_cast<size_t>(slots) * static_cast<size_t>(width_) * 4;
    const uint8_t* from = surface_->get_BitsPointer();
    uint8_t* to = surface->get_BitsPointer();
    for (int32_t y = 0; y < height_; ++y) {
      std::memcpy(to + static_cast<size_t>(y) * newRow, from + static_cast<size_t>(y) * oldRow,
                  oldRow);
    }
    surface->put_Alpha(surface_->get_Alpha());
  }
  surface_ = std::move(surface);
  capacity_ = slots;
}

// ---------------------------------------------------------------- adding

int32_t cListImages::PrepareAdd(const Variant& Index, const String& Key) const {
  if (count_ + 1 > get_MaxImages()) ListErrors::Raise(ListErrors::kTooManyImages, u"Images.Add");
  if (keys_.Find(Key) != 0) ListErrors::Raise(ListErrors::kDuplicatedKey, u"Images.Add");
  const Variant& where = Index.Deref();
  if (where.IsMissing() || where.IsEmpty() || where.IsNull()) return count_ + 1;
  if (where.IsNumericType()) {
    // One past the end appends.
    const double d = where.ToDouble();
    if (!(d >= 0.5 && d < static_cast<double>(count_) + 1.5)) return 0;
    const int32_t n = where.ToLong();
    return n >= 1 && n <= count_ + 1 ? n : 0;
  }
  return keys_.Resolve(where, count_);
}

std::shared_ptr<cListImage> cListImages::Place(c32bppDIB& picture, int32_t at, const String& Key,
                                               const String& Tag, bool Scaled) {
  if (picture.get_BitsPointer() == nullptr) return nullptr;
  UnpackForChange();

  // The picture at the size it will have in its slot.
  const c32bppDIB* fitted = &picture;
  std::unique_ptr<c32bppDIB> scaled;
  int32_t w = std::min(picture.get_Width(), width_);
  int32_t h = std::min(picture.get_Height(), height_);
  if (Scaled) {
    picture.ScaleImage(width_, height_, w, h, Scale_Down_As_Needed);
    w = std::clamp(w, 1, width_);
    h = std::clamp(h, 1, height_);
    if (w != picture.get_Width() || h != picture.get_Height()) {
      picture.put_HighQualityInterpolation(true);
      if (!picture.CopyImageTo(scaled, w, h)) {
        ListErrors::Raise(ListErrors::kLowResources, u"Images");
      }
      fitted = scaled.get();
    }
  }
  const int32_t left = Scaled ? (width_ - w) / 2 : 0;
  const int32_t top = Scaled ? (height_ - h) / 2 : 0;

  if (count_ == capacity_) Grow();
  const int32_t slot = at - 1;
  MoveSlots(slot, slot + 1, count_ - slot);
  ClearSlot(slot);
  const PixelView source = fitted->View();
  for (int32_t y = 0; y < h; ++y) {
    std::memcpy(SlotRow(slot, top + y) + static_cast<size_t>(left) * 4, source.Row(y),
                static_cast<size_t>(w) * 4);
  }
  if (picture.get_Alpha() == Alpha_Complex) surface_->put_Alpha(Alpha_Complex);

  records_.insert(records_.begin() + slot, ImageRecord{nextId_++, Key, Tag});
  keys_.InsertAt(at, Key);
  ++count_;
  PixelsChanged();
  return HandleOf(at);
}

std::shared_ptr<cListImage> cListImages::AddImage(c32bppDIB& picture, const Variant& Index,
                                                  const String& Key, const String& Tag,
                                                  bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  return Place(picture, at, Key, Tag, Scaled);
}

std::shared_ptr<cListImage> cListImages::AddImage_fromStream(const std::vector<uint8_t>& inStream,
                                                             const Variant& Index,
                                                             const String& Key, const String& Tag,
                                                             int32_t streamStart,
                                                             int32_t streamLength,
                                                             int32_t iconBitDepth, bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  c32bppDIB picture;
  if (!picture.LoadPicture_Stream(inStream, width_, height_, iconBitDepth, streamStart,
                                  streamLength)) {
    return nullptr;
  }
  return Place(picture, at, Key, Tag, Scaled);
}

std::shared_ptr<cListImage> cListImages::AddImage_fromClipBoard(const Variant& Index,
                                                                const String& Key,
                                                                const String& Tag, bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  c32bppDIB picture;
  if (!picture.LoadPicture_ClipBoard()) return nullptr;
  return Place(picture, at, Key, Tag, Scaled);
}

std::shared_ptr<cListImage> cListImages::AddImage_fromFile(const String& FileName,
                                                           const Variant& Index, const String& Key,
                                                           const String& Tag, int32_t iconBitDepth,
                                                           bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  c32bppDIB picture;
  if (!picture.LoadPicture_File(FileName, width_, height_, iconBitDepth)) return nullptr;
  return Place(picture, at, Key, Tag, Scaled);
}

std::shared_ptr<cListImage> cListImages::AddImage_fromResource(
    const Variant& ResIndex, const Variant& ResSection, const ObjectPtr& VBglobal,
    const Variant& Index, const String& Key, const String& Tag, int32_t streamStart,
    int32_t streamLength, int32_t iconBitDepth, bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  c32bppDIB picture;
  if (!picture.LoadPicture_Resource(ResIndex, ResSection, VBglobal, width_, height_, iconBitDepth,
                                    streamStart, streamLength)) {
    return nullptr;
  }
  return Place(picture, at, Key, Tag, Scaled);
}

std::shared_ptr<cListImage> cListImages::AddImage_fromStdPicture(
    const std::shared_ptr<server::StdPicture>& stdPic, const Variant& Index, const String& Key,
    const String& Tag, bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  c32bppDIB picture;
  if (!stdPic || !picture.LoadPicture_StdPicture(stdPic)) return nullptr;
  return Place(picture, at, Key, Tag, Scaled);
}

std::shared_ptr<cListImage> cListImages::AddImage_fromHandle(int32_t Handle, const Variant& Index,
                                                             const String& Key, const String& Tag,
                                                             bool Scaled) {
  const int32_t at = PrepareAdd(Index, Key);
  if (at == 0) return nullptr;
  c32bppDIB picture;
  if (!picture.LoadPicture_ByHandle(
          reinterpret_cast<HGDIOBJ>(static_cast<uintptr_t>(static_cast<uint32_t>(Handle))))) {
    return nullptr;
  }
  return Place(picture, at, Key, Tag, Scaled);
}

// ---------------------------------------------------------------- removing, moving

void cListImages::Remove(const Variant& Index) {
  const int32_t at = keys_.Resolve(Index, count_);
  if (at == 0) return;
  UnpackForChange();
  MoveSlots(at, at - 1, count_ - at);
  ClearSlot(count_ - 1);
  records_.erase(records_.begin() + (at - 1));
  keys_.RemoveAt(at);
  --count_;
  PixelsChanged();
}

void cListImages::Clear() {
  records_.clear();
  keys_.Clear();
  count_ = 0;
  capacity_ = 0;
  surface_.reset();
  PixelsChanged();
  waiting_ = false;
}

void cListImages::MoveImage(int32_t from, int32_t to) {
  if (from == to) return;
  UnpackForChange();
  const size_t row = static_cast<size_t>(width_) * 4;
  std::vector<uint8_t> moving(row * static_cast<size_t>(height_));
  for (int32_t y = 0; y < height_; ++y) {
    std::memcpy(moving.data() + static_cast<size_t>(y) * row, SlotRow(from - 1, y), row);
  }
  if (from < to) {
    MoveSlots(from, from - 1, to - from);
  } else {
    MoveSlots(to - 1, to, from - to);
  }
  for (int32_t y = 0; y < height_; ++y) {
    std::memcpy(SlotRow(to - 1, y), moving.data() + static_cast<size_t>(y) * row, row);
  }
  ImageRecord record = records_[static_cast<size_t>(from - 1)];
  records_.erase(records_.begin() + (from - 1));
  records_.insert(records_.begin() + (to - 1), record);
  keys_.RemoveAt(from);
  keys_.InsertAt(to, record.key);
  PixelsChanged();
}

// ---------------------------------------------------------------- drawing

bool cListImages::Render(const Variant& Index, int32_t destinationDC, int32_t DestX, int32_t DestY,
                         int32_t DestWidth, int32_t DestHeight, int32_t srcX, int32_t srcY,
                         int32_t srcwidth, int32_t srcheight, int32_t Opacity, int32_t grayScale,
                         float LightAdjustment, float Angle, bool CenterOnDestXY) {
  const int32_t n = keys_.Resolve(Index, count_);
  if (n == 0) ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"Images.Render");
  if (!Unpack() || !surface_) return false;
  // The surface's rules, read against the slot instead of the whole surface:
  // sizes of 0 are the image's, and the source stays inside the slot.
  srcX = std::max(srcX, 0);
  srcY = std::max(srcY, 0);
  if (srcX >= width_ || srcY >= height_) return false;
  if (srcwidth == 0) srcwidth = width_;
  if (srcheight == 0) srcheight = height_;
  const int32_t roomX = width_ - srcX;
  const int32_t roomY = height_ - srcY;
  srcwidth = srcwidth < 0 ? std::max(srcwidth, -roomX) : std::min(srcwidth, roomX);
  srcheight = srcheight < 0 ? std::max(srcheight, -roomY) : std::min(srcheight, roomY);
  if (DestWidth == 0) DestWidth = width_;
  if (DestHeight == 0) DestHeight = height_;
  return surface_->Render(DcOf(destinationDC), DestX, DestY, DestWidth, DestHeight,
                          srcX + (n - 1) * width_, srcY, srcwidth, srcheight, Opacity, true, true,
                          nullptr, grayScale, LightAdjustment, Angle, CenterOnDestXY);
}

bool cListImages::RenderRange(const Variant& StartIndex, const Variant& EndIndex,
                              int32_t destinationDC, int32_t DestX, int32_t DestY, int32_t Opacity,
                              int32_t grayScale, float LightAdjustment) {
  const int32_t first = keys_.Resolve(StartIndex, count_);
  const int32_t last = keys_.Resolve(EndIndex, count_);
  if (first == 0 || last == 0) return false;
  const int32_t step = first <= last ? 1 : -1;
  bool all = true;
  int32_t x = DestX;
  for (int32_t n = first;; n += step) {
    all = Render(Variant(n), destinationDC, x, DestY, 0, 0, 0, 0, 0, 0, Opacity, grayScale,
                 LightAdjustment) &&
          all;
    if (n == last) break;
    x += width_;
  }
  return all;
}

int32_t cListImages::ExtractIcon(const Variant& Index, int32_t& Rtn_BitDepth) {
  const int32_t n = keys_.Resolve(Index, count_);
  if (n == 0) ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"Images.ExtractIcon");
  if (!Unpack() || !surface_) return 0;
  // The slot's rows, gathered into a picture of their own.
  c32bppDIB slot;
  if (!slot.InitializeDIB(width_, height_)) return 0;
  uint8_t* out = slot.get_BitsPointer();
  const size_t row = static_cast<size_t>(width_) * 4;
  for (int32_t y = 0; y < height_; ++y) {
    std::memcpy(out + static_cast<size_t>(height_ - 1 - y) * row, SlotRow(n - 1, y), row);
  }
  HBITMAP icon = IconOf(slot.View());
  if (icon == nullptr) return 0;
  Rtn_BitDepth = 32;
  return LongOf(icon);
}

int32_t cListImages::ExtractIconEx(const Variant& Index, bool MirrorAxisX, bool MirrorAxisY,
                                   int32_t Opacity, int32_t grayScale, float LightAdjustment,
                                   float Angle, int32_t& Rtn_iconWidth, int32_t& Rtn_iconHeight,
                                   int32_t& Rtn_BitDepth) {
  const int32_t n = keys_.Resolve(Index, count_);
  if (n == 0) ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"Images.ExtractIconEx");
  if (!Unpack() || !surface_) return 0;
  const bool turned = Rotates(Angle);
  const int32_t side = static_cast<int32_t>(
      std::sqrt(static_cast<double>(width_) * width_ + static_cast<double>(height_) * height_));
  const int32_t w = turned ? side : width_;
  const int32_t h = turned ? side : height_;
  c32bppDIB drawn;
  if (!drawn.InitializeDIB(w, h)) return 0;
  const int32_t x = turned ? w / 2 : 0;
  const int32_t y = turned ? h / 2 : 0;
  if (!surface_->Render(nullptr, x, y, width_, height_, (n - 1) * width_, 0,
                        MirrorAxisX ? -width_ : width_, MirrorAxisY ? -height_ : height_, Opacity,
                        true, true, &drawn, grayScale, LightAdjustment, Angle, turned)) {
    return 0;
  }
  HBITMAP icon = IconOf(drawn.View());
  if (icon == nullptr) return 0;
  Rtn_iconWidth = w;
  Rtn_iconHeight = h;
  Rtn_BitDepth = 32;
  return LongOf(icon);
}

// ---------------------------------------------------------------- the stream

bool cListImages::WriteBody(std::vector<uint8_t>& out, bool compression) {
  if (lowResources) return false;
  uint8_t flags = 0;
  uint8_t flagByte = 0;

  // Keys and tags, when any image has one.
  std::vector<uint8_t> table;
  const bool anyText = std::any_of(records_.begin(), records_.end(), [](const ImageRecord& r) {
    return !r.key.empty() || !r.tag.empty();
  });
  if (anyText) {
    flags |= kHasTable;
    for (const ImageRecord& r : records_) {
      Put32(table, static_cast<uint32_t>(r.key.size() * 2));
      Put32(table, static_cast<uint32_t>(r.tag.size() * 2));
      PutText(table, r.key);
      PutText(table, r.tag);
    }
    if (table.size() > kTableCompressFrom) {
      std::vector<uint8_t> packed;
      if (!cHuffman::EncodeByteArray(table, packed)) return false;
      table.clear();
      Put32(table, static_cast<uint32_t>(packed.size()));
      table.insert(table.end(), packed.begin(), packed.end());
      flagByte |= kTableHuffman;
    }
  }

  // The image data: the whole surface.
  std::vector<uint8_t> fresh;
  std::span<const uint8_t> data;
  if (capacity_ > 0) {
    if (compression && packedKind_ != Packed::None) {
      data = packed_;
      flags |= packedKind_ == Packed::Png ? kDataPng : kDataHuffman;
    } else {
      if (!Unpack() || !surface_) return false;
      const size_t bytes = static_cast<size_t>(surface_->get_Width()) *
                           static_cast<size_t>(surface_->get_Height()) * 4;
      const std::span<const uint8_t> raw(surface_->get_BitsPointer(), bytes);
      if (!compression) {
        data = raw;
      } else if (SavePng(*surface_, fresh)) {
        data = fresh;
        flags |= kDataPng;
      } else {
        // No PNG without zlib: our own coder on the raw pixels.
        if (!cHuffman::EncodeByteArray(raw, fresh)) return false;
        data = fresh;
        flags |= kDataHuffman;
      }
    }
  }

  out.reserve(out.size() + kBodyHeader + table.size() + data.size());
  out.push_back(flags);
  Put32(out, static_cast<uint32_t>(count_));
  Put32(out, static_cast<uint32_t>(capacity_));
  Put32(out, static_cast<uint32_t>(width_));
  Put32(out, static_cast<uint32_t>(height_));
  Put32(out, kBodyVersion);
  Put16(out, delayLoaded_ ? 0xFFFF : 0);
  out.push_back(flagByte);
  out.insert(out.end(), table.begin(), table.end());
  out.insert(out.end(), data.begin(), data.end());
  return true;
}

int32_t cListImages::ReadBody(std::span<const uint8_t> body, int32_t headerWidth,
                              int32_t headerHeight) {
  constexpr int32_t kBad = ListErrors::kImportFailed;
  if (body.size() < kBodyHeader) return kBad;
  const uint8_t flags = body[0];
  const auto count = static_cast<int32_t>(Le32(body, 1));
  const auto capacity = static_cast<int32_t>(Le32(body, 5));
  const auto width = static_cast<int32_t>(Le32(body, 9));
  const auto height = static_cast<int32_t>(Le32(body, 13));
  const auto version = static_cast<int32_t>(Le32(body, 17));
  const bool delayLoaded = (body[21] | body[22]) != 0;
  const uint8_t flagByte = body[23];
  if (version > kBodyVersion) return ListErrors::kBadVersion;
  if (width != headerWidth || height != headerHeight || width < 1 || height < 1) return kBad;
  if (count < 0 || capacity < count || capacity > MaxImagesFor(width, height)) return kBad;
  if ((flags & kDataPng) && (flags & kDataHuffman)) return kBad;

  size_t at = kBodyHeader;
  std::vector<ImageRecord> records(static_cast<size_t>(count));
  ItemKeys keys;
  if (flags & kHasTable) {
    std::vector<uint8_t> unpacked;
    std::span<const uint8_t> table = body.subspan(at);
    if (flagByte & kTableHuffman) {
      if (table.size() < 4) return kBad;
      const size_t stored = Le32(table, 0);
      if (stored > table.size() - 4) return kBad;
      if (!cHuffman::DecodeByteArray(table.subspan(4, stored), unpacked)) return kBad;
      at += 4 + stored;
      table = unpacked;
    }
    size_t t = 0;
    for (int32_t i = 0; i < count; ++i) {
      if (table.size() - t < 8) return kBad;
      const size_t keyBytes = Le32(table, t);
      const size_t tagBytes = Le32(table, t + 4);
      t += 8;
      if (keyBytes % 2 != 0 || tagBytes % 2 != 0 || keyBytes > table.size() - t ||
          tagBytes > table.size() - t - keyBytes) {
        return kBad;
      }
      ImageRecord& r = records[static_cast<size_t>(i)];
      r.key = TextAt(table, t, keyBytes);
      r.tag = TextAt(table, t + keyBytes, tagBytes);
      t += keyBytes + tagBytes;
    }
    if (!(flagByte & kTableHuffman)) at += t;
  }
  // Sorted once, a key used twice found on the way.
  std::vector<String> keyOrder(records.size());
  for (size_t i = 0; i < records.size(); ++i) keyOrder[i] = records[i].key;
  if (!keys.Assign(keyOrder)) return kBad;

  const std::span<const uint8_t> data = body.subspan(at);
  const Packed kind = (flags & kDataPng)       ? Packed::Png
                      : (flags & kDataHuffman) ? Packed::Huffman
                                               : Packed::None;
  std::unique_ptr<c32bppDIB> surface;
  if (capacity == 0) {
    if (!data.empty()) return kBad;
  } else if (!DecodeSurface(data, kind, capacity * width, height, surface)) {
    return kBad;
  }

  // All checked: the list takes it. Identities are new, so handles of what
  // the list held before are stale.
  Clear();
  width_ = width;
  height_ = height;
  count_ = count;
  capacity_ = capacity;
  for (ImageRecord& r : records) r.id = nextId_++;
  records_ = std::move(records);
  keys_ = std::move(keys);
  delayLoaded_ = delayLoaded;
  if (kind != Packed::None && capacity > 0) {
    packed_.assign(data.begin(), data.end());
    packedKind_ = kind;
  }
  if (delayLoaded_ && packedKind_ != Packed::None) {
    // Checked above by unpacking; the pixels wait until first use.
    waiting_ = true;
  } else {
    surface_ = std::move(surface);
    RescanAlpha();
  }
  return 0;
}

// ---------------------------------------------------------------- the door

int32_t cListImages::ItemDataLong(int32_t DataName, int32_t oID) {
  const int32_t position = PositionOrStale(DataName, oID);
  switch (DataName) {
    case dnImageIndex:
      return position;
    case dnImageWidth:
      return width_;
    case dnImageHeight:
      return height_;
    default:
      return 0;
  }
}

void cListImages::SetItemDataLong(int32_t DataName, int32_t oID, int32_t value) {
  const int32_t position = PositionOrStale(DataName, oID);
  if (DataName != dnImageIndex) return;
  if (value < 1 || value > count_) {
    ListErrors::Raise(ListErrors::kInvalidKeyOrIndex, u"Images.Index");
  }
  MoveImage(position, value);
}

String cListImages::ItemDataString(int32_t DataName, int32_t oID) {
  const ImageRecord& r = records_[static_cast<size_t>(PositionOrStale(DataName, oID) - 1)];
  switch (DataName) {
    case dnImageKey:
      return r.key;
    case dnImageTag:
      return r.tag;
    default:
      return {};
  }
}

void cListImages::SetItemDataString(int32_t DataName, int32_t oID, const String& value) {
  const int32_t position = PositionOrStale(DataName, oID);
  ImageRecord& r = records_[static_cast<size_t>(position - 1)];
  if (DataName == dnImageTag) {
    r.tag = value;
  } else if (DataName == dnImageKey && value != r.key) {
    if (keys_.Find(value) != 0) ListErrors::Raise(ListErrors::kDuplicatedKey, u"Images.Key");
    keys_.Rename(position, value);
    r.key = value;
  }
}

ObjectPtr cListImages::ItemDataObject(int32_t DataName, int32_t oID) {
  PositionOrStale(DataName, oID);
  return nullptr;
}

// ---------------------------------------------------------------- bindings

const server::Bindings* cListImages::Bound() const {
  // xcom_IEnum waits for the object model's enumerator; it answers "not
  // implemented" until then.
  static const server::Bindings bindings =
      server::Binder<cListImages>(Info())
          .Get("Item", &cListImages::get_Item)
          .Method("Render", &cListImages::Render)
          .Method("RenderRange", &cListImages::RenderRange)
          .Method("ExtractIcon", &cListImages::ExtractIcon)
          .Method("ExtractIconEx", &cListImages::ExtractIconEx)
          .Property("DelayLoaded", &cListImages::get_DelayLoaded, &cListImages::put_DelayLoaded)
          .Get("Count", &cListImages::get_Count)
          .Method("Clear", &cListImages::Clear)
          .Method("Remove", &cListImages::Remove)
          .Method("IsKeyAssigned", &cListImages::IsKeyAssigned)
          .Get("MaxImages", &cListImages::get_MaxImages)
          .Method("AddImage_fromStream", &cListImages::AddImage_fromStream)
          .Method("AddImage_fromClipBoard", &cListImages::AddImage_fromClipBoard)
          .Method("AddImage_fromFile", &cListImages::AddImage_fromFile)
          .Method("AddImage_fromResource", &cListImages::AddImage_fromResource)
          .Method("AddImage_fromStdPicture", &cListImages::AddImage_fromStdPicture)
          .Method("AddImage_fromHandle", &cListImages::AddImage_fromHandle)
          .Done();
  return &bindings;
}

}  // namespace vantor::imaging
