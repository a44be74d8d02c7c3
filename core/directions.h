// Which ways a chain of edges goes, as a mask of eight bits.
#pragma once

#include <array>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <zbr/planar.h>

namespace zbr {

// The quadrant of a direction, as a bit. Seen along an axis on which it neither rises nor falls, a direction goes with the other
// axis, so that opposite directions are in opposite quadrants.
constexpr unsigned QuadrantBit(double x, double y) {
  const bool left = (x < 0.0) | ((x == 0.0) & (y < 0.0));  // no branches: signs are as good as random
  const bool down = (y < 0.0) | ((y == 0.0) & (x < 0.0));
  return 1U << (static_cast<unsigned>(left) | static_cast<unsigned>(down) << 1U);
}

// The quadrants of a direction, between the axes and between the diagonals.
inline unsigned DirectionBits(const ZBR_PT& d) {
#if defined(__SSE2__)
  // By the four signs, where none is zero.
  const __m128d xy = _mm_set_pd(d.y(), d.x());
  const __m128d turned = _mm_add_pd(_mm_set1_pd(d.x()), _mm_set_pd(-d.y(), d.y()));
  const __m128d zero = _mm_setzero_pd();
  if (_mm_movemask_pd(_mm_or_pd(_mm_or_pd(_mm_cmpeq_pd(xy, zero), _mm_cmpeq_pd(turned, zero)), _mm_cmpunord_pd(xy, turned))) == 0) {
    return 1U << _mm_movemask_pd(xy) | 16U << _mm_movemask_pd(turned);
  }
#endif
  return QuadrantBit(d.x(), d.y()) | QuadrantBit(d.x() + d.y(), d.x() - d.y()) << 4U;
}

// By mask: whether all directions go on along an axis and along a diagonal, one way. A chain that does so never meets itself, nor
// comes near itself: its directions are within three eighths of a turn.
inline constexpr std::array<bool, 256> kGoesOn = [] {
  constexpr unsigned kHalves[] = {0x3, 0xc, 0x5, 0xa};  // up or down an axis, right or left
  std::array<bool, 256> fits{};
  for (unsigned mask = 0; mask < 256; ++mask) {
    bool alongAxis = false;
    bool alongDiagonal = false;
    for (const unsigned half : kHalves) {
      alongAxis = alongAxis || (mask & 0xfU & ~half) == 0;
      alongDiagonal = alongDiagonal || (mask >> 4U & ~half) == 0;
    }
    fits[mask] = alongAxis && alongDiagonal;
  }
  return fits;
}();

}  // namespace zbr
