#include "imaging/cPNGwriter.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/FilePath.h"
#include "platform/User.h"
#include "runtime/DateTime.h"

namespace vantor::imaging {

namespace {

bool g_zlibAbsent = false;

// The standard keywords by property bit number.
constexpr const char16_t* kKeywords[10] = {
    u"Title",    u"Author",     u"Description", u"Copyright", u"Creation Time",
    u"Software", u"Disclaimer", u"Warning",     u"Source",    u"Comment"};

constexpr size_t kMaxKeyword = 79;
constexpr size_t kMaxText = 32700;
// Longer miscellaneous texts go out compressed, as zTXt.
constexpr size_t kMaxPlainText = 1024;

int BitNumber(int32_t property) {
  for (int i = 0; i < 14; ++i)
    if (property == (1 << i)) return i;
  return -1;
}

char16_t AsciiLower(char16_t c) {
  return c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c;
}

bool SameIgnoringCase(StringView a, StringView b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  return true;
}

// The standard text a keyword names, or -1.
int StandardKeyword(StringView keyword) {
  for (int i = 0; i < 10; ++i)
    if (SameIgnoringCase(keyword, kKeywords[i])) return i;
  return -1;
}

// Texts go into the file as Latin-1; a character beyond it becomes '?'.
void AppendLatin1(std::vector<uint8_t>& out, StringView text) {
  for (char16_t c : text) out.push_back(c <= 0xFF ? static_cast<uint8_t>(c) : uint8_t{'?'});
}

void AppendBe32(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v >> 24));
  out.push_back(static_cast<uint8_t>(v >> 16));
  out.push_back(static_cast<uint8_t>(v >> 8));
  out.push_back(static_cast<uint8_t>(v));
}

void AppendBe16(std::vector<uint8_t>& out, uint32_t v) {
  out.push_back(static_cast<uint8_t>(v >> 8));
  out.push_back(static_cast<uint8_t>(v));
}

// Length, type, data and the CRC over type and data.
void WriteChunk(std::vector<uint8_t>& out, const char* type, const uint8_t* data, size_t size) {
  out.reserve(out.size() + size + 12);
  AppendBe32(out, static_cast<uint32_t>(size));
  const size_t typeAt = out.size();
  out.insert(out.end(), type, type + 4);
  if (size > 0) out.insert(out.end(), data, data + size);
  uLong crc = crc32(0L, out.data() + typeAt, 4);
  if (size > 0) crc = crc32_z(crc, out.data() + typeAt + 4, size);
  AppendBe32(out, static_cast<uint32_t>(crc));
}

void WriteChunk(std::vector<uint8_t>& out, const char* type, const std::vector<uint8_t>& data) {
  WriteChunk(out, type, data.data(), data.size());
}

bool Compress(const uint8_t* data, size_t size, std::vector<uint8_t>& out, int level) {
  // The room the compressed data can need at worst.
  uLongf capacity = compressBound(static_cast<uLong>(size));
  out.resize(capacity);
  if (compress2(out.data(), &capacity, data, static_cast<uLong>(size), level) != Z_OK) return false;
  out.resize(capacity);
  return true;
}

void WriteText(std::vector<uint8_t>& out, StringView keyword, StringView text, bool mayCompress,
               int level) {
  std::vector<uint8_t> body;
  AppendLatin1(body, keyword);
  body.push_back(0);
  if (mayCompress && text.size() > kMaxPlainText) {
    std::vector<uint8_t> plain, packed;
    AppendLatin1(plain, text);
    if (Compress(plain.data(), plain.size(), packed, level)) {
      body.push_back(0);  // compression method: deflate
      body.insert(body.end(), packed.begin(), packed.end());
      WriteChunk(out, "zTXt", body);
      return;
    }
  }
  AppendLatin1(body, text);
  WriteChunk(out, "tEXt", body);
}

// 255 x 2^24 / a, rounded up: (c x this) >> 24 is c x 255 / a exactly for
// every c up to a.
struct Reciprocals {
  uint32_t m[256] = {};
  Reciprocals() {
    for (uint32_t a = 1; a < 256; ++a) m[a] = static_cast<uint32_t>(((255ull << 24) + a - 1) / a);
  }
};
const Reciprocals& Recip() {
  static const Reciprocals r;
  return r;
}

inline uint8_t Unpremultiply(uint32_t c, uint32_t m) {
  const uint64_t v = (uint64_t{c} * m) >> 24;
  return static_cast<uint8_t>(v > 255 ? 255 : v);
}

