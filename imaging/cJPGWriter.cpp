#include "imaging/cJPGWriter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>

#include "platform/FilePath.h"
#include "platform/User.h"

// The hot loops have a plain form and, where the processor is sure to have
// them (every x86-64 has SSE2), a form on four lanes at once. Both do the same
// arithmetic in the same order, so they write the same bytes.
#if defined(__SSE2__)
#include <emmintrin.h>
#define VANTOR_JPEG_SSE2 1
#endif

namespace vantor::imaging {

namespace {

bool g_plainOnly = false;

// The luminance and chrominance tables of the JPEG standard's Annex K, in
// row order as the standard prints them; the constructor lays them out in
// zig-zag order.
constexpr uint8_t kLuminanceRows[64] = {
    16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};
constexpr uint8_t kChrominanceRows[64] = {
    17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99, 24, 26, 56, 99, 99, 99,
    99, 99, 47, 66, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
    99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};

constexpr uint8_t kSOI = 0xD8, kEOI = 0xD9, kAPP0 = 0xE0, kDQT = 0xDB, kSOF0 = 0xC0, kDHT = 0xC4,
                  kSOS = 0xDA;

// Luminance and chrominance from 8-bit red, green and blue in 15-bit fixed
// point (so that a coefficient fits a 16-bit lane): 0.299, 0.587, 0.114 for
// Y, the JFIF rows for Cb and Cr. Each row sums to exactly 1 or 0, so that
// white stays 255 and grey has no colour.
constexpr int kFixedBits = 15;
constexpr int16_t kYr = 9798, kYg = 19235, kYb = 3735;
constexpr int16_t kCbR = -5529, kCbG = -10855, kCbB = 16384;
constexpr int16_t kCrR = 16384, kCrG = -13720, kCrB = -2664;

// Tokens carry what the first pass found to the second: the symbol (bits 0
// to 7), the table it is coded with (8 to 11), the count of extra bits (12
// to 15) and the extra bits themselves (16 to 31).
constexpr int kTableShift = 8, kExtraCountShift = 12, kExtraShift = 16;

// --- Colour ------------------------------------------------------------------------

inline int16_t Luminance(int32_t r, int32_t g, int32_t b) {
  return static_cast<int16_t>((kYr * r + kYg * g + kYb * b + (1 << (kFixedBits - 1))) >>
                              kFixedBits);
}

// Chrominance from the sums of a group of 2^`groupBits` pixels. The rounding
// stops just short of a half, which keeps 255.5 from becoming 256.
inline int16_t Chrominance(int32_t cr, int32_t cg, int32_t cb, int32_t sr, int32_t sg, int32_t sb,
                           int groupBits) {
  const int shift = kFixedBits + groupBits;
  return static_cast<int16_t>(
      (cr * sr + cg * sg + cb * sb + (128 << shift) + (1 << (shift - 1)) - 1) >> shift);
}

// One row of pixels, pre-multiplied BGRA, laid over the fill colour.
void Flatten(const uint8_t* src, uint8_t* dst, size_t count, const uint32_t fill[3]) {
  for (size_t x = 0; x < count; ++x, src += 4, dst += 4) {
    const uint32_t through = 255u - src[3];
    for (size_t c = 0; c < 3; ++c) {
      // What shows through adds the fill's share.
      dst[c] =
          static_cast<uint8_t>(std::min<uint32_t>(255, src[c] + (fill[c] * through + 127) / 255));
    }
    dst[3] = 255;
  }
}

// Luminance of a row and the chrominance of each group of `h` x `v` pixels
// across the `v` rows given, for `count` pixels; the plain form, for any
// sampling.
void ConvertPlain(const uint8_t* const* rows, size_t v, size_t h, size_t count, int16_t* const* y,
                  int16_t* cb, int16_t* cr) {
  for (size_t dy = 0; dy < v; ++dy) {
    const uint8_t* p = rows[dy];
    for (size_t x = 0; x < count; ++x, p += 4) y[dy][x] = Luminance(p[2], p[1], p[0]);
  }
  const int groupBits = std::countr_zero(h * v);
  for (size_t cx = 0; cx < count / h; ++cx) {
    int32_t sr = 0, sg = 0, sb = 0;
    for (size_t dy = 0; dy < v; ++dy) {
      const uint8_t* p = rows[dy] + cx * h * 4;
      for (size_t dx = 0; dx < h; ++dx, p += 4) {
        sb += p[0];
        sg += p[1];
        sr += p[2];
      }
    }
    cb[cx] = Chrominance(kCbR, kCbG, kCbB, sr, sg, sb, groupBits);
    cr[cx] = Chrominance(kCrR, kCrG, kCrB, sr, sg, sb, groupBits);
  }
}

#if VANTOR_JPEG_SSE2
// Sums of adjacent 32-bit lanes of two madd results: [a0+a1, a2+a3, b0+b1, b2+b3].
inline __m128i PairSums(__m128i a, __m128i b) {
  const __m128 fa = _mm_castsi128_ps(a), fb = _mm_castsi128_ps(b);
  const __m128i even = _mm_castps_si128(_mm_shuffle_ps(fa, fb, _MM_SHUFFLE(2, 0, 2, 0)));
  const __m128i odd = _mm_castps_si128(_mm_shuffle_ps(fa, fb, _MM_SHUFFLE(3, 1, 3, 1)));
  return _mm_add_epi32(even, odd);
}

// Four pixels' luminance, as 32-bit lanes.
inline __m128i Luminance4(__m128i bgra) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i k = _mm_setr_epi16(kYb, kYg, kYr, 0, kYb, kYg, kYr, 0);
  const __m128i sums = PairSums(_mm_madd_epi16(_mm_unpacklo_epi8(bgra, zero), k),
                                _mm_madd_epi16(_mm_unpackhi_epi8(bgra, zero), k));
  return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(1 << (kFixedBits - 1))), kFixedBits);
}

