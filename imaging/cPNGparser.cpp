#include "imaging/cPNGparser.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>

#include "imaging/Inflater.h"
#include "platform/FilePath.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vantor::imaging {

namespace {

bool g_zlibAbsent = false;

constexpr uint32_t kIHDR = 0x49484452;
constexpr uint32_t kPLTE = 0x504C5445;
constexpr uint32_t kIDAT = 0x49444154;
constexpr uint32_t kIEND = 0x49454E44;
constexpr uint32_t kTRNS = 0x74524E53;

// Deflate cannot expand data by more than 1032 to 1 (a 258-byte match in two
// bits); a header asking for more output than that is refused before any
// memory is taken for it.
constexpr uint64_t kMaxInflateRatio = 1032;
constexpr uint64_t kInflateSlack = 4096;

// The rows are kept with this many zero bytes in front, so that the "left"
// and "upper left" bytes of the first pixel read as zero without a test; the
// last of them receives the row's filter byte first.
constexpr size_t kRowLead = 8;

inline uint32_t Be32(const uint8_t* p) {
  return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

inline uint32_t Be16(const uint8_t* p) {
  return uint32_t{p[0]} << 8 | uint32_t{p[1]};
}

// c * a / 255 in integers, exactly, for c and a up to 255.
inline uint8_t Premultiply(uint32_t c, uint32_t a) {
  return static_cast<uint8_t>((c * a * 0x8081u) >> 23);
}

inline void Put(uint8_t* d, uint32_t r, uint32_t g, uint32_t b, uint32_t a) {
  d[0] = Premultiply(b, a);
  d[1] = Premultiply(g, a);
  d[2] = Premultiply(r, a);
  d[3] = static_cast<uint8_t>(a);
}

// --- Unfiltering, one routine per filter and bytes-per-pixel step ----------
// Sub, Average and Paeth depend on the byte one pixel back, which keeps the
// compiler from vectorising them; where the processor has SSE2, pixels of 3
// to 8 bytes are taken whole instead, one pixel per step.

template <size_t B>
void UnfilterSub(uint8_t* cur, size_t n) {
  const uint8_t* left = cur - B;  // the zero lead stands left of the first pixel
  for (size_t i = 0; i < n; ++i) cur[i] = static_cast<uint8_t>(cur[i] + left[i]);
}

void UnfilterUp(uint8_t* cur, const uint8_t* prev, size_t n) {
  for (size_t i = 0; i < n; ++i) cur[i] = static_cast<uint8_t>(cur[i] + prev[i]);
}

template <size_t B>
void UnfilterAverage(uint8_t* cur, const uint8_t* prev, size_t n) {
  const uint8_t* left = cur - B;
  for (size_t i = 0; i < n; ++i)
    cur[i] = static_cast<uint8_t>(cur[i] + ((uint32_t{left[i]} + prev[i]) >> 1));
}

inline int Paeth(int a, int b, int c) {
  const int pa = std::abs(b - c);
  const int pb = std::abs(a - c);
  const int pc = std::abs(a + b - 2 * c);
  if (pa <= pb && pa <= pc) return a;
  return pb <= pc ? b : c;
}

template <size_t B>
void UnfilterPaeth(uint8_t* cur, const uint8_t* prev, size_t n) {
  const uint8_t* left = cur - B;
  const uint8_t* upperLeft = prev - B;
  for (size_t i = 0; i < n; ++i)
    cur[i] = static_cast<uint8_t>(cur[i] + Paeth(left[i], prev[i], upperLeft[i]));
}

#if defined(__SSE2__)

// Up to 4 bytes as one integer, assembled in registers: a partial copy
// through memory would stall store forwarding on every pixel.
template <size_t N>
inline uint32_t Gather(const uint8_t* p) {
  if constexpr (N == 4) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
  } else if constexpr (N == 3) {
    uint16_t lo;
    std::memcpy(&lo, p, 2);
    return uint32_t{lo} | uint32_t{p[2]} << 16;
  } else if constexpr (N == 2) {
    uint16_t v;
    std::memcpy(&v, p, 2);
    return v;
  } else {
    return p[0];
  }
}

template <size_t N>
inline void Scatter(uint8_t* p, uint32_t v) {
  if constexpr (N == 4) {
    std::memcpy(p, &v, 4);
  } else if constexpr (N == 3) {
    const uint16_t lo = static_cast<uint16_t>(v);
    std::memcpy(p, &lo, 2);
    p[2] = static_cast<uint8_t>(v >> 16);
  } else if constexpr (N == 2) {
    const uint16_t lo = static_cast<uint16_t>(v);
    std::memcpy(p, &lo, 2);
  } else {
    p[0] = static_cast<uint8_t>(v);
  }
}

// One pixel of B bytes in the low lanes (SSE2 machines are little-endian).
template <size_t B>
inline __m128i LoadPixel(const uint8_t* p) {
  if constexpr (B == 8) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
  } else if constexpr (B <= 4) {
    return _mm_cvtsi32_si128(static_cast<int>(Gather<B>(p)));
  } else {
    return _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(Gather<4>(p))),
                              _mm_cvtsi32_si128(static_cast<int>(Gather<B - 4>(p + 4))));
  }
}

