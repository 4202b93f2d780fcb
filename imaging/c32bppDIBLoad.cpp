// Loading a surface: every byte and file form ends in one dispatch that tries
// the library's readers (PNG, GIF, ICO, BMP, in that order, each testing its
// own signature), after the one a file's extension names; the handle,
// picture-object and clipboard forms turn what the system holds into bytes or
// pixels first. The source bytes are kept on request so that a picture can be
// saved in its own format or reloaded at another icon size.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>

#include "imaging/c32bppDIB.h"
#include "imaging/cBMPparser.h"
#include "imaging/cGDIPlus.h"
#include "imaging/cGIFparser.h"
#include "imaging/cICOparser.h"
#include "imaging/cPNGparser.h"
#include "platform/FilePath.h"
#include "platform/User.h"
#include "server/StdPicture.h"

namespace vantor::imaging {

namespace {

// A file of this size or less cannot hold a picture any reader would take.
constexpr size_t kMinFileBytes = 56;
// Nor can an array of fewer bytes.
constexpr size_t kMinStreamBytes = 20;
// Files are read whole; beyond this they are refused.
constexpr uintmax_t kMaxFileBytes = uintmax_t{1} << 30;

// The clipboard's list of files (CF_HDROP) and its header, DROPFILES.
constexpr UINT kClipboardFileList = 15;
constexpr size_t kDropFilesHeader = 20;

struct IconWish {
  int32_t width = 0;
  int32_t height = 0;
  int32_t depth = 0;
};

// Bytes in, pixels out, false (and `out` empty) on anything that is not the
// reader's own format.
using ReadFn = bool (*)(std::span<const uint8_t> bytes, Pixels& out, const IconWish& wish);

struct Reader {
  const char* extension;
  ReadFn read;  // null while that reader is not part of the library
};

bool ReadPng(std::span<const uint8_t> bytes, Pixels& out, const IconWish&) {
  return cPNGparser().LoadStream(bytes, out);
}

bool ReadGif(std::span<const uint8_t> bytes, Pixels& out, const IconWish&) {
  return cGIFparser().LoadStream(bytes, out);
}

bool ReadIco(std::span<const uint8_t> bytes, Pixels& out, const IconWish& wish) {
  return cICOparser().LoadStream(bytes, out, 0, 0, wish.width, wish.height, wish.depth);
}

bool ReadBmp(std::span<const uint8_t> bytes, Pixels& out, const IconWish&) {
  return cBMPparser().LoadStream(bytes, out);
}

// The fixed order of the dispatch.
constexpr Reader kReaders[] = {
    {".png", ReadPng},
    {".gif", ReadGif},
    {".ico", ReadIco},
    {".bmp", ReadBmp},
};

std::string LowerExtension(StringView fileName) {
  const size_t dot = fileName.rfind(u'.');
  if (dot == StringView::npos) return {};
  std::string ext;
  for (char16_t c : fileName.substr(dot)) {
    if (c > 127) return {};  // no reader's extension has such a character
    ext += static_cast<char>(c >= u'A' && c <= u'Z' ? c + 32 : c);
  }
  return ext;
}

bool ReadWholeFile(StringView fileName, std::vector<uint8_t>& out) {
  out.clear();
  const std::string native = platform::FilePath::Native(fileName);
  if (native.empty()) return false;
  try {
    const std::filesystem::path path(native);
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return false;
    const uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size > kMaxFileBytes) return false;
    std::ifstream file(path, std::ios::binary);
    if (!file) return false;
    out.resize(static_cast<size_t>(size));
    file.read(reinterpret_cast<char*>(out.data()), static_cast<std::streamsize>(out.size()));
    out.resize(static_cast<size_t>(file.gcount()));
    return true;
  } catch (const std::exception&) {
    out.clear();
    return false;
  }
}

// The clipboard, open for as long as the object lives.
class OpenedClipboard {
 public:
  OpenedClipboard() : open_(OpenClipboard(nullptr) != 0) {}
  ~OpenedClipboard() {
    if (open_) CloseClipboard();
  }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;
  bool Open() const { return open_; }

  // A copy of a format's block; empty when there is none.
  std::vector<uint8_t> Data(UINT format) const {
    if (!open_ || !IsClipboardFormatAvailable(format)) return {};
    HANDLE h = GetClipboardData(format);
    if (h == nullptr) return {};
    const size_t size = GlobalSize(h);
    const auto* p = static_cast<const uint8_t*>(GlobalLock(h));
    if (p == nullptr) return {};
    std::vector<uint8_t> bytes(p, p + size);
    GlobalUnlock(h);
    return bytes;
  }