// The 2 x 2 case, eight pixels of two rows at a time: `count` is a multiple
// of 8. The same sums as ConvertPlain, on 16-bit lanes.
void ConvertTwoByTwo(const uint8_t* rowA, const uint8_t* rowB, size_t count, int16_t* yA,
                     int16_t* yB, int16_t* cb, int16_t* cr) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i kb = _mm_setr_epi16(kCbB, kCbG, kCbR, 0, kCbB, kCbG, kCbR, 0);
  const __m128i kr = _mm_setr_epi16(kCrB, kCrG, kCrR, 0, kCrB, kCrG, kCrR, 0);
  const int shift = kFixedBits + 2;
  const __m128i bias = _mm_set1_epi32((128 << shift) + (1 << (shift - 1)) - 1);
  for (size_t x = 0; x < count; x += 8) {
    const __m128i a0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rowA + x * 4));
    const __m128i a1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rowA + x * 4 + 16));
    const __m128i b0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rowB + x * 4));
    const __m128i b1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rowB + x * 4 + 16));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(yA + x),
                     _mm_packs_epi32(Luminance4(a0), Luminance4(a1)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(yB + x),
                     _mm_packs_epi32(Luminance4(b0), Luminance4(b1)));
    // Channel sums over the two rows, then over each pair of columns.
    const __m128i s0 = _mm_add_epi16(_mm_unpacklo_epi8(a0, zero), _mm_unpacklo_epi8(b0, zero));
    const __m128i s1 = _mm_add_epi16(_mm_unpackhi_epi8(a0, zero), _mm_unpackhi_epi8(b0, zero));
    const __m128i s2 = _mm_add_epi16(_mm_unpacklo_epi8(a1, zero), _mm_unpacklo_epi8(b1, zero));
    const __m128i s3 = _mm_add_epi16(_mm_unpackhi_epi8(a1, zero), _mm_unpackhi_epi8(b1, zero));
    const __m128i g01 = _mm_unpacklo_epi64(_mm_add_epi16(s0, _mm_srli_si128(s0, 8)),
                                           _mm_add_epi16(s1, _mm_srli_si128(s1, 8)));
    const __m128i g23 = _mm_unpacklo_epi64(_mm_add_epi16(s2, _mm_srli_si128(s2, 8)),
                                           _mm_add_epi16(s3, _mm_srli_si128(s3, 8)));
    const __m128i vb = _mm_srai_epi32(
        _mm_add_epi32(PairSums(_mm_madd_epi16(g01, kb), _mm_madd_epi16(g23, kb)), bias), shift);
    const __m128i vr = _mm_srai_epi32(
        _mm_add_epi32(PairSums(_mm_madd_epi16(g01, kr), _mm_madd_epi16(g23, kr)), bias), shift);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(cb + x / 2), _mm_packs_epi32(vb, zero));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(cr + x / 2), _mm_packs_epi32(vr, zero));
  }
}
#endif

// --- DCT -------------------------------------------------------------------------

#if VANTOR_JPEG_SSE2
// Four floats, for the DCT written once for a lane and for four.
struct Lanes {
  __m128 v;
  Lanes() = default;
  explicit Lanes(float f) : v(_mm_set1_ps(f)) {}
  explicit Lanes(__m128 x) : v(x) {}
  friend Lanes operator+(Lanes a, Lanes b) { return Lanes(_mm_add_ps(a.v, b.v)); }
  friend Lanes operator-(Lanes a, Lanes b) { return Lanes(_mm_sub_ps(a.v, b.v)); }
  friend Lanes operator*(Lanes a, Lanes b) { return Lanes(_mm_mul_ps(a.v, b.v)); }
};
#endif