template <size_t B>
inline void StorePixel(uint8_t* p, __m128i v) {
  if constexpr (B == 8) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
  } else if constexpr (B <= 4) {
    Scatter<B>(p, static_cast<uint32_t>(_mm_cvtsi128_si32(v)));
  } else {
    Scatter<4>(p, static_cast<uint32_t>(_mm_cvtsi128_si32(v)));
    Scatter<B - 4>(p + 4, static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(v, 4))));
  }
}

// n is a whole number of pixels: these step sizes come only with 8 and 16-bit
// samples.
template <size_t B>
void UnfilterSubSimd(uint8_t* cur, size_t n) {
  __m128i a = _mm_setzero_si128();
  for (size_t i = 0; i < n; i += B) {
    a = _mm_add_epi8(LoadPixel<B>(cur + i), a);
    StorePixel<B>(cur + i, a);
  }
}

template <size_t B>
void UnfilterAverageSimd(uint8_t* cur, const uint8_t* prev, size_t n) {
  const __m128i one = _mm_set1_epi8(1);
  __m128i a = _mm_setzero_si128();
  for (size_t i = 0; i < n; i += B) {
    const __m128i b = LoadPixel<B>(prev + i);
    // The rounded-up average, less the bit that rounded it up.
    const __m128i average =
        _mm_sub_epi8(_mm_avg_epu8(a, b), _mm_and_si128(_mm_xor_si128(a, b), one));
    a = _mm_add_epi8(LoadPixel<B>(cur + i), average);
    StorePixel<B>(cur + i, a);
  }
}

inline __m128i Abs16(__m128i v) {
  return _mm_max_epi16(v, _mm_sub_epi16(_mm_setzero_si128(), v));
}

