// CollectLines for scenes of models whose records are gone.
#pragma once

#include <zbr-drawing/view_lines.h>

#include "drawing/curves/chord_sides.h"
#include "drawing/curves/silhouette_heights.h"

namespace zbr::drawing {

// What hidden lines are told by, where these are wanted.
inline SilhouetteHeights HeightsFor(const Model& model, const Scene& scene, bool hidden, unsigned threads) {
  const bool areNeeded = hidden && model.ShellCount() > 1 && !scene.view.perspective;
  return areNeeded ? SilhouetteHeights(model, scene, threads) : SilhouetteHeights();
}

// `spent` is the scene, if it is not needed afterwards; `sides` those on the circles, `heights` those of the scene.
ViewLines CollectFrom(const Model& model, const Scene& scene, Scene* spent, bool hidden, const Circles* circles,
                      const ChordSides& sides, const SilhouetteHeights& heights, unsigned threads);

}  // namespace zbr::drawing
