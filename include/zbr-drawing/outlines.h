// The outlines of a scene's objects: what each covers in the drawing, and what nearer ones leave of it.
//
//   const std::vector<LoopList> outlines = FindOutlines(model, *NamedView("top"), false, 1);  // loops with holes, for each object
//
// Triangles seen edge-on cover nothing; which way triangles face does not matter. Outlines are nested loops (zbr/loop.h), ready for
// the combinations of zbr/boolean.h. An object of which nothing is seen has an empty list.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-drawing/scene.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Finds the outline of every object and, if `narrow`, takes from each what nearer objects cover. The scene gives up its lines: they
// are to be collected before. The same with any number of threads.
//
// Objects are compared in pairs, in their order. The nearer of two is the one that is nearer at more of the places where their
// outlines cross, or of those along the overlap where they do not; so of two that hide each other in part one counts as nearer
// as a whole.
void FindOutlines(const Model& model, Scene& scene, bool narrow, unsigned threads);

// The outlines found by the call above, one list for each object, in the unit of the model, with the middle of the model's box as
// the origin.
std::vector<LoopList> OutlinesAroundMiddle(const Model& model, const Scene& scene);

// The same with the model's origin as the origin. Vertices of the model have their own coordinates to the last digit, in views
// along an axis those of the file.
std::vector<LoopList> OutlinesInPlace(const Model& model, const Scene& scene);

// The same of a view whose scene nobody else needs.
std::vector<LoopList> FindOutlines(const Model& model, const View& view, bool narrow, unsigned threads);

// Part of an edge of the mesh, from parameter t0 to t1, where 0 is the corner that the edge starts at. t0 > t1: against it.
struct OutlinePiece {
  std::uint32_t shell = 0;
  EdgeRef edge;
  double t0 = 0.0, t1 = 1.0;
};

// An outline and what it runs along. Its edges are counted through all loops, each outer loop before its holes, an edge by the
// point that it starts at.
struct TracedOutline {
  LoopList loops;
  // Edge i runs along pieces[offsets[i]] up to pieces[offsets[i + 1]]: one after the other or, where edges lie over each other,
  // side by side. A parameter is exactly 0 or 1 where an edge of the mesh begins or ends.
  std::vector<OutlinePiece> pieces;
  std::vector<std::size_t> offsets{0};
};

// The whole outline of every object, with the model's origin as the origin, as OutlinesInPlace gives it.
std::vector<TracedOutline> TraceOutlines(const Model& model, const View& view, unsigned threads);

}  // namespace zbr::drawing
