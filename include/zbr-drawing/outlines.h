// The outlines of a scene's objects: what each covers in the drawing, and what nearer ones leave of it.
//
//   Scene scene = MakeScene(model, *NamedView("top"));
//   FindOutlines(model, scene, false, 1);                                // each object as a whole
//   const std::vector<LoopList> outlines = OutlinesInPlace(model, scene);  // loops with holes, one list for each object
//
// Triangles seen edge-on cover nothing; which way triangles face does not matter. Outlines are nested loops (zbr/loop.h), ready for
// the combinations of zbr/boolean.h. An object of which nothing is seen has an empty list.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-drawing/scene.h>

#include <cstddef>
#include <vector>

namespace zbr::drawing {

// Finds the outline of every object and, if `narrow`, takes from each what nearer objects cover. The scene gives up its lines: they
// are to be collected before. The same with any number of threads.
//
// Objects are compared in pairs, in their order. The nearer of two is the one that is nearer at more of the places where their
// outlines cross, or of those along the overlap where they do not; so of two that hide each other in part one counts as nearer
// as a whole.
void FindOutlines(const Model& model, Scene& scene, bool narrow, unsigned threads);

// The outlines found, one list for each object, in the unit of the model, with the middle of the model's box as the origin.
std::vector<LoopList> OutlinesAroundMiddle(const Model& model, const Scene& scene);

// The same with the model's origin as the origin. Vertices of the model have their own coordinates to the last digit, in views
// along an axis those of the file.
std::vector<LoopList> OutlinesInPlace(const Model& model, const Scene& scene);

}  // namespace zbr::drawing
