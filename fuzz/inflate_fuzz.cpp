// Our inflater on any bytes, beside zlib. The first byte chooses the wrapper
// and how the input is cut into pieces and the output taken in portions;
// the rest is the stream. Whatever zlib inflates, ours must inflate to the
// same bytes, and the streamed reading must give what the whole one gives.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <zlib.h>

#include "imaging/Inflater.h"

namespace {

using vantor::imaging::Inflater;

constexpr size_t kMaxOutput = 1 << 20;

// zlib's reading, up to kMaxOutput bytes; false when it fails or goes past.
bool ZlibInflate(std::span<const uint8_t> in, bool raw, std::vector<uint8_t>& out) {
  static std::vector<uint8_t> room(kMaxOutput + 1);  // kept: clearing 1 MiB a run is slow
  z_stream z{};
  if (inflateInit2(&z, raw ? -15 : 15) != Z_OK) return false;
  z.next_in = const_cast<Bytef*>(in.data());
  z.avail_in = static_cast<uInt>(in.size());
  z.next_out = room.data();
  z.avail_out = static_cast<uInt>(room.size());
  const int result = inflate(&z, Z_FINISH);
  out.assign(room.begin(), room.begin() + static_cast<ptrdiff_t>(z.total_out));
  inflateEnd(&z);
  return result == Z_STREAM_END && out.size() <= kMaxOutput;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const uint8_t config = data[0];
  const std::span<const uint8_t> stream(data + 1, size - 1);
  const bool raw = (config & 1) != 0;
  const auto wrapper = raw ? Inflater::Wrapper::Raw : Inflater::Wrapper::Zlib;
  const size_t pieceSize = size_t{1} << ((config >> 1) & 7);      // 1 to 128
  const size_t portion = size_t{1} << (((config >> 4) & 7) * 2);  // 1 to 4096

  std::vector<uint8_t> whole;
  const bool ours = Inflater::Uncompress(stream, whole, kMaxOutput, wrapper, true);
  if (!ours && !whole.empty()) __builtin_trap();

  std::vector<uint8_t> theirs;
  if (ZlibInflate(stream, raw, theirs)) {
    if (!ours || whole != theirs) __builtin_trap();
  }

  // The same stream cut into pieces, read in portions.
  std::vector<std::span<const uint8_t>> pieces;
  for (size_t pos = 0; pos < stream.size(); pos += pieceSize)
    pieces.push_back(stream.subspan(pos, std::min(pieceSize, stream.size() - pos)));
  Inflater inflater;
  inflater.Start(pieces, wrapper, true);
  std::vector<uint8_t> streamed, buffer(portion);
  for (;;) {
    const size_t n = inflater.Read(buffer.data(), portion);
    streamed.insert(streamed.end(), buffer.begin(), buffer.begin() + static_cast<ptrdiff_t>(n));
    if (n < portion || streamed.size() > kMaxOutput) break;
  }
  if (streamed.size() <= kMaxOutput) {
    const bool finished = inflater.Finished() && !inflater.Failed();
    if (finished != ours) __builtin_trap();
    if (ours && streamed != whole) __builtin_trap();
  } else if (ours) {
    __builtin_trap();  // the whole reading stopped at the limit, so it must have failed
  }
  return 0;
}