 private:
  bool open_;
};

uint32_t Le32(const uint8_t* p) {
  return uint32_t{p[0]} | (uint32_t{p[1]} << 8) | (uint32_t{p[2]} << 16) | (uint32_t{p[3]} << 24);
}

void PutLe32(uint8_t* p, uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}

// A packed DIB (header, masks, palette, bits) as a .bmp file, for the reader.
std::vector<uint8_t> BitmapFileOf(const std::vector<uint8_t>& packed) {
  if (packed.size() < 40) return {};
  const uint32_t headerSize = Le32(packed.data());
  if (headerSize < 40 || headerSize > packed.size()) return {};
  const uint32_t bitCount = packed[14] | (uint32_t{packed[15]} << 8);
  const uint32_t compression = Le32(packed.data() + 16);
  const uint32_t used = Le32(packed.data() + 32);
  uint64_t offset = 14 + uint64_t{headerSize};
  if (headerSize == 40 && (compression == BI_BITFIELDS || compression == 6)) {
    offset += compression == 6 ? 16 : 12;
  }
  if (bitCount <= 8)
    offset += 4 * uint64_t{used != 0 ? std::min(used, 1u << bitCount) : 1u << bitCount};
  std::vector<uint8_t> file(14 + packed.size());
  file[0] = 'B';
  file[1] = 'M';
  PutLe32(file.data() + 2, static_cast<uint32_t>(file.size()));
  PutLe32(file.data() + 10, offset < file.size() ? static_cast<uint32_t>(offset) : 0);
  std::memcpy(file.data() + 14, packed.data(), packed.size());
  return file;
}

// The FileIndex-th (from 1) name of a DROPFILES block.
String FileNameFromList(const std::vector<uint8_t>& block, int32_t index) {
  if (block.size() < kDropFilesHeader || index < 1) return {};
  const size_t start = Le32(block.data());
  const bool wide = Le32(block.data() + 16) != 0;
  if (start < kDropFilesHeader || start >= block.size()) return {};
  String name;
  int32_t count = 0;
  size_t at = start;
  const size_t unit = wide ? 2 : 1;
  while (at + unit <= block.size()) {
    const char16_t c = wide ? static_cast<char16_t>(block[at] | (block[at + 1] << 8))
                            : static_cast<char16_t>(block[at]);
    at += unit;
    if (c != 0) {
      name += c;
      continue;
    }
    if (name.empty()) break;  // the empty name ends the list
    if (++count == index) return wide ? name : FromAnsi(ToUtf8(name));
    name.clear();
  }
  return {};
}

}  // namespace

struct c32bppDIB::LoadRequest {
  std::string extension;  // lower-cased, with its dot; empty for arrays
  IconWish icon;
  bool keepSource = false;
};

bool c32bppDIB::Dispatch(std::span<const uint8_t> bytes, std::vector<uint8_t>* owned,
                         const LoadRequest& request) {
  DestroyDIB();
  IconWish icon = request.icon;
  icon.width = std::max(icon.width, 0);
  icon.height = std::max(icon.height, 0);
  icon.depth = std::clamp(icon.depth, 0, 32);
  try {
    Pixels pixels;
    const Reader* first = nullptr;
    for (const Reader& r : kReaders) {
      if (r.read != nullptr && request.extension == r.extension) first = &r;
    }
    bool read = first != nullptr && first->read(bytes, pixels, icon);
    for (const Reader& r : kReaders) {
      if (read) break;
      if (&r == first || r.read == nullptr) continue;  // the named one already said no
      read = r.read(bytes, pixels, icon);
    }
    bool sourceReplaced = false;
    if (!read && get_isGDIplusEnabled()) {
      if (!gdiPlus_) gdiPlus_ = std::make_unique<cGDIPlus>();
      read = gdiPlus_->LoadPicture(bytes, pixels);
      if (read && request.keepSource) {
        // What only GDI+ reads is kept as PNG, which every reader here takes.
        std::vector<uint8_t> png;
        if (gdiPlus_->SavePicture(pixels, "image/png", 0, png)) {
          source_ = std::move(png);
          pixels.format = Image_PNG;
          sourceReplaced = true;
        }
      }
      if (!keepGdiPlus_) gdiPlus_.reset();
    }
    if (!read) return false;
    std::vector<uint8_t> kept = std::move(source_);
    if (!AdoptPixels(std::move(pixels))) return false;
    if (sourceReplaced) {
      source_ = std::move(kept);
    } else if (request.keepSource) {
      if (owned != nullptr && owned->data() == bytes.data() && owned->size() == bytes.size()) {
        source_ = std::move(*owned);
      } else {
        source_.assign(bytes.begin(), bytes.end());
      }
    }
    return true;
  } catch (const std::exception&) {
    DestroyDIB();
    return false;
  }
}

bool c32bppDIB::LoadPicture_File(StringView FileName, int32_t iconCx, int32_t iconCy,
                                 int32_t iconBitDepth, bool SaveFormat) {
  DestroyDIB();
  std::vector<uint8_t> bytes;
  if (!ReadWholeFile(FileName, bytes) || bytes.size() <= kMinFileBytes) return false;
  LoadRequest request;
  request.extension = LowerExtension(FileName);
  request.icon = IconWish{iconCx, iconCy, iconBitDepth};
  request.keepSource = SaveFormat;
  return Dispatch(bytes, &bytes, request);
}

