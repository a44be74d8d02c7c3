// CollectLines for scenes of models whose records are gone.
#pragma once

#include <zbr-drawing/view_lines.h>

#include "drawing/curves/chord_sides.h"
#include "drawing/curves/round_walls.h"

namespace zbr::drawing {

// Whether it takes the records of the model to tell a view's lines: hidden ones of several shells hang on the facets beside them.
inline bool NeedsRecords(const Model& model, const View& view, bool hidden) {
  return hidden && model.ShellCount() > 1 && !view.perspective;
}

// `spent` is the scene, if it is not needed afterwards; `sides` those on the circles, `walls` those that the view is along.
ViewLines CollectFrom(const Model& model, const Scene& scene, Scene* spent, bool hidden, const Circles* circles,
                      const ChordSides& sides, const RoundWalls& walls, unsigned threads);

}  // namespace zbr::drawing
