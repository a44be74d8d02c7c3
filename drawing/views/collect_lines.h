// CollectLines for scenes of models whose records are gone.
#pragma once

#include <zbr-drawing/view_lines.h>

#include "drawing/curves/chord_sides.h"
#include "drawing/curves/round_walls.h"
#include "drawing/curves/silhouette_heights.h"

namespace zbr::drawing {

// What tells which lines of a view stand for curves.
struct CurveNotes {
  RoundWalls walls;           // that the view is along; none without circles
  SilhouetteHeights heights;  // where there are hidden lines of several shells to tell apart

  CurveNotes() = default;
  // `sides` are those on the circles, which may be null.
  CurveNotes(const Model& model, const Circles* circles, const ChordSides& sides, const Scene& scene, bool hidden,
             unsigned threads) {
    if (circles != nullptr) walls = FindRoundWalls(model, *circles, sides, scene.view);
    if (hidden && model.ShellCount() > 1 && !scene.view.perspective) heights = SilhouetteHeights(model, scene, threads);
  }
};

// `spent` is the scene, if it is not needed afterwards; `sides` those on the circles.
ViewLines CollectFrom(const Model& model, const Scene& scene, Scene* spent, bool hidden, const Circles* circles,
                      const ChordSides& sides, const CurveNotes& notes, unsigned threads);

}  // namespace zbr::drawing