inline __m128i Select(__m128i mask, __m128i yes, __m128i no) {
  return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

template <size_t B>
void UnfilterPaethSimd(uint8_t* cur, const uint8_t* prev, size_t n) {
  const __m128i zero = _mm_setzero_si128();
  __m128i a = zero, c = zero;  // 16-bit lanes
  for (size_t i = 0; i < n; i += B) {
    const __m128i b = _mm_unpacklo_epi8(LoadPixel<B>(prev + i), zero);
    const __m128i bc = _mm_sub_epi16(b, c), ac = _mm_sub_epi16(a, c);
    const __m128i pa = Abs16(bc), pb = Abs16(ac), pc = Abs16(_mm_add_epi16(bc, ac));
    const __m128i least = _mm_min_epi16(pa, _mm_min_epi16(pb, pc));
    // a wins ties over b, b over c.
    __m128i predictor = Select(_mm_cmpeq_epi16(pb, least), b, c);
    predictor = Select(_mm_cmpeq_epi16(pa, least), a, predictor);
    const __m128i out = _mm_add_epi8(LoadPixel<B>(cur + i), _mm_packus_epi16(predictor, zero));
    StorePixel<B>(cur + i, out);
    a = _mm_unpacklo_epi8(out, zero);
    c = b;
  }
}

#endif

template <size_t B>
bool UnfilterStep(uint8_t filter, uint8_t* cur, const uint8_t* prev, size_t n) {
#if defined(__SSE2__)
  constexpr bool kWhole = B >= 3;
#else
  constexpr bool kWhole = false;
#endif
  switch (filter) {
    case 0:
      return true;
    case 1:
#if defined(__SSE2__)
      if constexpr (kWhole) {
        UnfilterSubSimd<B>(cur, n);
        return true;
      }
#endif
      UnfilterSub<B>(cur, n);
      return true;
    case 2:
      UnfilterUp(cur, prev, n);
      return true;
    case 3:
#if defined(__SSE2__)
      if constexpr (kWhole) {
        UnfilterAverageSimd<B>(cur, prev, n);
        return true;
      }
#endif
      UnfilterAverage<B>(cur, prev, n);
      return true;
    case 4:
#if defined(__SSE2__)
      if constexpr (kWhole) {
        UnfilterPaethSimd<B>(cur, prev, n);
        return true;
      }
#endif
      UnfilterPaeth<B>(cur, prev, n);
      return true;
    default:
      return false;
  }
}

// `cur` and `prev` point past kRowLead zero bytes.
bool Unfilter(uint8_t filter, uint8_t* cur, const uint8_t* prev, size_t n, size_t bpp) {
  switch (bpp) {
    case 1:
      return UnfilterStep<1>(filter, cur, prev, n);
    case 2:
      return UnfilterStep<2>(filter, cur, prev, n);
    case 3:
      return UnfilterStep<3>(filter, cur, prev, n);
    case 4:
      return UnfilterStep<4>(filter, cur, prev, n);
    case 6:
      return UnfilterStep<6>(filter, cur, prev, n);
    default:
      return UnfilterStep<8>(filter, cur, prev, n);
  }
}

// --- Colour conversion: one routine per sample layout -----------------------

struct Converter {
  // Grey levels and palette entries, already in the target layout.
  uint8_t lut[256][4] = {};
  // The key colour of true colour, compared on 8-bit samples (the high bytes
  // of 16-bit ones); -1 when there is none.
  int32_t keyR = -1, keyG = -1, keyB = -1;
  int depth = 8;
  void (*convert)(const Converter&, const uint8_t*, size_t, uint8_t*) = nullptr;
  bool mayBeTransparent = false;
};

template <int Depth>
void ConvertPacked(const Converter& c, const uint8_t* s, size_t count, uint8_t* d) {
  constexpr int kPerByte = 8 / Depth;
  constexpr uint32_t kMask = (1u << Depth) - 1;
  size_t i = 0;
  for (; i + kPerByte <= count; i += kPerByte, ++s) {
    const uint32_t byte = *s;
    for (int k = 0; k < kPerByte; ++k, d += 4)
      std::memcpy(d, c.lut[(byte >> (8 - Depth * (k + 1))) & kMask], 4);
  }
  for (int k = 0; i < count; ++i, ++k, d += 4)
    std::memcpy(d, c.lut[(uint32_t{*s} >> (8 - Depth * (k + 1))) & kMask], 4);
}

void ConvertLut8(const Converter& c, const uint8_t* s, size_t count, uint8_t* d) {
  for (size_t i = 0; i < count; ++i, d += 4) std::memcpy(d, c.lut[s[i]], 4);
}

void ConvertLut16(const Converter& c, const uint8_t* s, size_t count, uint8_t* d) {
  for (size_t i = 0; i < count; ++i, d += 4) std::memcpy(d, c.lut[s[2 * i]], 4);
}

template <size_t Step>  // 1 for 8-bit samples, 2 for 16-bit ones
void ConvertGreyAlpha(const Converter&, const uint8_t* s, size_t count, uint8_t* d) {
  for (size_t i = 0; i < count; ++i, s += 2 * Step, d += 4) {
    const uint32_t g = s[0], a = s[Step];
    const uint8_t v = Premultiply(g, a);
    d[0] = d[1] = d[2] = v;
    d[3] = static_cast<uint8_t>(a);
  }
}

template <size_t Step>
void ConvertRgb(const Converter&, const uint8_t* s, size_t count, uint8_t* d) {
  for (size_t i = 0; i < count; ++i, s += 3 * Step, d += 4) {
    d[0] = s[2 * Step];
    d[1] = s[Step];
    d[2] = s[0];
    d[3] = 255;
  }
}

template <size_t Step>
void ConvertRgbKey(const Converter& c, const uint8_t* s, size_t count, uint8_t* d) {
  for (size_t i = 0; i < count; ++i, s += 3 * Step, d += 4) {
    const int32_t r = s[0], g = s[Step], b = s[2 * Step];
    if (r == c.keyR && g == c.keyG && b == c.keyB) {
      std::memset(d, 0, 4);
    } else {
      d[0] = static_cast<uint8_t>(b);
      d[1] = static_cast<uint8_t>(g);
      d[2] = static_cast<uint8_t>(r);
      d[3] = 255;
    }
  }
}

template <size_t Step>
void ConvertRgba(const Converter&, const uint8_t* s, size_t count, uint8_t* d) {
  size_t i = 0;
#if defined(__SSE2__)
  // Four pixels (two of 16-bit samples) at a time, in 16-bit lanes: the
  // channels reordered to blue, green, red, alpha and multiplied by alpha,
  // alpha by 255, then divided by 255 exactly as (v + 1 + (v >> 8)) >> 8.
  const __m128i zero = _mm_setzero_si128();
  const __m128i one = _mm_set1_epi16(1);
  const __m128i alphaLanes = _mm_set_epi16(-1, 0, 0, 0, -1, 0, 0, 0);
  const __m128i full = _mm_set1_epi16(255);
  auto premultiply = [&](__m128i v) {
    constexpr int kToBgra = _MM_SHUFFLE(3, 0, 1, 2);
    const __m128i bgra = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, kToBgra), kToBgra);
    __m128i alpha = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, 0xFF), 0xFF);
    alpha = Select(alphaLanes, full, alpha);
    const __m128i product = _mm_mullo_epi16(bgra, alpha);
    return _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(product, one), _mm_srli_epi16(product, 8)),
                          8);
  };
  if constexpr (Step == 1) {
    for (; i + 4 <= count; i += 4, s += 16, d += 16) {
      const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
      const __m128i lo = premultiply(_mm_unpacklo_epi8(x, zero));
      const __m128i hi = premultiply(_mm_unpackhi_epi8(x, zero));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(lo, hi));
    }
  } else {
    // The high byte of each big-endian sample is the low byte of its lane.
    const __m128i highBytes = _mm_set1_epi16(0xFF);
    for (; i + 2 <= count; i += 2, s += 16, d += 8) {
      const __m128i x =
          _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s)), highBytes);
      _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(premultiply(x), zero));
    }
  }