// The 8-point AAN DCT on d[0], d[step], ... d[7 * step], in place: the
// coefficients come out scaled per frequency, which the quantiser's divisors
// undo.
template <typename T>
inline void Dct8(T* d, size_t step) {
  const T c4(0.707106781186548f);    // cos(4 pi / 16)
  const T c6(0.382683432365091f);    // cos(6 pi / 16)
  const T c2m6(0.541196100146196f);  // cos(2 pi / 16) - cos(6 pi / 16)
  const T c2p6(1.30656296487638f);   // cos(2 pi / 16) + cos(6 pi / 16)
  T& x0 = d[0];
  T& x1 = d[step];
  T& x2 = d[2 * step];
  T& x3 = d[3 * step];
  T& x4 = d[4 * step];
  T& x5 = d[5 * step];
  T& x6 = d[6 * step];
  T& x7 = d[7 * step];
  const T s07 = x0 + x7, d07 = x0 - x7;
  const T s16 = x1 + x6, d16 = x1 - x6;
  const T s25 = x2 + x5, d25 = x2 - x5;
  const T s34 = x3 + x4, d34 = x3 - x4;
  // Even half.
  const T e0 = s07 + s34, e3 = s07 - s34;
  const T e1 = s16 + s25, e2 = s16 - s25;
  x0 = e0 + e1;
  x4 = e0 - e1;
  const T r = (e2 + e3) * c4;
  x2 = e3 + r;
  x6 = e3 - r;
  // Odd half.
  const T o0 = d34 + d25, o1 = d25 + d16, o2 = d16 + d07;
  const T z5 = (o0 - o2) * c6;
  const T z2 = c2m6 * o0 + z5;
  const T z4 = c2p6 * o2 + z5;
  const T z3 = o1 * c4;
  const T z11 = d07 + z3, z13 = d07 - z3;
  x5 = z13 + z2;
  x3 = z13 - z2;
  x1 = z11 + z4;
  x7 = z11 - z4;
}

// One block: DCT by rows and then by columns, each coefficient divided by
// its divisor and rounded half up, into `q` in row order. Returns the bits of
// the coefficients that are not 0, bit i for q[i].
uint64_t TransformPlain(const int16_t* samples, size_t stride, const float* divisors, int16_t* q) {
  float a[64];
  float b[64];
  for (size_t r = 0; r < 8; ++r) {
    const int16_t* row = samples + r * stride;
    for (size_t k = 0; k < 8; ++k) a[k * 8 + r] = static_cast<float>(row[k] - 128);
  }
  for (size_t r = 0; r < 8; ++r) Dct8(a + r, 8);  // a[u * 8 + r]: coefficient u of row r
  for (size_t u = 0; u < 8; ++u)
    for (size_t r = 0; r < 8; ++r) b[r * 8 + u] = a[u * 8 + r];
  for (size_t u = 0; u < 8; ++u) Dct8(b + u, 8);  // b[v * 8 + u]: the block in row order
  uint64_t nonzero = 0;
  for (size_t i = 0; i < 64; ++i) {
    // The offset keeps the sum positive, so that truncation is a floor.
    const int32_t v = static_cast<int32_t>(b[i] * divisors[i] + 16384.5f) - 16384;
    q[i] = static_cast<int16_t>(std::clamp(v, -32768, 32767));
    nonzero |= static_cast<uint64_t>(v != 0) << i;
  }
  return nonzero;
}

#if VANTOR_JPEG_SSE2
uint64_t TransformSse2(const int16_t* samples, size_t stride, const float* divisors, int16_t* q) {
  // m[r][half]: row r, columns 0-3 or 4-7.
  Lanes m[8][2];
  const __m128i shift = _mm_set1_epi16(128);
  for (size_t r = 0; r < 8; ++r) {
    const __m128i row = _mm_sub_epi16(
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + r * stride)), shift);
    m[r][0] = Lanes(_mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(row, row), 16)));
    m[r][1] = Lanes(_mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(row, row), 16)));
  }
  // Turns m so that lanes run down the columns: t[k][half] holds column k of
  // rows 0-3 or 4-7.
  auto transpose = [](Lanes(&in)[8][2], Lanes(&out)[8][2]) {
    for (size_t rb = 0; rb < 2; ++rb) {
      for (size_t cb = 0; cb < 2; ++cb) {
        __m128 r0 = in[rb * 4 + 0][cb].v, r1 = in[rb * 4 + 1][cb].v, r2 = in[rb * 4 + 2][cb].v,
               r3 = in[rb * 4 + 3][cb].v;
        _MM_TRANSPOSE4_PS(r0, r1, r2, r3);
        out[cb * 4 + 0][rb] = Lanes(r0);
        out[cb * 4 + 1][rb] = Lanes(r1);
        out[cb * 4 + 2][rb] = Lanes(r2);
        out[cb * 4 + 3][rb] = Lanes(r3);
      }
    }
  };
  Lanes t[8][2];
  transpose(m, t);
  Dct8(&t[0][0], 2);  // by rows: t[u][half], coefficient u of each row
  Dct8(&t[0][1], 2);
  transpose(t, m);
  Dct8(&m[0][0], 2);  // by columns: m[v][half], the block in row order
  Dct8(&m[0][1], 2);
  const __m128 offset = _mm_set1_ps(16384.5f);
  const __m128i back = _mm_set1_epi32(16384);
  const __m128i zero = _mm_setzero_si128();
  uint64_t nonzero = 0;
  for (size_t v = 0; v < 8; v += 2) {
    __m128i rows[2];
    for (size_t i = 0; i < 2; ++i) {
      const float* d = divisors + (v + i) * 8;
      const __m128i lo = _mm_sub_epi32(
          _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(m[v + i][0].v, _mm_loadu_ps(d)), offset)), back);
      const __m128i hi = _mm_sub_epi32(
          _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(m[v + i][1].v, _mm_loadu_ps(d + 4)), offset)),
          back);
      rows[i] = _mm_packs_epi32(lo, hi);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(q + (v + i) * 8), rows[i]);
    }
    const __m128i zeros =
        _mm_packs_epi16(_mm_cmpeq_epi16(rows[0], zero), _mm_cmpeq_epi16(rows[1], zero));
    nonzero |= static_cast<uint64_t>(~_mm_movemask_epi8(zeros) & 0xFFFF) << (v * 8);
  }
  return nonzero;
}
#endif

