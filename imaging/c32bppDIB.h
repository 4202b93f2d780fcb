#pragma once
// The one picture surface of the library: Width x Height pixels of
// pre-multiplied BGRA in a bottom-up DIB section (so that the surface can be
// selected into a DC and blitted), `scanWidth` = Width * 4. Every picture a
// control shows passes through one: the readers fill it, Render draws it by
// the system's AlphaBlend, GDI+ or its own blend, and the writers read it.
//
// On this build GDI+ does not exist, so `isGDIplusEnabled` is always false and
// `HighQualityInterpolation` starts false; the system reports itself as the NT
// family, version 6.1, which gives capability bits 73 (AlphaBlend friendly,
// AlphaBlend reliable on 32-bit surfaces, NT family).
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "imaging/Pixels.h"
#include "imaging/RenderPath.h"
#include "imaging/cPNGwriter.h"
#include "platform/Gdi.h"
#include "platform/Text.h"
#include "runtime/String.h"
#include "runtime/Variant.h"

namespace vantor::server {
class StdFont;
class StdPicture;
}  // namespace vantor::server

namespace vantor::imaging {

class cGDIPlus;

// How ScaleImage fits a picture into a size. The values follow the picture
// control's ENUM_SCALE_METHOD, whose first three map onto these one to one.
enum ENUM_SCALE_OPTIONS : int32_t {
  Scale_To_Size = 0,
  Scale_Stretched = 1,
  Scale_Down_As_Needed = 2,
};

enum ENUM_REGION_STYLES : int32_t { Region_Bounds = 0, Region_Enclosed = 1, Region_Shaped = 2 };

enum ENUM_TRIM_OPTIONS : int32_t {
  Trim_All = 0,
  Trim_Left = 1,
  Trim_Top = 2,
  Trim_Right = 4,
  Trim_Bottom = 8,
};

enum ENUM_GRAY_SCALE_FORMULAS : int32_t {
  GrayScale_None = -1,
  GrayScale_NTSCPAL = 0,
  GrayScale_CCIR709 = 1,
  GrayScale_SimpleAvg = 2,
  GrayScale_RedMask = 3,
  GrayScale_GreenMask = 4,
  GrayScale_BlueMask = 5,
  GrayScale_RedGreenMask = 6,
  GrayScale_BlueGreenMask = 7,
};

// The operating system as the capability bits read it: platform 1 is the 9x
// family, 2 the NT family.
struct OsVersion {
  int32_t platform = 2;
  int32_t major = 6;
  int32_t minor = 1;
  int32_t servicePack = 1;
};

// One picture an icon or cursor file offers.
struct IconSize {
  int32_t width = 0;
  int32_t height = 0;
  int32_t bitDepth = 0;
};

class c32bppDIB {
 public:
  // Capability bits.
  static constexpr uint32_t kAlphaBlendFriendly = 1;
  static constexpr uint32_t kGdiPlusEnabled = 2;
  static constexpr uint32_t kAlphaBlendReliableNT = 8;
  static constexpr uint32_t kAlphaBlendReliable9x = 16;
  static constexpr uint32_t kGdiPlusForbidden = 32;
  static constexpr uint32_t kNTFamily = 64;
  // The bits an operating system gives at construction.
  static uint32_t CapabilitiesFor(const OsVersion& os);
  // What this system reports.
  static OsVersion HostOsVersion();

  c32bppDIB();
  explicit c32bppDIB(const OsVersion& os);
  ~c32bppDIB();
  c32bppDIB(const c32bppDIB&) = delete;
  c32bppDIB& operator=(const c32bppDIB&) = delete;

  // ---------------------------------------------------------------- state
  bool get_HighQualityInterpolation() const { return highQuality_; }
  void put_HighQualityInterpolation(bool v) { highQuality_ = v; }
  HBITMAP get_Handle() const { return handle_; }
  uint8_t* get_BitsPointer() const { return bits_; }
  int32_t get_Width() const { return width_; }
  int32_t get_Height() const { return height_; }
  int32_t get_scanWidth() const { return width_ * 4; }
  ENUM_IMAGE_FORMAT get_ImageType() const { return imageType_; }
  void put_ImageType(ENUM_IMAGE_FORMAT v) { imageType_ = v; }
  ENUM_ALPHA_TYPE get_Alpha() const { return alpha_; }
  void put_Alpha(ENUM_ALPHA_TYPE v) { alpha_ = v; }
  bool get_ManageOwnDC() const { return manageOwnDC_; }
  // Off deletes the DC when the DIB is not selected into it; on makes one
  // when there are pixels.
  void put_ManageOwnDC(bool v);
  uintptr_t get_gdiToken() const { return gdiToken_; }
  void put_gdiToken(uintptr_t v) { gdiToken_ = v; }
  bool get_isAlphaBlendFriendly() const { return (capabilities_ & kAlphaBlendFriendly) != 0; }
  // False clears the bit; true sets it only where AlphaBlend is reliable.
  void put_isAlphaBlendFriendly(bool v);
  bool get_isGDIplusEnabled() const { return (capabilities_ & kGdiPlusEnabled) != 0; }
  // A change clears the bit and, for true where GDI+ is not forbidden,
  // probes and sets it on success.
  void put_isGDIplusEnabled(bool v);
  bool get_KeepGDIplusActive() const { return keepGdiPlus_; }
  void put_KeepGDIplusActive(bool v);
  const Variant& get_Tag() const { return tag_; }
  void put_Tag(Variant v) { tag_ = std::move(v); }
  uint32_t Capabilities() const { return capabilities_; }
  // The pixels as a view, for code that reads the surface.
  PixelView View() const { return PixelView{bits_, width_, height_}; }