#endif
  for (; i < count; ++i, s += 4 * Step, d += 4) Put(d, s[0], s[Step], s[2 * Step], s[3 * Step]);
}

// Folds a converted row's alphas into what the picture has shown so far.
void TrackAlpha(const uint8_t* d, size_t count, bool& allOpaque, bool& anyPartial) {
  size_t i = 0;
  uint32_t all = 255, most = 0;  // alpha AND, and the largest alpha + 1 (mod 256)
#if defined(__SSE2__)
  const __m128i one = _mm_set1_epi8(1);
  __m128i andv = _mm_set1_epi8(-1), maxv = _mm_setzero_si128();
  for (; i + 4 <= count; i += 4, d += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(d));
    andv = _mm_and_si128(andv, v);
    maxv = _mm_max_epu8(maxv, _mm_add_epi8(v, one));
  }
  alignas(16) uint8_t a[16], m[16];
  _mm_store_si128(reinterpret_cast<__m128i*>(a), andv);
  _mm_store_si128(reinterpret_cast<__m128i*>(m), maxv);
  for (int k = 3; k < 16; k += 4) {
    all &= a[k];
    most = std::max<uint32_t>(most, m[k]);
  }
#endif
  for (; i < count; ++i, d += 4) {
    all &= d[3];
    most = std::max<uint32_t>(most, static_cast<uint8_t>(d[3] + 1));
  }
  allOpaque &= all == 255;
  anyPartial |= most >= 2;  // 0 and 255 give 1 and 0
}