// A picture's pixel as straight red, green, blue, alpha packed R | G << 8 |
// B << 16 | A << 24, under the surface's alpha kind: without alpha the alpha
// byte is not looked at, and any fully transparent pixel is one colour.
inline uint32_t Straight(const uint8_t* p, bool hasAlpha) {
  const uint32_t b = p[0], g = p[1], r = p[2];
  if (!hasAlpha) return r | g << 8 | b << 16 | 0xFF000000u;
  const uint32_t a = p[3];
  if (a == 255) return r | g << 8 | b << 16 | 0xFF000000u;
  if (a == 0) return 0;
  const uint32_t m = Recip().m[a];
  return uint32_t{Unpremultiply(r, m)} | uint32_t{Unpremultiply(g, m)} << 8 |
         uint32_t{Unpremultiply(b, m)} << 16 | a << 24;
}

// Up to 256 distinct colours, each with its palette index.
class ColorTable {
 public:
  static constexpr size_t kSlots = 1024;
  // The colour's index, adding it when new; -1 once a 257th colour shows.
  int Add(uint32_t color) {
    size_t slot = Hash(color);
    for (;;) {
      if (!used_[slot]) {
        if (colors_.size() == 256) return -1;
        used_[slot] = true;
        keys_[slot] = color;
        index_[slot] = static_cast<uint16_t>(colors_.size());
        colors_.push_back(color);
        return index_[slot];
      }
      if (keys_[slot] == color) return index_[slot];
      slot = (slot + 1) & (kSlots - 1);
    }
  }
  const std::vector<uint32_t>& Colors() const { return colors_; }
  // Puts the colours that are not opaque first, so that tRNS stays short,
  // keeping the order in which they were met otherwise. Gives each old
  // index its new one.
  std::array<uint8_t, 256> OrderTransparentFirst() {
    std::array<uint8_t, 256> moved{};
    std::vector<uint32_t> reordered;
    reordered.reserve(colors_.size());
    for (bool opaque : {false, true})
      for (size_t i = 0; i < colors_.size(); ++i)
        if (((colors_[i] >> 24) == 0xFF) == opaque) {
          moved[i] = static_cast<uint8_t>(reordered.size());
          reordered.push_back(colors_[i]);
        }
    colors_ = std::move(reordered);
    return moved;
  }

 private:
  static size_t Hash(uint32_t c) { return (c * 0x9E3779B1u) >> 22; }
  bool used_[kSlots] = {};
  uint32_t keys_[kSlots] = {};
  uint16_t index_[kSlots] = {};
  std::vector<uint32_t> colors_;
};

// Each pixel's palette index, in `indexes`; false once a 257th colour shows.
// A run of one colour costs a comparison of the pixel's bytes. (Kept out of
// line: inside Save the loop ran out of registers.)
[[gnu::noinline]] bool CollectIndexes(const Pixels& picture, bool hasAlpha, ColorTable& table,
                                      std::vector<uint8_t>& indexes) {
  const size_t width = static_cast<size_t>(picture.width);
  indexes.resize(width * static_cast<size_t>(picture.height));
  uint8_t* index = indexes.data();
  // The alpha byte, set when it is not to be looked at.
  const uint32_t ignored = hasAlpha                                     ? 0
                           : std::endian::native == std::endian::little ? 0xFF000000u
                                                                        : 0xFFu;
  // The first pixel starts the first run.
  uint32_t lastBytes;
  std::memcpy(&lastBytes, picture.Row(0), 4);
  lastBytes |= ignored;
  const int first = table.Add(Straight(picture.Row(0), hasAlpha));
  uint8_t lastIndex = static_cast<uint8_t>(first);
  for (int32_t y = 0; y < picture.height; ++y) {
    const uint8_t* p = picture.Row(y);
    size_t x = 0;
    while (x < width) {
#if defined(__SSE2__)
      // Four pixels at a time while they continue the run.
      const __m128i run = _mm_set1_epi32(static_cast<int>(lastBytes));
      const __m128i mask = _mm_set1_epi32(static_cast<int>(ignored));
      for (; x + 4 <= width; x += 4, p += 16, index += 4) {
        const __m128i v = _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), mask);
        if (_mm_movemask_epi8(_mm_cmpeq_epi32(v, run)) != 0xFFFF) break;
        std::memset(index, lastIndex, 4);
      }
      if (x == width) break;
#endif
      uint32_t bytes;
      std::memcpy(&bytes, p, 4);
      bytes |= ignored;
      if (bytes != lastBytes) {
        const int found = table.Add(Straight(p, hasAlpha));
        if (found < 0) return false;
        lastBytes = bytes;
        lastIndex = static_cast<uint8_t>(found);
      }
      *index++ = lastIndex;
      ++x;
      p += 4;
    }
  }
  return true;
}