  // ---------------------------------------------------------------- life
  // A fresh, transparent surface (Alpha Simple, ImageType 0); the absolute
  // height is taken.
  bool InitializeDIB(int32_t Width, int32_t Height);
  void DestroyDIB();
  // Zero-fills: ImageType 0, Alpha Simple.
  void EraseDIB();
  // Takes a reader's picture: the bytes are copied once into the DIB section
  // and `pixels` is left empty. Alpha and ImageType come with it.
  bool AdoptPixels(Pixels&& pixels);
  // A copy of the pixels in the readers' and writers' layout.
  bool CopyToPixels(Pixels& out) const;
  // Selects the DIB into the surface's DC (made from the screen's when
  // needed) and returns that DC; false deselects and, unless ManageOwnDC,
  // deletes the DC, returning null.
  HDC LoadDIBinDC(bool selectDIB);

  // ---------------------------------------------------------------- loading
  bool LoadPicture_File(StringView FileName, int32_t iconCx = 0, int32_t iconCy = 0,
                        int32_t iconBitDepth = 0, bool SaveFormat = false);
  bool LoadPicture_Stream(std::span<const uint8_t> aStream, int32_t iconCx = 0, int32_t iconCy = 0,
                          int32_t iconBitDepth = 0, int32_t streamStart = 0,
                          int32_t streamLength = 0, bool SaveFormat = false);
  // This system has no resources in modules: always false, surface empty.
  bool LoadPicture_Resource(const Variant& ResIndex, const Variant& ResSection,
                            const ObjectPtr& VBglobal, int32_t iconCx = 0, int32_t iconCy = 0,
                            int32_t iconBitDepth = 0, int32_t streamStart = 0,
                            int32_t streamLength = 0, bool SaveFormat = false);
  bool LoadPicture_StdPicture(const std::shared_ptr<server::StdPicture>& Picture);
  // Bitmaps (object type 7). Metafiles and icons have no handles on this
  // system's GDI, so those fail.
  bool LoadPicture_ByHandle(HGDIOBJ Handle);
  // A device-independent bitmap (CF_DIB) on the clipboard.
  bool LoadPicture_ClipBoard();
  // The host's OLE data object does not exist on this system: always false.
  bool LoadPicture_DropedFiles(const ObjectPtr& oleObjectData, int32_t FileIndex = 1,
                               int32_t iconCx = 32, int32_t iconCy = 32, int32_t iconBitDepth = 32,
                               bool SaveFormat = false);
  // The FileIndex-th (from 1) of the files on the clipboard (CF_HDROP).
  bool LoadPicture_PastedFiles(int32_t FileIndex = 1, int32_t iconCx = 32, int32_t iconCy = 32,
                               int32_t iconBitDepth = 32, bool SaveFormat = false);
  bool LoadPicture_FromOrignalFormat(int32_t iconCx = 0, int32_t iconCy = 0,
                                     int32_t iconBitDepth = 0);
  bool GetOrginalFormat(std::vector<uint8_t>& outArray) const;
  // The (width, height, depth) of every picture of the icon or cursor whose
  // bytes are kept; the count, 0 when no such bytes are held.
  int32_t SourceIconSizes(std::vector<IconSize>& outSizes) const;