// --- Where the inflated rows come from --------------------------------------

class RowSource {
 public:
  virtual ~RowSource() = default;
  // Exactly n bytes, or false.
  virtual bool Read(uint8_t* out, size_t n) = 0;
  // True when the stream ends right here, with no data left over.
  virtual bool Finish() = 0;
};

class OwnInflaterRows final : public RowSource {
 public:
  explicit OwnInflaterRows(std::span<const std::span<const uint8_t>> pieces) {
    inflater_.Start(pieces, Inflater::Wrapper::Zlib, false);
  }
  bool Read(uint8_t* out, size_t n) override { return inflater_.Read(out, n) == n; }
  bool Finish() override {
    uint8_t extra;
    return inflater_.Read(&extra, 1) == 0 && inflater_.Finished();
  }

 private:
  Inflater inflater_;
};

// zlib's inflate, taken in spans of many rows: a call per row would spend
// the end of every row in inflate's slow path.
class ZlibRows final : public RowSource {
 public:
  explicit ZlibRows(std::span<const std::span<const uint8_t>> pieces)
      : pieces_(pieces), buffer_(kSpan) {
    ok_ = inflateInit(&stream_) == Z_OK;
  }
  ~ZlibRows() override {
    if (ok_) inflateEnd(&stream_);
  }
  ZlibRows(const ZlibRows&) = delete;
  ZlibRows& operator=(const ZlibRows&) = delete;

  bool Read(uint8_t* out, size_t n) override {
    while (n > 0) {
      if (pos_ == end_ && !Refill()) return false;
      const size_t k = std::min(n, end_ - pos_);
      std::memcpy(out, buffer_.data() + pos_, k);
      pos_ += k;
      out += k;
      n -= k;
    }
    return true;
  }
  bool Finish() override {
    if (pos_ != end_) return false;
    if (ended_) return true;
    return !Refill() && ended_ && end_ == 0;
  }

 private:
  static constexpr size_t kSpan = 65536;

  // Inflates the next span; false when nothing more comes or the data is bad
  // or runs out first.
  bool Refill() {
    pos_ = end_ = 0;
    if (!ok_ || ended_) return false;
    stream_.next_out = buffer_.data();
    stream_.avail_out = static_cast<uInt>(buffer_.size());
    while (stream_.avail_out > 0 && !ended_) {
      if (stream_.avail_in == 0) {
        if (next_ == pieces_.size()) return false;
        const auto piece = pieces_[next_];
        // A body is at most 2^31 - 1 bytes, so it always fits avail_in.
        stream_.next_in = const_cast<Bytef*>(piece.data());
        stream_.avail_in = static_cast<uInt>(piece.size());
        ++next_;
        continue;
      }
      const int result = inflate(&stream_, Z_NO_FLUSH);
      if (result == Z_STREAM_END) {
        ended_ = true;
      } else if (result != Z_OK) {
        return false;
      }
    }
    end_ = buffer_.size() - stream_.avail_out;
    return end_ > 0;
  }

  z_stream stream_{};
  std::span<const std::span<const uint8_t>> pieces_;
  size_t next_ = 0;
  std::vector<uint8_t> buffer_;
  size_t pos_ = 0, end_ = 0;
  bool ok_ = false;
  bool ended_ = false;
};

