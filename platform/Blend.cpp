#include "platform/Blend.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vantor::platform {

namespace {

inline uint32_t Channel(uint32_t p, int shift) {
  return (p >> shift) & 0xFF;
}

inline uint32_t OverPixel(uint32_t d, uint32_t s) {
  const uint32_t inv = 255 - (s >> 24);
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const uint32_t v = std::min<uint32_t>(Channel(s, shift) + Div255(Channel(d, shift) * inv), 255);
    out |= v << shift;
  }
  return out;
}

inline uint32_t ScalePixel(uint32_t s, uint32_t alpha) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) out |= Div255(Channel(s, shift) * alpha) << shift;
  return out;
}

inline uint32_t MixPixel(uint32_t d, uint32_t s, uint32_t alpha) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    out |= Div255(Channel(s, shift) * alpha + Channel(d, shift) * (255 - alpha)) << shift;
  }
  return out;
}

#if defined(__SSE2__)
// (v + 128 + ((v + 128) >> 8)) >> 8 on 16-bit lanes.
inline __m128i Div255x8(__m128i v) {
  const __m128i t = _mm_add_epi16(v, _mm_set1_epi16(128));
  return _mm_srli_epi16(_mm_add_epi16(t, _mm_srli_epi16(t, 8)), 8);
}

// Each pixel's alpha in its four lanes.
inline __m128i AlphaLanes(__m128i px16) {
  return _mm_shufflehi_epi16(_mm_shufflelo_epi16(px16, 0xFF), 0xFF);
}

inline __m128i Over2(__m128i d16, __m128i s16) {
  const __m128i inv = _mm_sub_epi16(_mm_set1_epi16(255), AlphaLanes(s16));
  return Div255x8(_mm_mullo_epi16(d16, inv));
}
#endif

}  // namespace

void BlendPremultiplied(uint32_t* dst, const uint32_t* src, size_t count) {
  size_t i = 0;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  for (; i + 4 <= count; i += 4) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i));
    // Fully transparent and fully opaque runs are common in images.
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(s, zero)) == 0xFFFF) continue;
    if (_mm_movemask_epi8(_mm_cmpeq_epi32(_mm_srli_epi32(s, 24), _mm_set1_epi32(255))) == 0xFFFF) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), s);
      continue;
    }
    const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + i));
    const __m128i lo = Over2(_mm_unpacklo_epi8(d, zero), _mm_unpacklo_epi8(s, zero));
    const __m128i hi = Over2(_mm_unpackhi_epi8(d, zero), _mm_unpackhi_epi8(s, zero));
    const __m128i out = _mm_adds_epu8(s, _mm_packus_epi16(lo, hi));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), out);
  }
#endif
  for (; i < count; ++i) dst[i] = OverPixel(dst[i], src[i]);
}

void BlendPremultipliedConstant(uint32_t* dst, const uint32_t* src, size_t count, uint32_t alpha) {
  if (alpha >= 255) {
    BlendPremultiplied(dst, src, count);
    return;
  }
  size_t i = 0;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  const __m128i a = _mm_set1_epi16(static_cast<int16_t>(alpha));
  for (; i + 4 <= count; i += 4) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i));
    const __m128i slo = Div255x8(_mm_mullo_epi16(_mm_unpacklo_epi8(s, zero), a));
    const __m128i shi = Div255x8(_mm_mullo_epi16(_mm_unpackhi_epi8(s, zero), a));
    const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + i));
    const __m128i lo = Over2(_mm_unpacklo_epi8(d, zero), slo);
    const __m128i hi = Over2(_mm_unpackhi_epi8(d, zero), shi);
    const __m128i out = _mm_adds_epu8(_mm_packus_epi16(slo, shi), _mm_packus_epi16(lo, hi));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), out);
  }
#endif
  for (; i < count; ++i) dst[i] = OverPixel(dst[i], ScalePixel(src[i], alpha));
}

void BlendConstant(uint32_t* dst, const uint32_t* src, size_t count, uint32_t alpha) {
  alpha = std::min<uint32_t>(alpha, 255);
  size_t i = 0;
#if defined(__SSE2__)
  const __m128i zero = _mm_setzero_si128();
  const __m128i a = _mm_set1_epi16(static_cast<int16_t>(alpha));
  const __m128i na = _mm_set1_epi16(static_cast<int16_t>(255 - alpha));
  for (; i + 4 <= count; i += 4) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i));
    const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + i));
    const __m128i lo = Div255x8(_mm_add_epi16(_mm_mullo_epi16(_mm_unpacklo_epi8(s, zero), a),
                                              _mm_mullo_epi16(_mm_unpacklo_epi8(d, zero), na)));
    const __m128i hi = Div255x8(_mm_add_epi16(_mm_mullo_epi16(_mm_unpackhi_epi8(s, zero), a),
                                              _mm_mullo_epi16(_mm_unpackhi_epi8(d, zero), na)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), _mm_packus_epi16(lo, hi));
  }
#endif
  for (; i < count; ++i) dst[i] = MixPixel(dst[i], src[i], alpha);
}

}  // namespace vantor::platform