// Bits of a magnitude: floor(log2(v)) + 1, 0 for 0; the category of a
// coefficient or DC difference.
inline uint32_t Category(uint32_t magnitude) {
  return static_cast<uint32_t>(std::bit_width(magnitude));
}

// What the first pass keeps for one image: the symbols in order, and how
// often each was used.
class FirstPass {
 public:
  explicit FirstPass(const std::array<uint8_t, 64>& zigzag, size_t expected) : zigzag_(zigzag) {
    Grow(std::max<size_t>(expected, 1024));
  }

  // One block: DCT, quantisation, and its symbols counted and kept.
  void Block(const int16_t* samples, size_t stride, const float* divisors, size_t component,
             uint32_t dcTable, uint32_t acTable) {
    alignas(16) int16_t q[64];
#if VANTOR_JPEG_SSE2
    const uint64_t nonzero = g_plainOnly ? TransformPlain(samples, stride, divisors, q)
                                         : TransformSse2(samples, stride, divisors, q);
#else
    const uint64_t nonzero = TransformPlain(samples, stride, divisors, q);
#endif
    // Room for the most a block can make: a DC symbol, 63 AC ones and
    // three runs of sixteen zeros.
    if (capacity_ - count_ < 70) Grow(capacity_ * 2);

    // The DC difference; a baseline frame holds up to 11 bits of it.
    const int32_t dc = std::clamp<int32_t>(q[0], -1023, 1023);
    const int32_t diff = dc - lastDc_[component];
    lastDc_[component] = dc;
    Value(dcTable, 0, diff);

    int left = std::popcount(nonzero & ~uint64_t{1});
    int run = 0;
    for (size_t k = 1; left > 0; ++k) {
      const int32_t v = q[zigzag_[k]];
      if (v == 0) {
        ++run;
        continue;
      }
      while (run > 15) {
        Symbol(acTable, 0xF0, 0, 0);  // sixteen zeros
        run -= 16;
      }
      Value(acTable, run, std::clamp(v, -1023, 1023));
      run = 0;
      if (--left == 0 && k == 63) return;
    }
    Symbol(acTable, 0x00, 0, 0);  // end of block
  }

  const uint32_t* Tokens() const {
    return tokens_.get();
  }
  size_t Count() const {
    return count_;
  }
  const cJPGWriter::Frequencies& Frequencies(size_t table) const {
    return frequencies_[table];
  }

 private:
  void Grow(size_t capacity) {
    auto bigger = std::make_unique_for_overwrite<uint32_t[]>(capacity);
    if (count_ != 0) std::memcpy(bigger.get(), tokens_.get(), count_ * sizeof(uint32_t));
    tokens_ = std::move(bigger);
    capacity_ = capacity;
  }
  void Symbol(uint32_t table, uint32_t symbol, uint32_t extraCount, uint32_t extra) {
    ++frequencies_[table][symbol];
    tokens_[count_++] =
        symbol | table << kTableShift | extraCount << kExtraCountShift | extra << kExtraShift;
  }
  // A value goes out as its category (after a run of zeros, for AC) and
  // then its low bits, a negative one as its one's complement.
  void Value(uint32_t table, int run, int32_t value) {
    const uint32_t magnitude = static_cast<uint32_t>(value < 0 ? -value : value);
    const uint32_t bits = Category(magnitude);
    const uint32_t extra =
        static_cast<uint32_t>(value < 0 ? value - 1 : value) & ((1u << bits) - 1);
    Symbol(table, static_cast<uint32_t>(run) << 4 | bits, bits, extra);
  }

  const std::array<uint8_t, 64>& zigzag_;
  std::unique_ptr<uint32_t[]> tokens_;
  size_t count_ = 0;
  size_t capacity_ = 0;
  std::array<cJPGWriter::Frequencies, 4> frequencies_{};  // DC 0, DC 1, AC 0, AC 1
  std::array<int32_t, 4> lastDc_{};
};

}  // namespace

void cJPGWriter::UsePlainLoopsForTesting(bool plain) {
  g_plainOnly = plain;
}