struct Pass {
  uint32_t x0, y0, dx, dy;
};
constexpr Pass kAdam7[7] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                            {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
constexpr Pass kWhole[1] = {{0, 0, 1, 1}};

uint32_t PassSize(uint32_t size, uint32_t start, uint32_t step) {
  return size > start ? (size - start + step - 1) / step : 0;
}

}  // namespace

bool cPNGparser::ZlibPresent() {
  return !g_zlibAbsent;
}

void cPNGparser::SimulateZlibAbsent(bool absent) {
  g_zlibAbsent = absent;
}

bool cPNGparser::LoadStream(std::span<const uint8_t> bytes, Pixels& out, size_t start,
                            size_t length) {
  out.Clear();
  if (start > bytes.size()) return false;
  const size_t rest = bytes.size() - start;
  return Load(bytes.subspan(start, length == 0 ? rest : std::min(length, rest)), out);
}

bool cPNGparser::LoadFile(const String& fileName, Pixels& out) {
  out.Clear();
  if (fileName.empty()) return false;
  // The file is read once into one array, which the walk then reads in place:
  // the image data is inflated from there, not from a second copy.
  std::vector<uint8_t> data;
  try {
    std::ifstream file(std::filesystem::path(platform::FilePath::Native(fileName)),
                       std::ios::binary | std::ios::ate);
    if (!file) return false;
    const std::streamoff size = file.tellg();
    if (size <= 56) return false;
    file.seekg(0);
    uint8_t signature[8];
    if (!file.read(reinterpret_cast<char*>(signature), 8)) return false;
    if (Be32(signature) != 0x89504E47u || Be32(signature + 4) != 0x0D0A1A0Au) return false;
    data.resize(static_cast<size_t>(size));
    std::memcpy(data.data(), signature, 8);
    if (!file.read(reinterpret_cast<char*>(data.data() + 8), size - 8)) return false;
  } catch (...) {
    return false;
  }
  return Load(data, out);
}

bool cPNGparser::Load(std::span<const uint8_t> data, Pixels& out) {
  width_ = height_ = 0;
  bitDepth_ = colorType_ = compression_ = filter_ = interlace_ = 0;
  haveHeader_ = false;
  transparencyMode_ = -1;
  palette_.clear();
  transparency_.clear();
  compressed_.clear();
  compressedSize_ = 0;
  useZlib_ = ZlibPresent();

  bool ok = false;
  try {
    ok = data.size() >= 8 && Be32(data.data()) == 0x89504E47u &&
         Be32(data.data() + 4) == 0x0D0A1A0Au && WalkChunks(data) && DecodeImage(out);
  } catch (...) {
    ok = false;
  }
  compressed_.clear();  // the caller's bytes may go once we return
  if (!ok) out.Clear();
  return ok;
}

bool cPNGparser::WalkChunks(std::span<const uint8_t> data) {
  size_t pos = 8;
  for (;;) {
    if (data.size() - pos < 8) return false;  // the end came before IEND
    const uint8_t* head = data.data() + pos;
    const uint32_t length = Be32(head);
    const uint32_t type = Be32(head + 4);
    const size_t rest = data.size() - pos - 8;
    if (length > rest || rest - length < 4) return false;
    if (type == kIEND) break;
    const bool handled = type == kIHDR || type == kPLTE || type == kTRNS || type == kIDAT;
    if (handled && useZlib_) {
      const uLong crc = crc32(0L, head + 4, 4 + length);
      if (crc != Be32(head + 8 + length)) return false;
    }
    const std::span<const uint8_t> body(head + 8, length);
    switch (type) {
      case kIHDR:
        if (!ReadHeader(body)) return false;
        break;
      case kPLTE:
        palette_.assign(body.begin(), body.begin() + std::min<size_t>(length, 256 * 3));
        break;
      case kTRNS:
        transparency_.assign(body.begin(), body.begin() + std::min<size_t>(length, 256));
        break;
      case kIDAT:
        compressed_.push_back(body);
        compressedSize_ += length;
        break;
      default:
        break;  // ancillary or not, nothing a picture needs
    }
    pos += 12 + static_cast<size_t>(length);
  }
  if (!haveHeader_ || compressed_.empty()) return false;

  transparencyMode_ = 0;
  if (!transparency_.empty()) {
    if (colorType_ == 3)
      transparencyMode_ = 1;
    else if ((colorType_ == 0 && transparency_.size() >= 2) ||
             (colorType_ == 2 && transparency_.size() >= 6))
      transparencyMode_ = 2;
  }
  return colorType_ != 3 || palette_.size() >= 3;
}