  // ---------------------------------------------------------------- pixels
  // Fits the picture to a size by an ENUM_SCALE_OPTIONS rule; computes only.
  void ScaleImage(int32_t desiredWidth, int32_t desiredHeight, int32_t& outWidth,
                  int32_t& outHeight, int32_t ScaleOptions = Scale_To_Size) const;
  // The colour (0x00BBGGRR) at (x, y), top-down, with its alpha; straight
  // colour unless `asPremultiplied`. -1 outside the picture.
  int32_t GetPixel(int32_t X, int32_t Y, int32_t* Alpha = nullptr,
                   bool asPremultiplied = false) const;
  bool SetPixel(int32_t X, int32_t Y, OLE_COLOR Color, int32_t Alpha = 255,
                bool isPremultiplied = false);
  // The pixels as bytes. With asBGR a pixel is 4 bytes (blue, green, red,
  // alpha), without it 3 (red, green, blue). Rows go top-down unless
  // asBottomUp, are padded to 4 bytes with asFileFormat, and `rowBytes` says
  // how long each is. The two-dimensional form is the same bytes seen as
  // rows of rowBytes. The rectangle's width and height default to the whole
  // and are cut at the picture's edge.
  bool GetDIBbits(std::vector<uint8_t>& outBytes, int32_t& rowBytes, bool asTwoDimensional = false,
                  bool asBGR = true, bool asBottomUp = true, bool asPremultiplied = true,
                  bool asFileFormat = false, int32_t srcX = 0, int32_t srcY = 0,
                  int32_t srcWidth = 0, int32_t srcHeight = 0) const;
  // Makes the surface from bytes in the form GetDIBbits writes.
  bool SetDIBbits(std::span<const uint8_t> inBytes, int32_t Width, int32_t Height,
                  bool asBGR = true, bool asBottomUp = true, bool isPremultiplied = true,
                  bool asFileFormat = false);
  // A region of the pixels with alpha above 0, in surface coordinates moved
  // by the offset; the caller owns it. Null for a bad style or no pixels.
  HRGN CreateRegion(int32_t RegionStyle, int32_t xOffset = 0, int32_t yOffset = 0) const;
  // Sizes are taken absolute, 0 meaning the source's. A null target is made.
  bool CopyImageTo(std::unique_ptr<c32bppDIB>& cHost, int32_t newWidth = 0, int32_t newHeight = 0,
                   bool CopyOriginalFormat = false);
  bool CopyImageTo(c32bppDIB& cHost, int32_t newWidth = 0, int32_t newHeight = 0,
                   bool CopyOriginalFormat = false);
  bool Resize(int32_t newWidth, int32_t newHeight);
  bool TrimImage(bool UpdateImage, int32_t TrimOptions, int32_t& X, int32_t& Y, int32_t& Width,
                 int32_t& Height);
  // Repeats the picture over `area` of the target (its whole when empty),
  // replacing what was there.
  bool TileImage(c32bppDIB& target, const RECT& area);

  // ---------------------------------------------------------------- effects
  bool CreateCheckerBoard(int32_t SquareSize = 8, OLE_COLOR Color1 = 0xFFFFFF,
                          OLE_COLOR Color2 = 0xC0C0C0, int32_t Width = 0, int32_t Height = 0);
  bool MakeGrayScale(int32_t Formula = GrayScale_NTSCPAL);
  bool MakeImageInverse();
  // Pixels of the colour become wholly transparent.
  bool MakeTransparent(OLE_COLOR TransparentColor);
  bool MakeLighterDarker(float LightAdjustment);
  bool BlendToColor(OLE_COLOR Color, int32_t BlendPercent = 50);

  // ---------------------------------------------------------------- drawing
  // Draws the source rectangle (0: the whole) over the destination rectangle
  // (0: the picture's size). A negative source or destination size mirrors
  // the picture in place; Opacity is taken as |Opacity| mod 100 with 0 as
  // 100, and below 1 nothing is drawn. Blend false draws the colours as if
  // the picture had no alpha. With destHostDIB the picture goes into that
  // surface (destinationDC is then not used). A fractional Angle, or a whole
  // one that is no multiple of 360, turns the picture clockwise about the
  // destination's centre. The system's AlphaBlend draws where it can (no
  // mirror, grey or light, and no quality stretch); otherwise our own blend.
  bool Render(HDC destinationDC, int32_t DestX = 0, int32_t DestY = 0, int32_t DestWidth = 0,
              int32_t DestHeight = 0, int32_t srcX = 0, int32_t srcY = 0, int32_t srcwidth = 0,
              int32_t srcheight = 0, int32_t Opacity = 100, bool Blend = true,
              bool SetHalfTone = true, c32bppDIB* destHostDIB = nullptr, int32_t grayScale = -1,
              float LightAdjustment = 0, float Angle = 0, bool CenterOnDestXY = false);
  // A soft shadow of the picture's shape in one colour, drawn where the
  // picture would be drawn at (DestX, DestY), blurred over ShadowDepth pixels.
  bool RenderDropShadow_JIT(HDC destinationDC, int32_t DestX, int32_t DestY,
                            int32_t ShadowDepth = 2, OLE_COLOR Color = 0x404040,
                            int32_t Opacity = 50, int32_t DestWidth = 0, int32_t DestHeight = 0,
                            float Angle = 0, bool CenterOnDestXY = false,
                            c32bppDIB* destHostDIB = nullptr);
  // Text drawn into the pixels, its coverage becoming alpha.
  bool DrawText_stdFont(StringView Text, RECT DestRect, OLE_COLOR Color,
                        const server::StdFont& Font, UINT Format = DT_LEFT | DT_TOP);
  bool DrawText_hFont(StringView Text, RECT DestRect, OLE_COLOR Color, HFONT Font,
                      UINT Format = DT_LEFT | DT_TOP);