cJPGWriter::cJPGWriter() {
  // The zig-zag walk: along the anti-diagonals, upwards on the even ones.
  size_t k = 0;
  for (int s = 0; s < 15; ++s) {
    const int low = std::max(0, s - 7), high = std::min(s, 7);
    if (s % 2 == 0) {
      for (int row = high; row >= low; --row)
        zigzag_[k++] = static_cast<uint8_t>(row * 8 + s - row);
    } else {
      for (int row = low; row <= high; ++row)
        zigzag_[k++] = static_cast<uint8_t>(row * 8 + s - row);
    }
  }
  components_[0] = {1, 2, 2, 0, 0, 0, {}, 0};
  components_[1] = {2, 1, 1, 1, 1, 1, {}, 0};
  components_[2] = {3, 1, 1, 1, 1, 1, {}, 0};
  BuildQuantizationTables();
}

void cJPGWriter::put_Quality(int32_t Quality) {
  quality_ = std::clamp(Quality, 1, 100);
  BuildQuantizationTables();
}

bool cJPGWriter::SetLuminanceSampling(int32_t horizontal, int32_t vertical) {
  if (horizontal < 1 || horizontal > 2 || vertical < 1 || vertical > 2) return false;
  components_[0].horizontal = static_cast<uint8_t>(horizontal);
  components_[0].vertical = static_cast<uint8_t>(vertical);
  return true;
}

void cJPGWriter::BuildQuantizationTables() {
  const int32_t scale =
      quality_ < 50 ? static_cast<int32_t>(5000.0 / quality_) : 200 - quality_ * 2;
  for (size_t k = 0; k < 64; ++k) {
    const int32_t base[2] = {kLuminanceRows[zigzag_[k]], kChrominanceRows[zigzag_[k]]};
    for (size_t t = 0; t < 2; ++t) {
      quant_[t][k] = static_cast<uint8_t>(std::clamp((base[t] * scale + 50) / 100, 1, 255));
    }
  }
}

void cJPGWriter::FitHuffmanTable(Frequencies frequencies, std::array<uint8_t, 17>& bits,
                                 std::vector<uint8_t>& values) {
  bits.fill(0);
  values.clear();
  std::array<uint64_t, 257> freq{};
  bool any = false;
  for (size_t i = 0; i < 256; ++i) {
    freq[i] = frequencies[i];
    any = any || freq[i] != 0;
  }
  if (!any) return;
  freq[256] = 1;

  // Figure K.1: join the two rarest symbols (the larger symbol first among
  // equals, so that the reserved one ends up longest) until one is left,
  // lengthening the codes of both chains.
  std::array<uint32_t, 257> codeSize{};
  std::array<int, 257> others;
  others.fill(-1);
  for (;;) {
    int v1 = -1, v2 = -1;
    for (int i = 0; i < 257; ++i) {
      if (freq[static_cast<size_t>(i)] != 0 &&
          (v1 < 0 || freq[static_cast<size_t>(i)] <= freq[static_cast<size_t>(v1)])) {
        v1 = i;
      }
    }
    for (int i = 0; i < 257; ++i) {
      if (i != v1 && freq[static_cast<size_t>(i)] != 0 &&
          (v2 < 0 || freq[static_cast<size_t>(i)] <= freq[static_cast<size_t>(v2)])) {
        v2 = i;
      }
    }
    if (v2 < 0) break;
    freq[static_cast<size_t>(v1)] += freq[static_cast<size_t>(v2)];
    freq[static_cast<size_t>(v2)] = 0;
    for (;;) {
      ++codeSize[static_cast<size_t>(v1)];
      if (others[static_cast<size_t>(v1)] < 0) break;
      v1 = others[static_cast<size_t>(v1)];
    }
    others[static_cast<size_t>(v1)] = v2;
    for (;;) {
      ++codeSize[static_cast<size_t>(v2)];
      if (others[static_cast<size_t>(v2)] < 0) break;
      v2 = others[static_cast<size_t>(v2)];
    }
  }

  // Figure K.2: codes of each length. 257 symbols cannot make a code longer
  // than 256.
  std::array<int32_t, 258> count{};
  uint32_t longest = 0;
  for (uint32_t size : codeSize) {
    if (size == 0) continue;
    ++count[size];
    longest = std::max(longest, size);
  }
  // Figure K.3: codes longer than 16 move up, a pair at a time, each pair's
  // prefix taking the place of a shorter code that becomes two.
  for (size_t i = longest; i > 16; --i) {
    while (count[i] > 0) {
      size_t j = i - 2;
      while (count[j] == 0) --j;
      count[i] -= 2;
      count[i - 1] += 1;
      count[j + 1] += 2;
      count[j] -= 1;
    }
  }
  // The reserved symbol's code is one of the longest: take one away.
  size_t last = 16;
  while (last > 0 && count[last] == 0) --last;
  if (last > 0) --count[last];
  for (size_t i = 1; i <= 16; ++i) bits[i] = static_cast<uint8_t>(count[i]);
  // Figure K.4: the symbols by their first code size, then by value.
  for (uint32_t size = 1; size <= longest; ++size) {
    for (size_t symbol = 0; symbol < 256; ++symbol) {
      if (codeSize[symbol] == size) values.push_back(static_cast<uint8_t>(symbol));
    }
  }
}