// One palette row packed at `bitDepth` bits a pixel, high bits first.
[[gnu::noinline]] void PackIndexes(const uint8_t* index, size_t width, uint32_t bitDepth,
                                   const std::array<uint8_t, 256>& moved, uint8_t* out) {
  size_t x = 0;
  switch (bitDepth) {
    case 8:
      for (; x < width; ++x) out[x] = moved[index[x]];
      return;
    case 4:
      for (; x + 2 <= width; x += 2)
        *out++ = static_cast<uint8_t>(moved[index[x]] << 4 | moved[index[x + 1]]);
      break;
    case 2:
      for (; x + 4 <= width; x += 4)
        *out++ = static_cast<uint8_t>(moved[index[x]] << 6 | moved[index[x + 1]] << 4 |
                                      moved[index[x + 2]] << 2 | moved[index[x + 3]]);
      break;
    default:
      break;
  }
  const uint32_t perByte = 8u / bitDepth;
  uint32_t acc = 0, k = 0;
  for (; x < width; ++x) {
    acc = acc << bitDepth | moved[index[x]];
    if (++k == perByte) {
      *out++ = static_cast<uint8_t>(acc);
      acc = k = 0;
    }
  }
  if (k != 0) *out = static_cast<uint8_t>(acc << (bitDepth * (perByte - k)));
}

inline int PaethPredict(int a, int b, int c) {
  const int pa = std::abs(b - c);
  const int pb = std::abs(a - c);
  const int pc = std::abs(a + b - 2 * c);
  if (pa <= pb && pa <= pc) return a;
  return pb <= pc ? b : c;
}

// A filtered byte's weight in the adaptive choice: its distance from zero
// taken as a signed byte.
inline uint32_t Weight(uint8_t v) {
  return v < 128 ? v : 256u - v;
}

// The filter's predictor for byte i. `left` and `upperLeft` are the rows
// one pixel back, which the rows' zero lead makes readable from the start.
template <int F>
inline uint8_t Predict(const uint8_t* left, const uint8_t* up, const uint8_t* upperLeft, size_t i) {
  if constexpr (F == 0) return 0;
  if constexpr (F == 1) return left[i];
  if constexpr (F == 2) return up[i];
  if constexpr (F == 3) return static_cast<uint8_t>((uint32_t{left[i]} + up[i]) >> 1);
  if constexpr (F == 4) return static_cast<uint8_t>(PaethPredict(left[i], up[i], upperLeft[i]));
}

#if defined(__SSE2__)
// Sixteen filtered bytes from position i. Filtering, unlike unfiltering,
// looks only at the picture's own bytes, so every position is independent
// and a row goes sixteen bytes at a time.
template <int F>
inline __m128i FilteredVector(const uint8_t* cur, const uint8_t* left, const uint8_t* up,
                              const uint8_t* upperLeft, size_t i) {
  auto load = [i](const uint8_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
  };
  const __m128i x = load(cur);
  if constexpr (F == 0) return x;
  if constexpr (F == 1) return _mm_sub_epi8(x, load(left));
  if constexpr (F == 2) return _mm_sub_epi8(x, load(up));
  if constexpr (F == 3) {
    // The rounded-up average, less the bit that rounded it up.
    const __m128i a = load(left), b = load(up);
    const __m128i floor =
        _mm_sub_epi8(_mm_avg_epu8(a, b), _mm_and_si128(_mm_xor_si128(a, b), _mm_set1_epi8(1)));
    return _mm_sub_epi8(x, floor);
  }
  if constexpr (F == 4) {
    const __m128i zero = _mm_setzero_si128();
    auto abs16 = [&](__m128i v) { return _mm_max_epi16(v, _mm_sub_epi16(zero, v)); };
    auto select = [](__m128i mask, __m128i yes, __m128i no) {
      return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
    };
    auto half = [&](__m128i a, __m128i b, __m128i c) {  // 16-bit lanes
      const __m128i bc = _mm_sub_epi16(b, c), ac = _mm_sub_epi16(a, c);
      const __m128i pa = abs16(bc), pb = abs16(ac), pc = abs16(_mm_add_epi16(bc, ac));
      const __m128i least = _mm_min_epi16(pa, _mm_min_epi16(pb, pc));
      // a wins ties over b, b over c.
      return select(_mm_cmpeq_epi16(pa, least), a, select(_mm_cmpeq_epi16(pb, least), b, c));
    };
    const __m128i a = load(left), b = load(up), c = load(upperLeft);
    const __m128i lo =
        half(_mm_unpacklo_epi8(a, zero), _mm_unpacklo_epi8(b, zero), _mm_unpacklo_epi8(c, zero));
    const __m128i hi =
        half(_mm_unpackhi_epi8(a, zero), _mm_unpackhi_epi8(b, zero), _mm_unpackhi_epi8(c, zero));
    return _mm_sub_epi8(x, _mm_packus_epi16(lo, hi));
  }
}
#endif

