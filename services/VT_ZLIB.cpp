#include "services/VT_ZLIB.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "platform/FilePath.h"
#include "server/Registry.h"
#include "server/TypeLibrary.h"

namespace vantor::services {

namespace {

bool g_forcedAbsent = false;

constexpr size_t kLongMax = static_cast<size_t>(std::numeric_limits<int32_t>::max());

// Deflate never expands more than this: a 258-byte match costs at least two
// bits. A declared size beyond what the stream can give is only a bigger
// buffer that uncompress would leave unused, so it is not allocated.
constexpr size_t kMaxInflateRatio = 1032;

// The working buffer the library has always given zlib: the size plus one in
// a hundred plus twelve bytes, enough for deflate's worst case.
size_t WorkingSize(size_t size) {
  return static_cast<size_t>(std::llround(static_cast<double>(size) * 1.01 + 12.0));
}

std::string NativePath(const String& path) { return platform::FilePath::Native(path); }

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

bool ReadWholeFile(const String& path, std::vector<uint8_t>& out) {
  if (path.empty()) return false;
  File f(std::fopen(NativePath(path).c_str(), "rb"));
  if (!f) return false;
  out.clear();
  uint8_t chunk[65536];
  for (;;) {
    const size_t got = std::fread(chunk, 1, sizeof chunk, f.get());
    out.insert(out.end(), chunk, chunk + got);
    // The length-prefixed format counts in a signed 32-bit integer.
    if (out.size() > kLongMax + 4) return false;
    if (got < sizeof chunk) return std::ferror(f.get()) == 0;
  }
}

bool WriteWholeFile(const String& path, const uint8_t* head, size_t headSize,
                    const std::vector<uint8_t>& body) {
  if (path.empty()) return false;
  File f(std::fopen(NativePath(path).c_str(), "wb"));
  if (!f) return false;
  if (headSize > 0 && std::fwrite(head, 1, headSize, f.get()) != headSize) return false;
  if (!body.empty() && std::fwrite(body.data(), 1, body.size(), f.get()) != body.size()) {
    return false;
  }
  return std::fflush(f.get()) == 0;
}

ZLIB_ERROR Deflate(const std::vector<uint8_t>& in, int level, std::vector<uint8_t>& out) {
  out.resize(WorkingSize(in.size()));
  uLongf outLength = static_cast<uLongf>(out.size());
  const int r = compress2(out.data(), &outLength, in.data(), static_cast<uLong>(in.size()), level);
  if (r == Z_OK) out.resize(outLength);
  return static_cast<ZLIB_ERROR>(r);
}

ZLIB_ERROR Inflate(const std::vector<uint8_t>& in, size_t originalSize, std::vector<uint8_t>& out) {
  const size_t ceiling = in.size() * kMaxInflateRatio + 64;
  out.resize(std::min(WorkingSize(originalSize), ceiling));
  uLongf outLength = static_cast<uLongf>(out.size());
  static const Bytef kNothing = 0;
  const Bytef* source = in.empty() ? &kNothing : in.data();
  const int r = uncompress(out.data(), &outLength, source, static_cast<uLong>(in.size()));
  if (r == Z_OK) out.resize(outLength);
  return static_cast<ZLIB_ERROR>(r);
}

std::vector<uint8_t> AnsiBytes(const String& text) {
  const std::string ansi = ToAnsi(text);
  return std::vector<uint8_t>(ansi.begin(), ansi.end());
}

String FromAnsiBytes(const std::vector<uint8_t>& bytes) {
  return FromAnsi(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace

VT_ZLIB::VT_ZLIB() : Dispatch(*server::TypeLibrary::Get().FindClass("VT_ZLIB")) {}

void VT_ZLIB::Register() {
  server::Registry::Instance().Register("VT_ZLIB", [] { return std::make_shared<VT_ZLIB>(); });
}

bool VT_ZLIB::LibraryPresent() {
  return !g_forcedAbsent;
}

void VT_ZLIB::ForceLibraryAbsent(bool absent) {
  g_forcedAbsent = absent;
}

ZLIB_ERROR VT_ZLIB::CompressByteArray(std::vector<uint8_t>& TheData,
                                      COMPRESSION_LEVEL CompressionLevel) {
  if (!LibraryPresent()) return ZLIB_ERRNO;
  if (TheData.size() > kLongMax) return ZLIB_BUF_ERROR;
  try {
    originalSize_ = static_cast<int32_t>(TheData.size());
    std::vector<uint8_t> packed;
    const ZLIB_ERROR r = Deflate(TheData, CompressionLevel, packed);
    if (r != ZLIB_OK) {
      compressedSize_ = 0;
      return r;
    }
    TheData = std::move(packed);
    compressedSize_ = static_cast<int32_t>(TheData.size());
    return ZLIB_OK;
  } catch (const std::bad_alloc&) {
    return ZLIB_MEM_ERROR;
  }
}

ZLIB_ERROR VT_ZLIB::CompressString(String& TheString, COMPRESSION_LEVEL CompressionLevel) {
  if (!LibraryPresent()) return ZLIB_ERRNO;
  try {
    std::vector<uint8_t> bytes = AnsiBytes(TheString);
    const ZLIB_ERROR r = CompressByteArray(bytes, CompressionLevel);
    if (r == ZLIB_OK) TheString = FromAnsiBytes(bytes);
    return r;
  } catch (const std::bad_alloc&) {
    return ZLIB_MEM_ERROR;
  }
}

ZLIB_ERROR VT_ZLIB::DecompressByteArray(std::vector<uint8_t>& TheData, int32_t TheOriginalSize) {
  if (!LibraryPresent()) return ZLIB_ERRNO;
  if (TheOriginalSize < 0) return ZLIB_BUF_ERROR;
  if (TheData.size() > kLongMax) return ZLIB_BUF_ERROR;
  try {
    compressedSize_ = static_cast<int32_t>(TheData.size());
    originalSize_ = TheOriginalSize;
    std::vector<uint8_t> restored;
    const ZLIB_ERROR r = Inflate(TheData, static_cast<size_t>(TheOriginalSize), restored);
    if (r != ZLIB_OK) return r;
    TheData = std::move(restored);
    originalSize_ = static_cast<int32_t>(TheData.size());
    return ZLIB_OK;
  } catch (const std::bad_alloc&) {
    return ZLIB_MEM_ERROR;
  }
}

ZLIB_ERROR VT_ZLIB::DecompressString(String& TheString, int32_t TheOriginalSize) {
  if (!LibraryPresent()) return ZLIB_ERRNO;
  try {
    std::vector<uint8_t> bytes = AnsiBytes(TheString);
    const ZLIB_ERROR r = DecompressByteArray(bytes, TheOriginalSize);
    if (r == ZLIB_OK) TheString = FromAnsiBytes(bytes);
    return r;
  } catch (const std::bad_alloc&) {
    return ZLIB_MEM_ERROR;
  }
}

ZLIB_ERROR VT_ZLIB::CompressFile(const String& FilePathIN, const String& FilePathOUT,
                                 COMPRESSION_LEVEL CompressionLevel) {
  if (!LibraryPresent()) return ZLIB_ERRNO;
  try {
    std::vector<uint8_t> data;
    if (!ReadWholeFile(FilePathIN, data) || data.size() > kLongMax) return ZLIB_ERRNO;
    const auto size = static_cast<uint32_t>(data.size());
    const ZLIB_ERROR r = CompressByteArray(data, CompressionLevel);
    if (r != ZLIB_OK) return r;
    const uint8_t head[4] = {static_cast<uint8_t>(size), static_cast<uint8_t>(size >> 8),
                             static_cast<uint8_t>(size >> 16), static_cast<uint8_t>(size >> 24)};
    return WriteWholeFile(FilePathOUT, head, sizeof head, data) ? ZLIB_OK : ZLIB_ERRNO;
  } catch (const std::bad_alloc&) {
    return ZLIB_MEM_ERROR;
  }
}

ZLIB_ERROR VT_ZLIB::DecompressFile(const String& FilePathIN, const String& FilePathOUT) {
  if (!LibraryPresent()) return ZLIB_ERRNO;
  try {
    std::vector<uint8_t> data;
    if (!ReadWholeFile(FilePathIN, data)) return ZLIB_ERRNO;
    if (data.size() < 4) return ZLIB_DATA_ERROR;
    const auto size = static_cast<int32_t>(
        static_cast<uint32_t>(data[0]) | static_cast<uint32_t>(data[1]) << 8 |
        static_cast<uint32_t>(data[2]) << 16 | static_cast<uint32_t>(data[3]) << 24);
    if (size < 0) return ZLIB_DATA_ERROR;
    data.erase(data.begin(), data.begin() + 4);
    const ZLIB_ERROR r = DecompressByteArray(data, size);
    if (r != ZLIB_OK) return r;
    return WriteWholeFile(FilePathOUT, nullptr, 0, data) ? ZLIB_OK : ZLIB_ERRNO;
  } catch (const std::bad_alloc&) {
    return ZLIB_MEM_ERROR;
  }
}

const server::Bindings* VT_ZLIB::Bound() const {
  static const server::Bindings bindings =
      server::Binder<VT_ZLIB>(Info())
          .Method("CompressByteArray", &VT_ZLIB::CompressByteArray)
          .Method("CompressString", &VT_ZLIB::CompressString)
          .Method("CompressFile", &VT_ZLIB::CompressFile)
          .Method("DecompressByteArray", &VT_ZLIB::DecompressByteArray)
          .Method("DecompressString", &VT_ZLIB::DecompressString)
          .Method("DecompressFile", &VT_ZLIB::DecompressFile)
          .Get("CompressedSize", &VT_ZLIB::get_CompressedSize)
          .Get("OriginalSize", &VT_ZLIB::get_OriginalSize)
          .Done();
  return &bindings;
}

}  // namespace vantor::services
