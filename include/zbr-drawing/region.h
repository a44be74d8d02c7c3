// From the rings of a drawing to the regions that the library combines, and back.
//
//   const ZBR_TmpEps tolerance(kTolerance);
//   const Region a = MakeRegion(contoursA, frame), b = MakeRegion(contoursB, frame);
//   zbrBooleanLoops(a.loops, b.loops, &op, &result, 1, crosses);           // zbr/boolean.h
//   const Layer layer = MakeResult("union", std::move(result), frame);     // result.h
//
// All calls compare with the thread's tolerance, which is to be kTolerance (frame.h) while they run.
#pragma once

#include <zbr-drawing/contacts.h>
#include <zbr-drawing/drawing.h>
#include <zbr-drawing/frame.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zbr::drawing {

// A named result, or an operand, in the coordinates of the drawing.
struct Layer {
  std::string name;
  LoopList loops;
  double area = 0.0;
};

struct Region {
  LoopList loops;  // nested, in the frame's coordinates
  std::vector<Contact>
      contacts;  // some of the places where the rings cross each other or themselves: the region is not sound there
};

// One loop for each ring, in the frame's coordinates, points that repeat the one before them left out.
LoopList LoopsOf(const Contours& contours, const Frame& frame);

// Nests the rings: a point belongs to the region when an odd number of rings is around it. Where the file says which rings form a
// polygon, the region is the union of its polygons, which may overlap; then only contacts within a polygon are reported.
Region MakeRegion(const Contours& contours, const Frame& frame);

// Takes nested loops back to the drawing's coordinates, in place.
Layer MakeLayer(const std::string& name, LoopList loops, const Frame& frame);

// zbrMakeLoopTree, with nothing left when all loops are degenerate.
void Nest(LoopList& loops);

// Number of rings around each ring, in the order of the list. The loops themselves stay as they are.
std::vector<int> NestingDepths(const LoopList& rings);

// All rings of nested loops, each outer loop followed by its holes.
LoopList RingsOf(const LoopList& loops);

std::size_t CountHoles(const LoopList& loops);
std::size_t CountVertices(const LoopList& loops);

// Calls visit for every ring of nested loops, each outer loop followed by its holes.
template <class Visit>
void ForEachRing(const LoopList& loops, Visit visit) {
  for (const auto& outer : loops) {
    visit(*outer);
    for (const auto& hole : outer->children()) visit(*hole);
  }
}

}  // namespace zbr::drawing
