// Taking away from a scene what lies beyond planes.
#pragma once

#include <zbr-drawing/scene.h>
#include <zbr-drawing/section.h>

#include <vector>

namespace zbr::drawing {

// A plane by which a scene is cut. Where a body ends in it, its edge is a border if that is to be drawn.
struct CuttingPlane {
  SectionPlane plane;
  bool drawn = false;
};

// The scene is as made from the model and the lines. What is left knows by Scene::parts where it is from; edges keep their classes.
// Where the cut closes the covers of the section are added, which draw nothing and hide what lies behind them.
void CutScene(const Model& model, const std::vector<IntersectionLine>& lines, const std::vector<CuttingPlane>& planes,
              const SectionCut& section, Scene& scene);

// The planes of a section: its own, and the back of a slab, whose outline is drawn.
std::vector<CuttingPlane> PlanesOf(const SectionPlane& plane);

}  // namespace zbr::drawing
