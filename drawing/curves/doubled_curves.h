// Hidden lines that stand for the same curve as another body's.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/scene.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/curves/chord_sides.h"

namespace zbr::drawing {

// A stretch of a line that stands for a curved one, in the scene.
struct CurvedStretch {
  ZBR_SEG segment;
  std::uint32_t shell = 0;
  std::uint32_t circle = kNoCircle;  // that it is a chord of; else it is the silhouette of facets
  double height = 0.0;               // how far the curve may lie beside it
};

// Whether a chord in the scene, which is no perspective, lies beside its arc; circle and height then.
bool IsCurvedChord(const Scene& scene, const Circles& circles, const ChordSides::Side& side, CurvedStretch& stretch);

// Whether circles, places in `circles`, differ by no more than `reach` in the scene.
bool AreSeenAsOne(const Scene& scene, const Circles& circles, std::uint32_t a, std::uint32_t b, double reach);

// Part of a segment, from 0 to 1.
struct PartOfStretch {
  std::size_t stretch = 0;
  double from = 0.0, to = 1.0;

  // The ends that the segment has are met exactly.
  ZBR_SEG Of(const ZBR_SEG& whole) const {
    const ZBR_PT along = whole.e() - whole.s();
    return {from == 0.0 ? whole.s() : whole.s() + along * from, to == 1.0 ? whole.e() : whole.s() + along * to};
  }
};

// What is left of the hidden ones where each goes as far as it lies along a visible one, or an earlier hidden one, of another
// shell: chords of one circle that stand for the same arc, however coarse, and silhouettes side by side, no farther apart than
// their curves may lie beside them, and never by more than a line's width. In order.
std::vector<PartOfStretch> WithoutDoubles(const Scene& scene, const Circles* circles, const std::vector<CurvedStretch>& visible,
                                          const std::vector<CurvedStretch>& hidden);

}  // namespace zbr::drawing
