// Length-prefixed compressed files come from disk, so any bytes at all may
// reach VT_ZLIB's decompression: as a file, as a byte array and as a string
// with the size its first four bytes declare. Nothing may fail, a failure
// must leave the caller's data as it was, and what decompresses must
// compress and decompress back to itself.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/Error.h"
#include "runtime/String.h"
#include "services/VT_ZLIB.h"

using namespace vantor;
using namespace vantor::services;

namespace {

// One input and one output file for the whole run, in the temporary folder.
struct Paths {
  std::string in, out;
  Paths() {
    const char* tmp = std::getenv("TMPDIR");
    const std::string base =
        std::string(tmp && *tmp ? tmp : "/tmp") + "/zlib_file_fuzz_" + std::to_string(::getpid());
    in = base + ".z";
    out = base + ".out";
  }
  ~Paths() {
    std::remove(in.c_str());
    std::remove(out.c_str());
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Paths paths;
  VT_ZLIB zlib;

  if (std::FILE* f = std::fopen(paths.in.c_str(), "wb")) {
    if (size > 0) std::fwrite(data, 1, size, f);
    std::fclose(f);
    std::remove(paths.out.c_str());
    const ZLIB_ERROR r = zlib.DecompressFile(FromUtf8(paths.in), FromUtf8(paths.out));
    std::FILE* out = std::fopen(paths.out.c_str(), "rb");
    // The output is written only when the whole file decompressed.
    if ((r == ZLIB_OK) != (out != nullptr)) __builtin_trap();
    if (out) std::fclose(out);
  }

  if (size < 4) return 0;
  const auto declared = static_cast<int32_t>(
      static_cast<uint32_t>(data[0]) | static_cast<uint32_t>(data[1]) << 8 |
      static_cast<uint32_t>(data[2]) << 16 | static_cast<uint32_t>(data[3]) << 24);
  const std::vector<uint8_t> body(data + 4, data + size);
  std::vector<uint8_t> bytes = body;
  const ZLIB_ERROR r = zlib.DecompressByteArray(bytes, declared);
  if (r != ZLIB_OK) {
    if (bytes != body) __builtin_trap();
  } else {
    if (static_cast<double>(bytes.size()) > static_cast<double>(declared) * 1.01 + 13)
      __builtin_trap();
    if (zlib.get_OriginalSize() != static_cast<int32_t>(bytes.size())) __builtin_trap();
    const std::vector<uint8_t> restored = bytes;
    if (zlib.CompressByteArray(bytes, BEST_SPEED) != ZLIB_OK) __builtin_trap();
    if (zlib.DecompressByteArray(bytes, static_cast<int32_t>(restored.size())) != ZLIB_OK)
      __builtin_trap();
    if (bytes != restored) __builtin_trap();
  }

  const String text =
      FromAnsi(std::string_view(reinterpret_cast<const char*>(body.data()), body.size()));
  String s = text;
  if (zlib.DecompressString(s, declared) != ZLIB_OK && s != text) __builtin_trap();
  Err().Clear();
  return 0;
}
