// Saving a surface through the writers (BMP and GIF by their parsers, PNG by
// the PNG writer or GDI+, JPEG by GDI+ or the JPEG writer), the PNG metadata
// the PNG writer keeps, and GDI+ tokens.
#include <filesystem>
#include <fstream>

#include <zlib.h>

#include "imaging/c32bppDIB.h"
#include "imaging/cBMPparser.h"
#include "imaging/cGDIPlus.h"
#include "imaging/cGIFparser.h"
#include "imaging/cJPGWriter.h"
#include "imaging/cPNGparser.h"
#include "imaging/cPNGwriter.h"
#include "platform/FilePath.h"

namespace vantor::imaging {

bool c32bppDIB::SaveCheck(StringView FileName) const {
  const std::string native = platform::FilePath::Native(FileName);
  if (native.empty() || bits_ == nullptr) return false;
  try {
    const std::filesystem::path path(native);
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return false;
    std::filesystem::path folder = path.parent_path();
    if (folder.empty()) folder = ".";
    return std::filesystem::is_directory(folder, error);
  } catch (const std::exception&) {
    return false;
  }
}

bool c32bppDIB::WriteFile(StringView FileName, const std::vector<uint8_t>& bytes) const {
  try {
    std::ofstream file(std::filesystem::path(platform::FilePath::Native(FileName)),
                       std::ios::binary | std::ios::trunc);
    if (!file) return false;
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file);
  } catch (const std::exception&) {
    return false;
  }
}

bool c32bppDIB::SaveToStream_Bitmap(std::vector<uint8_t>& outStream, bool asPremultiplied,
                                    std::optional<OLE_COLOR> FillColor) {
  outStream.clear();
  Pixels pixels;
  if (!CopyToPixels(pixels)) return false;
  return cBMPparser().SaveAsBMP(pixels, outStream, asPremultiplied, FillColor);
}

bool c32bppDIB::SaveToStream_GIF(std::vector<uint8_t>& outStream, bool UseAdaptivePalette,
                                 int32_t OpaqueTolerance, std::optional<OLE_COLOR> FillColor) {
  outStream.clear();
  Pixels pixels;
  if (!CopyToPixels(pixels)) return false;
  return cGIFparser().SaveAsGIF(pixels, outStream, UseAdaptivePalette, OpaqueTolerance, FillColor);
}

bool c32bppDIB::SaveToStream_PNG(std::vector<uint8_t>& outStream) {
  outStream.clear();
  Pixels pixels;
  if (!CopyToPixels(pixels)) return false;
  const bool gdiPlus = get_isGDIplusEnabled();
  auto throughGdiPlus = [&] {
    if (!gdiPlus_) gdiPlus_ = std::make_unique<cGDIPlus>();
    const bool ok = gdiPlus_->SavePicture(pixels, "image/png", 0, outStream);
    if (!keepGdiPlus_) gdiPlus_.reset();
    return ok;
  };
  // The PNG writer is the only one that writes metadata, so with some it
  // goes first; GDI+, where there is one, is the other way round.
  const bool properties = pngWriter_ && pngWriter_->HasProperties();
  if (gdiPlus && !properties && throughGdiPlus()) return true;
  if (isZlibEnabled()) {
    const cPNGwriter plain;
    if ((pngWriter_ ? *pngWriter_ : plain).Save(pixels, outStream)) return true;
  }
  if (gdiPlus && properties && throughGdiPlus()) return true;
  outStream.clear();
  return false;
}

bool c32bppDIB::SaveToStream_JPG(std::vector<uint8_t>& outStream, int32_t Quality,
                                 OLE_COLOR FillColor) {
  outStream.clear();
  Pixels pixels;
  if (!CopyToPixels(pixels)) return false;
  if (get_isGDIplusEnabled()) {
    if (!gdiPlus_) gdiPlus_ = std::make_unique<cGDIPlus>();
    const bool ok = gdiPlus_->SavePicture(pixels, "image/jpeg", Quality, outStream);
    if (!keepGdiPlus_) gdiPlus_.reset();
    if (ok) return true;
  }
  // Our own writer lays transparency over the fill colour itself.
  if (cJPGWriter().Save(pixels, outStream, Quality, FillColor)) return true;
  outStream.clear();
  return false;
}

bool c32bppDIB::SaveToFile_Bitmap(StringView FileName, bool asPremultiplied,
                                  std::optional<OLE_COLOR> FillColor) {
  std::vector<uint8_t> bytes;
  return SaveCheck(FileName) && SaveToStream_Bitmap(bytes, asPremultiplied, FillColor) &&
         WriteFile(FileName, bytes);
}

bool c32bppDIB::SaveToFile_PNG(StringView FileName) {
  std::vector<uint8_t> bytes;
  return SaveCheck(FileName) && SaveToStream_PNG(bytes) && WriteFile(FileName, bytes);
}

bool c32bppDIB::SaveToFile_JPG(StringView FileName, int32_t Quality, OLE_COLOR FillColor) {
  std::vector<uint8_t> bytes;
  return SaveCheck(FileName) && SaveToStream_JPG(bytes, Quality, FillColor) &&
         WriteFile(FileName, bytes);
}

bool c32bppDIB::SaveToFile_GIF(StringView FileName, bool UseAdaptivePalette,
                               int32_t OpaqueTolerance, std::optional<OLE_COLOR> FillColor) {
  std::vector<uint8_t> bytes;
  return SaveCheck(FileName) &&
         SaveToStream_GIF(bytes, UseAdaptivePalette, OpaqueTolerance, FillColor) &&
         WriteFile(FileName, bytes);
}

bool c32bppDIB::PngPropertySet(int32_t PropertyID, const Variant& Value, StringView Keyword) {
  if (!pngWriter_) pngWriter_ = std::make_unique<cPNGwriter>();
  return pngWriter_->PngPropertySet(PropertyID, Value, Keyword);
}

Variant c32bppDIB::PngPropertyGet(int32_t PropertyID, StringView Keyword) const {
  if (pngWriter_) return pngWriter_->PngPropertyGet(PropertyID, Keyword);
  return cPNGwriter().PngPropertyGet(PropertyID, Keyword);
}

bool c32bppDIB::CreateGDIplusToken() {
  if (gdiToken_ != 0) return true;
  if ((capabilities_ & kGdiPlusForbidden) != 0) return false;
  gdiToken_ = cGDIPlus::CreateToken();
  ownsToken_ = gdiToken_ != 0;
  return ownsToken_;
}

void c32bppDIB::DestroyGDIplusToken() {
  if (gdiToken_ == 0) return;
  gdiPlus_.reset();
  // A borrowed token belongs to whoever lent it.
  if (ownsToken_) cGDIPlus::DestroyToken(gdiToken_);
  ownsToken_ = false;
  gdiToken_ = 0;
}

bool c32bppDIB::isZlibEnabled() {
  if (!cPNGparser::ZlibPresent() || !cPNGwriter::ZlibPresent()) return false;
  // zlib is linked in; its CRC of nothing is the one value it must give.
  return crc32(0L, Z_NULL, 0) == 0;
}

void c32bppDIB::SetZlibAbsentForTesting(bool absent) {
  cPNGparser::SimulateZlibAbsent(absent);
  cPNGwriter::SimulateZlibAbsent(absent);
}

}  // namespace vantor::imaging
