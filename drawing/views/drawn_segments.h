// What the removal leaves of a scene's edges, with what each stretch is part of.
#pragma once

#include <zbr-drawing/scene.h>
#include <zbr/planar.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "drawing/curves/chord_sides.h"
#include "drawing/curves/common_parts.h"
#include "drawing/curves/doubled_curves.h"
#include "drawing/curves/round_walls.h"
#include "drawing/curves/seen_circles.h"
#include "drawing/curves/silhouette_heights.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/views/chains.h"

namespace zbr::drawing {

// Lines that run closer together are one on paper, in scene units: about a tenth of a line's width on a sheet filled by the view.
// Vertices of meshes, scanned ones above all, are that far off the planes and edges they stand for.
inline constexpr double kOneLine = 0.02;

struct DrawnSegment {
  std::uint8_t edgeClass = 0;  // place in kDrawnClasses
  std::uint8_t side = 0;       // edge of the triangle
  std::uint32_t triangle = 0;  // of the scene
  std::uint32_t shell = 0, other = 0;
  EdgeSegment segment;
};

class DrawnSegments {
 public:
  // Refers to them all; circles may be null, `sides` those of the circles that are looked for here otherwise, and `walls` those
  // that the view is along. What was found needs the scene's triangles and shells no longer.
  DrawnSegments(const Model& model, const Scene& scene, const Circles* circles, unsigned threads, const ChordSides* sides = nullptr,
                const RoundWalls* walls = nullptr);
  DrawnSegments(const DrawnSegments&) = delete;
  DrawnSegments& operator=(const DrawnSegments&) = delete;

  // In the order of shells and triangles.
  std::vector<DrawnSegment> Visible() const;
  // None along a visible line, and none twice; of several shells, none beside another one's line for the same curve.
  std::vector<DrawnSegment> Hidden(const SilhouetteHeights& heights) const;

  // Of the segments at these places the parts, which name them by their order; all of the others. They stay in order.
  void KeepParts(const std::vector<std::size_t>& places, const std::vector<PartOfStretch>& parts,
                 std::vector<DrawnSegment>& segments) const;

  // In perspective nothing is told to be a chord.
  DrawnStretch StretchOf(const DrawnSegment& drawn) const;

  // The side that a segment is part of, or the intersection line, if it is a chord, or in this view is seen as one.
  const ChordSides::Side* ChordOf(const DrawnSegment& drawn) const;
  // Whether it is one in space.
  bool IsOwnChord(const DrawnSegment& drawn) const;

  std::size_t ShellCount() const { return begins_.size() - 1; }
  // Intersection lines have two shells.
  bool IsOfOneShell(const DrawnSegment& drawn) const { return drawn.triangle < triangleCount_; }

  const Scene& GetScene() const { return scene_; }
  const Circles* KnownCircles() const { return circles_; }
  const ChordSides& Sides() const { return sides_; }
  const RoundWalls* Walls() const { return walls_; }
  const SeenCircles& Seen() const { return seen_; }

 private:
  // Calls use(range, shell, triangle, edge, segment) for all that is visible, in order within each range of triangles.
  template <class Use>
  void ForEachVisible(const Use& use) const {
    ForEachPart(begins_, threads_, [&](std::size_t range, std::size_t s, std::size_t begin, std::size_t end) {
      for (std::size_t t = begin; t < end; ++t)
        ForEachVisibleOf(s, t, [&](int edge, const ZBR_SEG& segment) { use(range, s, t, edge, segment); });
    });
  }
  template <class Use>
  void ForEachVisibleOf(std::size_t shell, std::size_t triangle, const Use& use) const {
    for (int i = 0; i < 3; ++i) {
      for (const ZBR_HL_INTERVAL& visible : scene_.shells[shell].tris[triangle].intvl_v[i])
        use(i, ZBR_SEG(visible.s.pt.xy(), visible.e.pt.xy()));
    }
  }

  // Without angles.
  DrawnSegment Of(std::size_t shell, std::size_t triangle, int edge, const ZBR_SEG& segment) const;
  void Locate(DrawnSegment& drawn) const;
  DrawnSegment Located(DrawnSegment drawn) const {
    Locate(drawn);
    return drawn;
  }
  // The rim that an intersection line is part of; null if it stands for itself.
  const ChordSides::Crossing* RimOf(const DrawnSegment& drawn) const;
  bool IsPartOfRim(const DrawnSegment& drawn, CurvedStretch& stretch) const;
  // The triangle of the model and its edge.
  EdgeRef SourceOf(std::size_t triangle, std::size_t edge) const;
  // Whether a stretch stands for a curve.
  bool IsCurved(const DrawnSegment& drawn, const SilhouetteHeights& heights, CurvedStretch& stretch) const;
  void LeaveOutDoubles(const SilhouetteHeights& heights, std::vector<DrawnSegment>& hidden) const;

  const Model& model_;
  const Scene& scene_;
  const Circles* circles_;
  const ChordSides own_;
  const ChordSides& sides_;
  const RoundWalls* walls_;
  SeenCircles seen_;
  const unsigned threads_;
  const std::size_t triangleCount_;       // without intersection lines
  std::vector<std::uint32_t> begins_{0};  // of the shells' triangles, counted through, and the end
};

}  // namespace zbr::drawing
