// Taking away from a scene what a section does not show.
#pragma once

#include <zbr-drawing/scene.h>
#include <zbr-drawing/section.h>

namespace zbr::drawing {

// The scene is that of the section's view, as made from the model. What is left knows by Scene::parts where it is from; edges keep
// their classes. Where the cut closes the covers of the section are added, which draw nothing and hide what lies behind them; the
// outlines of a slab's back are borders.
void CutScene(const Model& model, const SectionPlane& plane, const SectionCut& section, Scene& scene);

}  // namespace zbr::drawing