template <int F>
uint64_t FilterSum(const uint8_t* cur, const uint8_t* prev, size_t n, size_t bpp) {
  const uint8_t* left = cur - bpp;
  const uint8_t* upperLeft = prev - bpp;
  uint64_t sum = 0;
  size_t i = 0;
#if defined(__SSE2__)
  // A byte's weight is min(v, 256 - v); the sum of absolute differences
  // from zero then adds sixteen weights at once.
  const __m128i zero = _mm_setzero_si128();
  __m128i total = zero;
  for (; i + 16 <= n; i += 16) {
    const __m128i v = FilteredVector<F>(cur, left, prev, upperLeft, i);
    total = _mm_add_epi64(total, _mm_sad_epu8(_mm_min_epu8(v, _mm_sub_epi8(zero, v)), zero));
  }
  alignas(16) uint64_t halves[2];
  _mm_store_si128(reinterpret_cast<__m128i*>(halves), total);
  sum = halves[0] + halves[1];
#endif
  for (; i < n; ++i)
    sum += Weight(static_cast<uint8_t>(cur[i] - Predict<F>(left, prev, upperLeft, i)));
  return sum;
}

template <int F>
void FilterInto(const uint8_t* cur, const uint8_t* prev, size_t n, size_t bpp, uint8_t* out) {
  const uint8_t* left = cur - bpp;
  const uint8_t* upperLeft = prev - bpp;
  size_t i = 0;
#if defined(__SSE2__)
  for (; i + 16 <= n; i += 16)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i),
                     FilteredVector<F>(cur, left, prev, upperLeft, i));
#endif
  for (; i < n; ++i) out[i] = static_cast<uint8_t>(cur[i] - Predict<F>(left, prev, upperLeft, i));
}

void ApplyFilter(int filter, const uint8_t* cur, const uint8_t* prev, size_t n, size_t bpp,
                 uint8_t* out) {
  switch (filter) {
    case 1:
      FilterInto<1>(cur, prev, n, bpp, out);
      break;
    case 2:
      FilterInto<2>(cur, prev, n, bpp, out);
      break;
    case 3:
      FilterInto<3>(cur, prev, n, bpp, out);
      break;
    case 4:
      FilterInto<4>(cur, prev, n, bpp, out);
      break;
    default:
      std::memcpy(out, cur, n);
      break;
  }
}

// The adaptive rule: the smallest sum of weights wins, the earlier filter on
// a tie, starting from a sum no row can reach.
int ChooseFilter(const uint8_t* cur, const uint8_t* prev, size_t n, size_t bpp) {
  uint64_t best = uint64_t{n} * 254;
  int chosen = 0;
  const uint64_t sums[5] = {FilterSum<0>(cur, prev, n, bpp), FilterSum<1>(cur, prev, n, bpp),
                            FilterSum<2>(cur, prev, n, bpp), FilterSum<3>(cur, prev, n, bpp),
                            FilterSum<4>(cur, prev, n, bpp)};
  for (int f = 0; f < 5; ++f) {
    if (sums[f] < best) {
      best = sums[f];
      chosen = f;
    }
  }
  return chosen;
}

bool Failed(std::vector<uint8_t>& out) {
  out.clear();
  return false;
}