namespace {

// Codes in order of length (the standard's Annex C), by symbol.
void AssignCodes(const std::array<uint8_t, 17>& bits, const std::vector<uint8_t>& values,
                 std::array<uint16_t, 256>& code, std::array<uint8_t, 256>& size) {
  code.fill(0);
  size.fill(0);
  uint32_t next = 0;
  size_t k = 0;
  for (uint8_t length = 1; length <= 16; ++length) {
    for (uint8_t n = 0; n < bits[length] && k < values.size(); ++n, ++k) {
      code[values[k]] = static_cast<uint16_t>(next++);
      size[values[k]] = length;
    }
    next <<= 1;
  }
}

}  // namespace

bool cJPGWriter::Save(const Pixels& in, std::vector<uint8_t>& out, int32_t Quality,
                      OLE_COLOR FillColor) {
  out.clear();
  try {
    put_Quality(Quality);
    if (in.Empty() || in.bytes.size() != in.Stride() * static_cast<size_t>(in.height) ||
        in.width > 65535 || in.height > 65535) {
      return false;
    }
    width_ = in.width;
    height_ = in.height;

    COLORREF fillColour = 0;
    if (OleTranslateColor(FillColor, nullptr, &fillColour) != S_OK) {
      fillColour = FillColor & 0xFFFFFF;
    }
    // In the pixels' order: blue, green, red.
    const uint32_t fill[3] = {fillColour >> 16 & 0xFF, fillColour >> 8 & 0xFF, fillColour & 0xFF};

    // Data units, minimum coded units and the strip of samples each
    // component fills per row of units.
    const size_t width = static_cast<size_t>(width_), height = static_cast<size_t>(height_);
    const size_t maxH = components_[0].horizontal, maxV = components_[0].vertical;
    const size_t mcuWidth = 8 * maxH, mcuHeight = 8 * maxV;
    const size_t mcusAcross = (width + mcuWidth - 1) / mcuWidth;
    const size_t mcusDown = (height + mcuHeight - 1) / mcuHeight;
    const size_t paddedWidth = mcusAcross * mcuWidth;
    size_t samplesPerMcu = 0;
    for (int c = 0; c < componentCount_; ++c) {
      Component& comp = components_[static_cast<size_t>(c)];
      comp.planeWidth = mcusAcross * 8 * comp.horizontal;
      comp.plane.assign(comp.planeWidth * 8 * comp.vertical, 0);
      samplesPerMcu += 64u * comp.horizontal * comp.vertical;
    }

    // The AAN DCT leaves coefficient (v, u) scaled by 8 x s(v) x s(u), with
    // s(0) = 1 and s(k) = cos(k pi / 16) x sqrt(2); the quantiser divides
    // that out along with the table's step, in one multiplication.
    double aan[8];
    const double pi = 4.0 * std::atan(1.0);
    for (int k = 0; k < 8; ++k) aan[k] = k == 0 ? 1.0 : std::cos(k * pi / 16.0) * std::sqrt(2.0);
    alignas(16) float divisors[2][64];
    for (size_t t = 0; t < 2; ++t) {
      for (size_t k = 0; k < 64; ++k) {
        const size_t at = zigzag_[k];
        divisors[t][at] =
            static_cast<float>(1.0 / (quant_[t][k] * aan[at / 8] * aan[at % 8] * 8.0));
      }
    }

    // --- First pass: samples, DCT, quantisation, symbols counted. ---------
    FirstPass first(zigzag_, mcusAcross * mcusDown * samplesPerMcu / 16);
    Component& luma = components_[0];
    Component& blue = components_[1];
    Component& red = components_[2];
#if VANTOR_JPEG_SSE2
    const bool twoByTwo = !g_plainOnly && maxH == 2 && maxV == 2;
#else
    const bool twoByTwo = false;
#endif
    // Pixels up to the last whole eight are read where they lie; the rest,
    // and the padding to whole units that repeats the last column, from a
    // small copy. Rows with any transparency are laid over the fill first.
    const size_t direct = width / 8 * 8;
    const size_t tailCount = paddedWidth - direct;
    std::vector<uint8_t> tail[2], flat[2];
    for (size_t dy = 0; dy < maxV; ++dy) tail[dy].resize(tailCount * 4);
    for (size_t my = 0; my < mcusDown; ++my) {
      for (size_t cy = 0; cy < 8; ++cy) {
        const uint8_t* rows[2] = {};
        const uint8_t* tails[2] = {};
        int16_t* yRows[2] = {};
        int16_t* yTails[2] = {};
        for (size_t dy = 0; dy < maxV; ++dy) {
          // Rows below the picture repeat its last row.
          const size_t y = std::min(my * mcuHeight + cy * maxV + dy, height - 1);
          const uint8_t* src = in.Row(static_cast<int32_t>(y));
          uint32_t all = 0xFFFFFFFFu;
          for (size_t x = 0; x < width; ++x) {
            uint32_t word;
            std::memcpy(&word, src + x * 4, 4);
            all &= word;
          }
          if ((all >> 24) != 0xFF) {
            flat[dy].resize(width * 4);
            Flatten(src, flat[dy].data(), width, fill);
            src = flat[dy].data();
          }
          uint8_t* t = tail[dy].data();
          if (tailCount != 0) {
            std::memcpy(t, src + direct * 4, (width - direct) * 4);
            const uint8_t* last = src + (width - 1) * 4;
            for (size_t x = width - direct; x < tailCount; ++x) std::memcpy(t + x * 4, last, 4);
          }
          rows[dy] = src;
          tails[dy] = t;
          yRows[dy] = luma.plane.data() + (cy * maxV + dy) * luma.planeWidth;
          yTails[dy] = yRows[dy] + direct;
        }
        int16_t* cb = blue.plane.data() + cy * blue.planeWidth;
        int16_t* cr = red.plane.data() + cy * red.planeWidth;
        if (twoByTwo) {
#if VANTOR_JPEG_SSE2
          ConvertTwoByTwo(rows[0], rows[1], direct, yRows[0], yRows[1], cb, cr);
          ConvertTwoByTwo(tails[0], tails[1], tailCount, yTails[0], yTails[1], cb + direct / 2,
                          cr + direct / 2);
#endif
        } else {
          ConvertPlain(rows, maxV, maxH, direct, yRows, cb, cr);
          ConvertPlain(tails, maxV, maxH, tailCount, yTails, cb + direct / maxH,
                       cr + direct / maxH);
        }
      }
      for (size_t mx = 0; mx < mcusAcross; ++mx) {
        for (size_t c = 0; c < static_cast<size_t>(componentCount_); ++c) {
          const Component& comp = components_[c];
          for (size_t by = 0; by < comp.vertical; ++by) {
            for (size_t bx = 0; bx < comp.horizontal; ++bx) {
              const int16_t* block =
                  comp.plane.data() + by * 8 * comp.planeWidth + (mx * comp.horizontal + bx) * 8;
              first.Block(block, comp.planeWidth, divisors[comp.quantTable], c, comp.dcTable,
                          2u + comp.acTable);
            }
          }
        }
      }
    }
    for (Component& comp : components_) comp.plane = {};

    // --- Tables fitted to the counts. --------------------------------------
    std::array<uint32_t, 4 * 256> codes{};
    std::array<uint8_t, 4 * 256> sizes{};
    for (size_t t = 0; t < 2; ++t) {
      HuffmanTable* tables[2] = {&dcTables_[t], &acTables_[t]};
      for (size_t kind = 0; kind < 2; ++kind) {
        HuffmanTable& h = *tables[kind];
        FitHuffmanTable(first.Frequencies(kind * 2 + t), h.bits, h.values);
        AssignCodes(h.bits, h.values, h.code, h.size);
        for (size_t s = 0; s < 256; ++s) {
          codes[(kind * 2 + t) * 256 + s] = h.code[s];
          sizes[(kind * 2 + t) * 256 + s] = h.size[s];
        }
      }
    }

    // --- Second pass: the file. --------------------------------------------
    const size_t planeBytes = mcusAcross * mcusDown * samplesPerMcu;
    outputSize_ = planeBytes + planeBytes * 3 / 10 + 1000;
    output_ = std::make_unique_for_overwrite<uint8_t[]>(outputSize_);
    position_ = 0;
    WriteHeaders();
    WriteEntropy(first.Tokens(), first.Count(), codes, sizes);
    PutByte(0xFF);
    PutByte(kEOI);

    out.assign(output_.get(), output_.get() + position_);
    output_.reset();
    outputSize_ = position_ = 0;
    return true;
  } catch (...) {
    output_.reset();
    outputSize_ = position_ = 0;
    for (Component& comp : components_) comp.plane = {};
    out.clear();
    return false;
  }
}