  // ---------------------------------------------------------------- saving
  bool SaveToFile_Bitmap(StringView FileName, bool asPremultiplied = false,
                         std::optional<OLE_COLOR> FillColor = {});
  bool SaveToFile_PNG(StringView FileName);
  bool SaveToFile_JPG(StringView FileName, int32_t Quality = 75, OLE_COLOR FillColor = 0xFFFFFF);
  bool SaveToFile_GIF(StringView FileName, bool UseAdaptivePalette = true,
                      int32_t OpaqueTolerance = 128, std::optional<OLE_COLOR> FillColor = {});
  bool SaveToStream_Bitmap(std::vector<uint8_t>& outStream, bool asPremultiplied = false,
                           std::optional<OLE_COLOR> FillColor = {});
  bool SaveToStream_PNG(std::vector<uint8_t>& outStream);
  bool SaveToStream_JPG(std::vector<uint8_t>& outStream, int32_t Quality = 75,
                        OLE_COLOR FillColor = 0xFFFFFF);
  bool SaveToStream_GIF(std::vector<uint8_t>& outStream, bool UseAdaptivePalette = true,
                        int32_t OpaqueTolerance = 128, std::optional<OLE_COLOR> FillColor = {});
  // PNG metadata for the PNG saves, held by the PNG writer (ENUM_PNG_PROPERTIES);
  // -1 clears all, a missing or empty value clears one.
  bool PngPropertySet(int32_t PropertyID, const Variant& Value = Variant::Missing(),
                      StringView Keyword = u"");
  Variant PngPropertyGet(int32_t PropertyID, StringView Keyword = u"") const;

  // ---------------------------------------------------------------- GDI+
  bool CreateGDIplusToken();
  void DestroyGDIplusToken();
  static bool isZlibEnabled();
  // Tests make the library (the PNG reader and writer with it) behave as if
  // zlib were missing.
  static void SetZlibAbsentForTesting(bool absent);

 private:
  struct LoadRequest;
  // The one routine every byte and file form ends in; `owned`, when given,
  // holds `bytes` and may be taken as the kept source.
  bool Dispatch(std::span<const uint8_t> bytes, std::vector<uint8_t>* owned,
                const LoadRequest& request);
  bool SelectIntoDC(HDC& dc, HGDIOBJ& previous, bool& temporary);
  void UnselectFromDC(HDC dc, HGDIOBJ previous, bool temporary);
  bool CopyInto(c32bppDIB& target, int32_t width, int32_t height);
  bool SaveCheck(StringView FileName) const;
  bool WriteFile(StringView FileName, const std::vector<uint8_t>& bytes) const;
  HRGN RegionOf(int32_t RegionStyle, int32_t xOffset, int32_t yOffset) const;
  // Takes another surface's DIB in place of its own, keeping everything else.
  void TakePixelsOf(c32bppDIB& other);
  // Re-reads the alpha kind after a change that may have made one.
  void RescanAlpha();

  bool highQuality_ = false;
  HBITMAP handle_ = nullptr;
  uint8_t* bits_ = nullptr;
  int32_t height_ = 0;
  int32_t width_ = 0;
  HDC dc_ = nullptr;
  HGDIOBJ previousBitmap_ = nullptr;
  uint32_t capabilities_ = 0;
  ENUM_IMAGE_FORMAT imageType_ = Image_Error;
  bool manageOwnDC_ = false;
  ENUM_ALPHA_TYPE alpha_ = Alpha_None;
  uintptr_t gdiToken_ = 0;
  bool ownsToken_ = false;  // made by CreateGDIplusToken, not borrowed
  std::vector<uint8_t> source_;
  std::unique_ptr<cGDIPlus> gdiPlus_;
  bool keepGdiPlus_ = false;
  Variant tag_;
  std::unique_ptr<cPNGwriter> pngWriter_;  // made when a PNG property is first set
};

}  // namespace vantor::imaging