// The image data, deflated as the rows come and appended to `out` as one
// IDAT chunk: each row is compressed while it is still in the cache, the CRC
// taken while the compressed bytes are, and no copy of the whole filtered
// picture is ever held.
class IdatWriter {
 public:
  IdatWriter(std::vector<uint8_t>& out, int level, int memoryLevel, size_t rawSize)
      : out_(out), start_(out.size()), room_(65536) {
    out_.reserve(start_ + compressBound(static_cast<uLong>(rawSize)) + 1024);
    out_.resize(start_ + 8);  // length and type, known at the end
    batch_.reserve(kBatch + 65536);
    ok_ = deflateInit2(&stream_, level, Z_DEFLATED, 15, memoryLevel, Z_DEFAULT_STRATEGY) == Z_OK;
  }
  ~IdatWriter() {
    if (ok_) deflateEnd(&stream_);
  }
  IdatWriter(const IdatWriter&) = delete;
  IdatWriter& operator=(const IdatWriter&) = delete;

  // Room for one row: its filter byte, then `n` bytes, to be filled before
  // the next call. Null when compression failed.
  uint8_t* NextRow(size_t n) {
    if (batch_.size() >= kBatch && !Deflate(Z_NO_FLUSH)) return nullptr;
    const size_t at = batch_.size();
    batch_.resize(at + 1 + n);
    return batch_.data() + at;
  }
  bool Finish() {
    if (!Deflate(Z_FINISH)) return false;
    const size_t size = out_.size() - start_ - 8;
    if (size > 0x7FFFFFFFu) return false;
    const uint8_t head[8] = {static_cast<uint8_t>(size >> 24),
                             static_cast<uint8_t>(size >> 16),
                             static_cast<uint8_t>(size >> 8),
                             static_cast<uint8_t>(size),
                             'I',
                             'D',
                             'A',
                             'T'};
    std::memcpy(out_.data() + start_, head, 8);
    AppendBe32(out_, static_cast<uint32_t>(crc_));
    return true;
  }

 private:
  static constexpr size_t kBatch = 32768;

  bool Deflate(int flush) {
    if (!ok_) return false;
    stream_.next_in = batch_.data();
    stream_.avail_in = static_cast<uInt>(batch_.size());
    for (;;) {
      stream_.next_out = room_.data();
      stream_.avail_out = static_cast<uInt>(room_.size());
      const int result = deflate(&stream_, flush);
      if (result == Z_STREAM_ERROR) return false;
      const size_t made = room_.size() - stream_.avail_out;
      crc_ = crc32_z(crc_, room_.data(), made);
      out_.insert(out_.end(), room_.data(), room_.data() + made);
      if (flush == Z_FINISH ? result == Z_STREAM_END
                            : stream_.avail_in == 0 && stream_.avail_out != 0)
        break;
    }
    batch_.clear();
    return true;
  }

  std::vector<uint8_t>& out_;
  size_t start_;
  std::vector<uint8_t> room_;
  std::vector<uint8_t> batch_;
  z_stream stream_{};
  uLong crc_ = crc32(0L, reinterpret_cast<const Bytef*>("IDAT"), 4);
  bool ok_ = false;
};

}  // namespace

bool cPNGwriter::ZlibPresent() {
  return !g_zlibAbsent;
}

void cPNGwriter::SimulateZlibAbsent(bool absent) {
  g_zlibAbsent = absent;
}

bool cPNGwriter::ValidProperty(int32_t property) {
  return BitNumber(property) >= 0;
}

String cPNGwriter::CleanKeyword(StringView keyword) {
  String k(keyword.substr(0, std::min(keyword.size(), kMaxKeyword)));
  // A no-break space is a space here, so that trimming and joining see it.
  std::replace(k.begin(), k.end(), char16_t{160}, u' ');
  const size_t first = k.find_first_not_of(u' ');
  if (first == String::npos) return String();
  k = k.substr(first, k.find_last_not_of(u' ') - first + 1);
  for (size_t at; (at = k.find(u"  ")) != String::npos;) k.erase(at, 1);
  for (char16_t c : k)
    if (!((c >= 32 && c <= 126) || (c >= 161 && c <= 255))) return String();
  const int standard = StandardKeyword(k);
  return standard >= 0 ? String(kKeywords[standard]) : k;
}