bool cPNGparser::ReadHeader(std::span<const uint8_t> body) {
  if (body.size() != 13) return false;
  const uint32_t w = Be32(body.data()), h = Be32(body.data() + 4);
  if (w < 1 || h < 1 || w > INT32_MAX || h > INT32_MAX) return false;
  width_ = static_cast<int32_t>(w);
  height_ = static_cast<int32_t>(h);
  bitDepth_ = body[8];
  colorType_ = body[9];
  compression_ = body[10];
  filter_ = body[11];
  interlace_ = body[12];
  if (compression_ != 0 || filter_ != 0 || interlace_ > 1) return false;
  // The depths each colour type allows.
  bool depthOk;
  switch (colorType_) {
    case 0:
      depthOk =
          bitDepth_ == 1 || bitDepth_ == 2 || bitDepth_ == 4 || bitDepth_ == 8 || bitDepth_ == 16;
      break;
    case 3:
      depthOk = bitDepth_ == 1 || bitDepth_ == 2 || bitDepth_ == 4 || bitDepth_ == 8;
      break;
    case 2:
    case 4:
    case 6:
      depthOk = bitDepth_ == 8 || bitDepth_ == 16;
      break;
    default:
      return false;
  }
  haveHeader_ = depthOk;
  return depthOk;
}