bool cJPGWriter::Save(const Pixels& in, const String& fileName, int32_t Quality,
                      OLE_COLOR FillColor) {
  if (fileName.empty()) return false;
  std::vector<uint8_t> bytes;
  if (!Save(in, bytes, Quality, FillColor)) return false;
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

void cJPGWriter::Reserve(size_t more) {
  if (position_ + more <= outputSize_) return;
  const size_t grown = std::max(outputSize_ * 2, position_ + more);
  auto bigger = std::make_unique_for_overwrite<uint8_t[]>(grown);
  std::memcpy(bigger.get(), output_.get(), position_);
  output_ = std::move(bigger);
  outputSize_ = grown;
}

void cJPGWriter::PutByte(uint8_t b) {
  Reserve(1);
  output_[position_++] = b;
}

void cJPGWriter::PutWord(uint32_t w) {
  PutByte(static_cast<uint8_t>(w >> 8));
  PutByte(static_cast<uint8_t>(w));
}

void cJPGWriter::PutMarker(uint8_t marker, uint32_t length) {
  PutByte(0xFF);
  PutByte(marker);
  if (length != 0) PutWord(length);
}

void cJPGWriter::WriteHeaders() {
  PutMarker(kSOI, 0);

  PutMarker(kAPP0, 16);
  for (char c : {'J', 'F', 'I', 'F', '\0'}) PutByte(static_cast<uint8_t>(c));
  PutByte(1);  // version 1.1
  PutByte(1);
  PutByte(0);  // no units: the densities give only the pixels' shape
  PutWord(1);
  PutWord(1);
  PutByte(0);  // no thumbnail
  PutByte(0);

  bool used[4] = {};
  for (int c = 0; c < componentCount_; ++c)
    used[components_[static_cast<size_t>(c)].quantTable] = true;
  for (uint8_t t = 0; t < 4; ++t) {
    if (!used[t]) continue;
    PutMarker(kDQT, 67);
    PutByte(t);  // 8-bit precision, table t
    for (uint8_t v : quant_[t]) PutByte(v);
  }

  PutMarker(kSOF0, 8 + 3 * static_cast<uint32_t>(componentCount_));
  PutByte(static_cast<uint8_t>(precision_));
  PutWord(static_cast<uint32_t>(height_));
  PutWord(static_cast<uint32_t>(width_));
  PutByte(static_cast<uint8_t>(componentCount_));
  for (int c = 0; c < componentCount_; ++c) {
    const Component& comp = components_[static_cast<size_t>(c)];
    PutByte(comp.id);
    PutByte(static_cast<uint8_t>(comp.horizontal << 4 | comp.vertical));
    PutByte(comp.quantTable);
  }

  for (uint8_t kind = 0; kind < 2; ++kind) {
    bool written[4] = {};
    for (int c = 0; c < componentCount_; ++c) {
      const Component& comp = components_[static_cast<size_t>(c)];
      const uint8_t t = kind == 0 ? comp.dcTable : comp.acTable;
      if (written[t]) continue;
      written[t] = true;
      const HuffmanTable& h = kind == 0 ? dcTables_[t] : acTables_[t];
      PutMarker(kDHT, 2 + 1 + 16 + static_cast<uint32_t>(h.values.size()));
      PutByte(static_cast<uint8_t>(kind << 4 | t));
      for (size_t n = 1; n <= 16; ++n) PutByte(h.bits[n]);
      for (uint8_t v : h.values) PutByte(v);
    }
  }

  PutMarker(kSOS, 6 + 2 * static_cast<uint32_t>(componentCount_));
  PutByte(static_cast<uint8_t>(componentCount_));
  for (int c = 0; c < componentCount_; ++c) {
    const Component& comp = components_[static_cast<size_t>(c)];
    PutByte(comp.id);
    PutByte(static_cast<uint8_t>(comp.dcTable << 4 | comp.acTable));
  }
  PutByte(0);   // spectral selection 0 ...
  PutByte(63);  // ... to 63
  PutByte(0);   // no successive approximation
}

void cJPGWriter::WriteEntropy(const uint32_t* tokens, size_t count,
                              const std::array<uint32_t, 4 * 256>& codes,
                              const std::array<uint8_t, 4 * 256>& sizes) {
  // Bits gather in a 64-bit word, the oldest highest, and leave eight bytes
  // at a time; a byte 0xFF among them is followed by a stuffed 0x00.
  uint64_t word = 0;
  int room = 64;
  auto flush = [&](uint64_t full) {
    Reserve(16);
    uint8_t* to = output_.get() + position_;
    const uint64_t inverse = ~full;
    const bool hasFF = ((inverse - 0x0101010101010101ull) & ~inverse & 0x8080808080808080ull) != 0;
    if (!hasFF) {
      for (int i = 0; i < 8; ++i) to[i] = static_cast<uint8_t>(full >> (56 - 8 * i));
      position_ += 8;
      return;
    }
    for (int i = 0; i < 8; ++i) {
      const uint8_t byte = static_cast<uint8_t>(full >> (56 - 8 * i));
      *to++ = byte;
      if (byte == 0xFF) *to++ = 0;
    }
    position_ = static_cast<size_t>(to - output_.get());
  };
  auto put = [&](uint64_t bits, int length) {
    if (length < room) {
      word = word << length | bits;
      room -= length;
      return;
    }
    const int over = length - room;
    flush(word << room | bits >> over);
    // The bits already written stay above in `word`; they leave by the top
    // before it is flushed again.
    word = bits;
    room = 64 - over;
  };
  for (size_t i = 0; i < count; ++i) {
    const uint32_t t = tokens[i];
    const uint32_t at = t & 0xFFF;
    const int extraCount = static_cast<int>(t >> kExtraCountShift & 0xF);
    put(static_cast<uint64_t>(codes[at]) << extraCount | t >> kExtraShift, sizes[at] + extraCount);
  }
  // The last byte is filled with one bits.
  const int held = 64 - room;
  const int pad = (8 - held % 8) % 8;
  if (pad != 0) put((1u << pad) - 1, pad);
  const int bytes = (64 - room) / 8;
  Reserve(16);
  for (int i = bytes - 1; i >= 0; --i) {
    const uint8_t byte = static_cast<uint8_t>(word >> (8 * i));
    output_[position_++] = byte;
    if (byte == 0xFF) output_[position_++] = 0;
  }
}

}  // namespace vantor::imaging