String cPNGwriter::CleanText(StringView text) {
  const StringView cut = text.substr(0, std::min(text.size(), kMaxText));
  String t;
  t.reserve(cut.size());
  for (size_t i = 0; i < cut.size(); ++i) {
    const char16_t c = cut[i];
    if (c == u'\r') {
      t.push_back(u'\n');
      if (i + 1 < cut.size() && cut[i + 1] == u'\n') ++i;
    } else if (c < 32 && c != 9 && c != 10) {
      return String();
    } else {
      t.push_back(c);
    }
  }
  return t;
}

bool cPNGwriter::PngPropertySet(int32_t property, const Variant& value, StringView keyword) {
  if (property == -1) return Clear(-1);
  if (!ValidProperty(property)) return false;
  if (value.IsMissing() || value.IsEmpty()) return Clear(property, keyword);
  return Set(property, value, keyword);
}

bool cPNGwriter::Set(int32_t property, const Variant& value, StringView keyword) {
  if (!ValidProperty(property)) return false;
  switch (property) {
    case Png_DateTimeModified:
      if (!value.CanChangeType(vbDate)) return false;
      modified_ = value.ToDate();
      break;
    case Png_DefaultBkgColor:
      if (!value.CanChangeType(vbLong)) return false;
      backgroundColor_ = value.ToLong();
      break;
    case Png_FilterMethod:
      if (!value.CanChangeType(vbLong)) return false;
      filterMethod_ = value.ToLong();
      break;
    default: {
      if (!value.CanChangeType(vbString)) return false;
      const String text = CleanText(value.ToString());
      if (text.empty()) return false;
      if (property == Png_Miscellaneous) {
        const String k = CleanKeyword(keyword);
        if (k.empty()) return false;
        const int standard = StandardKeyword(k);
        if (standard >= 0) return Set(1 << standard, value);
        auto it = std::find_if(misc_.begin(), misc_.end(),
                               [&](const auto& entry) { return entry.first == k; });
        if (it != misc_.end())
          it->second = text;
        else
          misc_.emplace_back(k, text);
      } else {
        texts_[static_cast<size_t>(BitNumber(property))] = text;
      }
      break;
    }
  }
  flags_ |= property;
  return true;
}

bool cPNGwriter::Clear(int32_t property, StringView keyword) {
  if (property == -1) {
    *this = cPNGwriter();
    return true;
  }
  if (!ValidProperty(property)) return false;
  switch (property) {
    case Png_FilterMethod:
      filterMethod_ = Filter_Default;
      break;
    case Png_DefaultBkgColor:
      break;  // the colour stays; only the flag says whether it is written
    case Png_DateTimeModified:
      modified_ = Date();
      break;
    case Png_Miscellaneous: {
      const String k = CleanKeyword(keyword);
      if (k.empty()) {
        misc_.clear();
      } else {
        const int standard = StandardKeyword(k);
        if (standard >= 0) return Clear(1 << standard);
        auto it = std::find_if(misc_.begin(), misc_.end(),
                               [&](const auto& entry) { return entry.first == k; });
        if (it == misc_.end()) return true;
        // The last entry fills the gap.
        *it = std::move(misc_.back());
        misc_.pop_back();
      }
      if (!misc_.empty()) return true;
      break;
    }
    default:
      texts_[static_cast<size_t>(BitNumber(property))].clear();
      break;
  }
  flags_ &= ~property;
  return true;
}

Variant cPNGwriter::Get(int32_t property, StringView keyword) const {
  if (!ValidProperty(property)) return Variant();
  const bool set = (flags_ & property) != 0;
  switch (property) {
    case Png_FilterMethod:
      return Variant(filterMethod_);
    case Png_DefaultBkgColor:
      return Variant(set ? backgroundColor_ : int32_t{-1});
    case Png_DateTimeModified:
      return Variant(set ? modified_ : Date());
    case Png_Miscellaneous: {
      const String k = CleanKeyword(keyword);
      const int standard = StandardKeyword(k);
      if (standard >= 0) return Get(1 << standard);
      for (const auto& [key, text] : misc_)
        if (key == k) return Variant(text);
      return Variant(String());
    }
    default:
      return Variant(set ? texts_[static_cast<size_t>(BitNumber(property))] : String());
  }
}

bool cPNGwriter::Save(const Pixels& picture, const String& fileName, int level) const {
  if (fileName.empty()) return false;
  std::vector<uint8_t> bytes;
  if (!Save(picture, bytes, level)) return false;
  try {
    std::ofstream file(std::filesystem::path(platform::FilePath::Native(fileName)),
                       std::ios::binary | std::ios::trunc);
    if (!file) return false;
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file);
  } catch (...) {
    return false;
  }
}

