// Removing the hidden lines of a scene, for programs that want the intervals of single edges; whole views come from views.h.
//
//   Scene scene = MakeScene(model, *NamedView("iso"));
//   RemoveHidden(scene, 4);
//   // now scene.triangles[t].intvl_v[edge] holds the visible parts of an edge, in units of the scene
//
// The scene is changed; the model is not looked at.
#pragma once

#include <zbr-drawing/scene.h>

#include <functional>

namespace zbr::drawing {

// The same to the bit whatever the number of threads; at least one is taken. `progress`, if given, is told now and then which share
// is done, by one thread at a time; when it answers false the removal ends early, and this with false.
bool RemoveHidden(Scene& scene, unsigned threads, const std::function<bool(double share)>& progress = {});

}  // namespace zbr::drawing