bool c32bppDIB::LoadPicture_Stream(std::span<const uint8_t> aStream, int32_t iconCx, int32_t iconCy,
                                   int32_t iconBitDepth, int32_t streamStart, int32_t streamLength,
                                   bool SaveFormat) {
  DestroyDIB();
  const size_t start = static_cast<size_t>(std::max(streamStart, 0));
  if (start >= aStream.size()) return false;
  size_t length = aStream.size() - start;
  if (streamLength > 0) length = std::min(length, static_cast<size_t>(streamLength));
  if (length < kMinStreamBytes) return false;
  LoadRequest request;
  request.icon = IconWish{iconCx, iconCy, iconBitDepth};
  request.keepSource = SaveFormat;
  // The readers work on the caller's bytes where they lie; only a kept
  // source is copied, once.
  return Dispatch(aStream.subspan(start, length), nullptr, request);
}

bool c32bppDIB::LoadPicture_Resource(const Variant&, const Variant&, const ObjectPtr&, int32_t,
                                     int32_t, int32_t, int32_t, int32_t, bool) {
  // Modules carry no resources on this system; see the header.
  DestroyDIB();
  return false;
}

bool c32bppDIB::LoadPicture_StdPicture(const std::shared_ptr<server::StdPicture>& Picture) {
  DestroyDIB();
  if (!Picture || Picture->get_Handle() == nullptr) return false;
  Pixels pixels;
  bool ok = false;
  try {
    if (Picture->get_Type() == server::PictureType::Icon) {
      ok = cICOparser().ConvertstdPicTo32bpp(Picture->get_Handle(), nullptr, pixels);
    } else if (Picture->get_Type() == server::PictureType::Bitmap) {
      ok = cBMPparser().ConvertstdPicTo32bpp(Picture->get_Handle(), pixels);
    }
  } catch (const std::exception&) {
    ok = false;
  }
  return ok && AdoptPixels(std::move(pixels));
}

bool c32bppDIB::LoadPicture_ByHandle(HGDIOBJ Handle) {
  DestroyDIB();
  if (Handle == nullptr) return false;
  // Object type 7 is a bitmap. Metafiles (9, 13) and icons, which the rest
  // would be, have no handles in this system's GDI.
  if (GetObjectType(Handle) != OBJ_BITMAP) return false;
  Pixels pixels;
  return cBMPparser().ConvertstdPicTo32bpp(static_cast<HBITMAP>(Handle), pixels) &&
         AdoptPixels(std::move(pixels));
}

bool c32bppDIB::LoadPicture_ClipBoard() {
  DestroyDIB();
  std::vector<uint8_t> file;
  try {
    OpenedClipboard clipboard;
    if (!clipboard.Open()) return false;
    file = BitmapFileOf(clipboard.Data(CF_DIB));
  } catch (const std::exception&) {
    return false;
  }
  if (file.empty()) return false;
  LoadRequest request;
  request.extension = ".bmp";
  return Dispatch(file, &file, request);
}

bool c32bppDIB::LoadPicture_DropedFiles(const ObjectPtr&, int32_t, int32_t, int32_t, int32_t,
                                        bool) {
  // A drop brings the host's OLE data object, which this system has not.
  DestroyDIB();
  return false;
}

bool c32bppDIB::LoadPicture_PastedFiles(int32_t FileIndex, int32_t iconCx, int32_t iconCy,
                                        int32_t iconBitDepth, bool SaveFormat) {
  DestroyDIB();
  String name;
  try {
    OpenedClipboard clipboard;
    if (!clipboard.Open()) return false;
    name = FileNameFromList(clipboard.Data(kClipboardFileList), FileIndex);
  } catch (const std::exception&) {
    return false;
  }
  if (name.empty()) return false;
  return LoadPicture_File(name, iconCx, iconCy, iconBitDepth, SaveFormat);
}

bool c32bppDIB::LoadPicture_FromOrignalFormat(int32_t iconCx, int32_t iconCy,
                                              int32_t iconBitDepth) {
  if (source_.empty()) return false;
  std::vector<uint8_t> bytes = std::move(source_);
  LoadRequest request;
  request.icon = IconWish{iconCx, iconCy, iconBitDepth};
  request.keepSource = true;
  return Dispatch(bytes, &bytes, request);
}

bool c32bppDIB::GetOrginalFormat(std::vector<uint8_t>& outArray) const {
  if (source_.empty()) {
    outArray.clear();
    return false;
  }
  outArray = source_;
  return true;
}

int32_t c32bppDIB::SourceIconSizes(std::vector<IconSize>& outSizes) const {
  outSizes.clear();
  if (source_.empty()) return 0;
  switch (imageType_) {
    case Image_Icon:
    case Image_Cursor:
    case Image_Icon_ARGB:
    case Image_Cursor_ARGB:
    case Image_PNG_Icon:
      break;
    default:
      return 0;
  }
  try {
    cICOparser directory;
    if (!directory.ReadDirectory(source_)) return 0;
    for (int32_t i = 0; i < directory.IconCount(); ++i) {
      outSizes.push_back(IconSize{directory.Width(i), directory.Height(i), directory.bitDepth(i)});
    }
  } catch (const std::exception&) {
    outSizes.clear();
  }
  return static_cast<int32_t>(outSizes.size());
}

}  // namespace vantor::imaging