bool cPNGwriter::Save(const Pixels& picture, std::vector<uint8_t>& out, int level) const {
  out.clear();
  if (!ZlibPresent() || picture.Empty()) return false;
  if (picture.bytes.size() < picture.Stride() * static_cast<size_t>(picture.height)) return false;
  try {
    const uint32_t width = static_cast<uint32_t>(picture.width);
    const uint32_t height = static_cast<uint32_t>(picture.height);
    const bool hasAlpha = picture.alpha != Alpha_None;

    // The colour form: a palette when the colours fit, unless alpha varies.
    auto table = std::make_unique<ColorTable>();
    bool palette = picture.alpha != Alpha_Complex;
    std::vector<uint8_t> indexes;
    if (palette && !CollectIndexes(picture, hasAlpha, *table, indexes)) {
      palette = false;
      indexes = std::vector<uint8_t>();
    }
    uint8_t colorType, bitDepth = 8;
    size_t channels;
    std::array<uint8_t, 256> moved{};
    if (palette) {
      moved = table->OrderTransparentFirst();
      const size_t n = table->Colors().size();
      bitDepth = n <= 2 ? 1 : n <= 4 ? 2 : n <= 16 ? 4 : 8;
      colorType = 3;
      channels = 1;
    } else {
      colorType = hasAlpha ? 6 : 2;
      channels = hasAlpha ? 4 : 3;
    }

    static constexpr uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    out.insert(out.end(), kSignature, kSignature + 8);
    std::vector<uint8_t> ihdr;
    AppendBe32(ihdr, width);
    AppendBe32(ihdr, height);
    ihdr.insert(ihdr.end(), {bitDepth, colorType, 0, 0, 0});
    WriteChunk(out, "IHDR", ihdr);

    // Description to Comment before the picture, Title and Author after it.
    for (int bit = 2; bit < 10; ++bit)
      if (flags_ & (1 << bit))
        WriteText(out, kKeywords[bit], texts_[static_cast<size_t>(bit)], false, level);

    if (palette) {
      std::vector<uint8_t> plte, trns;
      size_t lastTransparent = 0;
      const auto& colors = table->Colors();
      for (size_t i = 0; i < colors.size(); ++i) {
        const uint32_t c = colors[i];
        plte.insert(plte.end(), {static_cast<uint8_t>(c), static_cast<uint8_t>(c >> 8),
                                 static_cast<uint8_t>(c >> 16)});
        trns.push_back(static_cast<uint8_t>(c >> 24));
        if ((c >> 24) != 0xFF) lastTransparent = i + 1;
      }
      WriteChunk(out, "PLTE", plte);
      COLORREF bk;
      if ((flags_ & Png_DefaultBkgColor) &&
          ::OleTranslateColor(static_cast<OLE_COLOR>(backgroundColor_), nullptr, &bk) == S_OK) {
        const uint32_t rgb = bk & 0xFFFFFFu;
        // The entry of that colour, an opaque one when there is one.
        int found = -1;
        for (size_t i = 0; i < colors.size(); ++i) {
          if ((colors[i] & 0xFFFFFFu) != rgb) continue;
          if (found < 0 || (colors[i] >> 24) == 0xFF) found = static_cast<int>(i);
          if ((colors[i] >> 24) == 0xFF) break;
        }
        if (found >= 0) {
          const uint8_t index = static_cast<uint8_t>(found);
          WriteChunk(out, "bKGD", &index, 1);
        }
      }
      if (lastTransparent > 0) WriteChunk(out, "tRNS", trns.data(), lastTransparent);
    } else {
      COLORREF bk;
      if ((flags_ & Png_DefaultBkgColor) &&
          ::OleTranslateColor(static_cast<OLE_COLOR>(backgroundColor_), nullptr, &bk) == S_OK) {
        std::vector<uint8_t> bkgd;
        AppendBe16(bkgd, bk & 0xFFu);
        AppendBe16(bkgd, (bk >> 8) & 0xFFu);
        AppendBe16(bkgd, (bk >> 16) & 0xFFu);
        WriteChunk(out, "bKGD", bkgd);
      }
    }

    // The rows, each filtered and deflated as it is made.
    int method = filterMethod_ < Filter_Default || filterMethod_ > Filter_Adaptive ? Filter_Default
                                                                                   : filterMethod_;
    if (method == Filter_Default) method = Filter_Paeth;
    const bool filtered = !palette && method != Filter_None;
    const size_t rowBytes = (static_cast<size_t>(width) * channels * bitDepth + 7) / 8;
    // zlib's largest hash (memory level 9) pays where rows go unfiltered and
    // repeat themselves; filtered rows, near zero, do better with the usual 8.
    IdatWriter idat(out, level, filtered || palette ? 8 : 9, (rowBytes + 1) * height);
    if (palette) {
      for (uint32_t y = 0; y < height; ++y) {
        uint8_t* o = idat.NextRow(rowBytes);
        if (!o) return Failed(out);
        o[0] = 0;  // palette rows are never filtered
        PackIndexes(indexes.data() + static_cast<size_t>(y) * width, width, bitDepth, moved, o + 1);
      }
    } else {
      constexpr size_t kLead = 8;  // zero bytes before each row: the "left" of its first pixel
      const size_t bpp = channels;
      // One spare byte after each row for the four-byte stores below.
      std::vector<uint8_t> rowA(kLead + rowBytes + 1), rowB(kLead + rowBytes + 1);
      uint8_t* cur = rowA.data() + kLead;
      uint8_t* prev = rowB.data() + kLead;
      const uint32_t* recip = Recip().m;
      constexpr bool kLittle = std::endian::native == std::endian::little;
      for (uint32_t y = 0; y < height; ++y) {
        const uint8_t* p = picture.Row(static_cast<int32_t>(y));
        uint8_t* s = cur;
        if (!hasAlpha) {
          for (uint32_t x = 0; x < width; ++x, p += 4, s += 3) {
            if constexpr (kLittle) {
              // Blue, green, red, alpha byte-swapped and shifted down is red,
              // green, blue; the fourth byte lands on the next pixel, or on
              // the row's spare byte.
              uint32_t v;
              std::memcpy(&v, p, 4);
              v = __builtin_bswap32(v) >> 8;
              std::memcpy(s, &v, 4);
            } else {
              s[0] = p[2], s[1] = p[1], s[2] = p[0];
            }
          }
        } else {
          for (uint32_t x = 0; x < width; ++x, p += 4, s += 4) {
            const uint32_t a = p[3];
            if (a == 255) {
              if constexpr (kLittle) {
                uint32_t v;
                std::memcpy(&v, p, 4);
                v = std::rotr(__builtin_bswap32(v), 8);  // red, green, blue, alpha
                std::memcpy(s, &v, 4);
              } else {
                s[0] = p[2], s[1] = p[1], s[2] = p[0], s[3] = 255;
              }
            } else if (a == 0) {
              std::memset(s, 0, 4);
            } else {
              const uint32_t m = recip[a];
              s[0] = Unpremultiply(p[2], m);
              s[1] = Unpremultiply(p[1], m);
              s[2] = Unpremultiply(p[0], m);
              s[3] = static_cast<uint8_t>(a);
            }
          }
        }
        const int filter =
            method == Filter_Adaptive ? ChooseFilter(cur, prev, rowBytes, bpp) : method - 1;
        uint8_t* o = idat.NextRow(rowBytes);
        if (!o) return Failed(out);
        o[0] = static_cast<uint8_t>(filter);
        ApplyFilter(filter, cur, prev, rowBytes, bpp, o + 1);
        std::swap(cur, prev);
      }
    }
    if (!idat.Finish()) return Failed(out);

    if (flags_ & Png_DateTimeModified) {
      std::vector<uint8_t> time;
      AppendBe16(time, static_cast<uint32_t>(Year(modified_)));
      time.insert(time.end(),
                  {static_cast<uint8_t>(Month(modified_)), static_cast<uint8_t>(Day(modified_)),
                   static_cast<uint8_t>(Hour(modified_)), static_cast<uint8_t>(Minute(modified_)),
                   static_cast<uint8_t>(Second(modified_))});
      WriteChunk(out, "tIME", time);
    }
    for (int bit = 0; bit < 2; ++bit)
      if (flags_ & (1 << bit))
        WriteText(out, kKeywords[bit], texts_[static_cast<size_t>(bit)], false, level);
    for (const auto& [keyword, text] : misc_) WriteText(out, keyword, text, true, level);

    WriteChunk(out, "IEND", nullptr, 0);
    return true;
  } catch (...) {
    out.clear();
    return false;
  }
}

}  // namespace vantor::imaging