bool cPNGparser::DecodeImage(Pixels& out) {
  const uint32_t width = static_cast<uint32_t>(width_), height = static_cast<uint32_t>(height_);
  const uint32_t channels = colorType_ == 2 ? 3 : colorType_ == 4 ? 2 : colorType_ == 6 ? 4 : 1;
  const uint32_t bitsPerPixel = channels * bitDepth_;
  const size_t bpp = std::max<size_t>(1, bitsPerPixel / 8);
  auto rowBytes = [&](uint32_t w) { return (uint64_t{w} * bitsPerPixel + 7) / 8; };

  const std::span<const Pass> passes =
      interlace_ ? std::span<const Pass>(kAdam7) : std::span<const Pass>(kWhole);
  uint64_t expected = 0;
  for (const Pass& p : passes) {
    const uint32_t pw = PassSize(width, p.x0, p.dx), ph = PassSize(height, p.y0, p.dy);
    if (pw != 0 && ph != 0) expected += uint64_t{ph} * (1 + rowBytes(pw));
  }
  if (expected > compressedSize_ * kMaxInflateRatio + kInflateSlack) return false;
  const uint64_t widest = rowBytes(width);
  if (widest > (uint64_t{1} << 40)) return false;
  if (!out.Allocate(width_, height_)) return false;

  // The colour conversion for this header.
  auto conv = std::make_unique<Converter>();
  Converter& c = *conv;
  c.depth = bitDepth_;
  if (colorType_ == 0 || colorType_ == 3) {
    const bool palette = colorType_ == 3;
    const uint32_t levels = bitDepth_ == 16 ? 256 : 1u << bitDepth_;
    int32_t key = -1;
    if (!palette && transparencyMode_ == 2) {
      const uint32_t k = Be16(transparency_.data());
      // A 16-bit key is compared on its high byte, like the samples.
      key = static_cast<int32_t>(bitDepth_ == 16 ? k >> 8 : k);
    }
    const size_t entries = palette_.size() / 3;
    for (uint32_t v = 0; v < 256; ++v) {
      uint32_t r = 0, g = 0, b = 0, a = 255;
      if (palette) {
        if (v < entries) r = palette_[3 * v], g = palette_[3 * v + 1], b = palette_[3 * v + 2];
        if (transparencyMode_ == 1 && v < transparency_.size()) a = transparency_[v];
      } else if (v < levels) {
        r = g = b = bitDepth_ >= 8 ? v : v * 255 / (levels - 1);
        if (static_cast<int32_t>(v) == key) a = 0;
      }
      Put(c.lut[v], r, g, b, a);
      if (a != 255 && (palette || v < levels)) c.mayBeTransparent = true;
    }
    switch (bitDepth_) {
      case 1:
        c.convert = &ConvertPacked<1>;
        break;
      case 2:
        c.convert = &ConvertPacked<2>;
        break;
      case 4:
        c.convert = &ConvertPacked<4>;
        break;
      case 8:
        c.convert = &ConvertLut8;
        break;
      default:
        c.convert = &ConvertLut16;
        break;
    }
  } else if (colorType_ == 2) {
    const bool wide = bitDepth_ == 16;
    if (transparencyMode_ == 2) {
      const uint8_t* t = transparency_.data();
      auto sample = [&](const uint8_t* p) {
        const uint32_t k = Be16(p);
        return static_cast<int32_t>(wide ? k >> 8 : k);
      };
      c.keyR = sample(t);
      c.keyG = sample(t + 2);
      c.keyB = sample(t + 4);
      c.mayBeTransparent = true;
      c.convert = wide ? &ConvertRgbKey<2> : &ConvertRgbKey<1>;
    } else {
      c.convert = wide ? &ConvertRgb<2> : &ConvertRgb<1>;
    }
  } else {
    const bool wide = bitDepth_ == 16;
    c.mayBeTransparent = true;
    if (colorType_ == 4)
      c.convert = wide ? &ConvertGreyAlpha<2> : &ConvertGreyAlpha<1>;
    else
      c.convert = wide ? &ConvertRgba<2> : &ConvertRgba<1>;
  }

  std::unique_ptr<RowSource> source;
  if (useZlib_)
    source = std::make_unique<ZlibRows>(compressed_);
  else
    source = std::make_unique<OwnInflaterRows>(compressed_);

  const size_t rowCapacity = kRowLead + static_cast<size_t>(widest);
  std::vector<uint8_t> rowA(rowCapacity), rowB(rowCapacity);
  std::vector<uint8_t> scattered;  // a pass's row before it is spread over the picture
  if (interlace_) scattered.resize(static_cast<size_t>(width) * 4);
  uint8_t* cur = rowA.data();
  uint8_t* prev = rowB.data();
  bool allOpaque = true, anyPartial = false;

  for (const Pass& p : passes) {
    const uint32_t pw = PassSize(width, p.x0, p.dx), ph = PassSize(height, p.y0, p.dy);
    if (pw == 0 || ph == 0) continue;
    const size_t n = static_cast<size_t>(rowBytes(pw));
    std::memset(prev, 0, kRowLead + n);  // the row above a pass's first is zero
    for (uint32_t j = 0; j < ph; ++j) {
      if (!source->Read(cur + kRowLead - 1, n + 1)) return false;
      const uint8_t filter = cur[kRowLead - 1];
      cur[kRowLead - 1] = 0;
      if (!Unfilter(filter, cur + kRowLead, prev + kRowLead, n, bpp)) return false;

      uint8_t* row = out.Row(static_cast<int32_t>(p.y0 + j * p.dy));
      uint8_t* target = p.dx == 1 ? row : scattered.data();
      c.convert(c, cur + kRowLead, pw, target);
      if (c.mayBeTransparent) TrackAlpha(target, pw, allOpaque, anyPartial);
      if (p.dx != 1) {
        for (uint32_t i = 0; i < pw; ++i)
          std::memcpy(row + 4 * (p.x0 + i * p.dx), target + 4 * i, 4);
      }
      std::swap(cur, prev);
    }
  }
  if (!source->Finish()) return false;

  out.alpha = allOpaque ? Alpha_None : anyPartial ? Alpha_Complex : Alpha_Simple;
  out.format = Image_PNG;
  return true;
}

}  // namespace vantor::imaging
