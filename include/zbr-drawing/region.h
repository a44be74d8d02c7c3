// From the rings of a drawing to regions that the library combines, and to what is written of them.
//
//   const Region a = MakeRegion(contoursA), b = MakeRegion(contoursB);
//   ZBR_REGION united;
//   const ZBR_BOOLEAN_OPE op = ZBR_BOOL_OR;
//   zbrCombineRegions(a.rings.view(), b.rings.view(), &op, &united, 1);     // zbr/region.h
//   const std::string text = WriteDrawing(Format::kWkt, {MakeLayer("union", united)}, 0);  // zbr-formats/drawings.h
//
// Where a drawing has curves, edges know those that they are chords of, and results give them back:
//
//   ZBR_REGION_OPTIONS options;
//   options.sources = true;
//   ZBR_REGION united;
//   zbrCombineRegions(a.rings.view(), b.rings.view(), &op, &united, 1, options);
//   for (const Path& path : OutlinesOf(Traced(united, {&a, &b}))) Mill(path);  // points, and curves between them
//
// Everything is in the coordinates of the drawing; the thread's tolerance does not matter.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr/loop.h>
#include <zbr/region.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace zbr::drawing {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;

// A named result, or an operand.
struct Layer {
  std::string name;
  LoopList loops;  // nested
  double area = 0.0;
  std::vector<Path> outlines = {};  // of the loops, as ForEachRing goes through them, with curves; empty where there are none
  std::size_t beside = 0;           // chords of curves that had to stay lines
  std::shared_ptr<const std::vector<Pen>> pens = nullptr;  // that outlines refer to
};

// Rings whose edges know what they stand for.
struct CurvedRegion {
  ZBR_REGION rings;
  std::vector<EdgeOrigin> origins;                         // by edge, through all rings; empty where nothing has curves, nor pens
  std::shared_ptr<const std::vector<Curve>> curves;        // that origins refer to
  std::shared_ptr<const std::vector<Pen>> pens = nullptr;  // the same

  bool HasCurves() const { return !origins.empty(); }  // or pens
  // By the orientation of the rings; what lies between chords and their curves counts.
  double Area() const;
};

// The result of a call with sources: what its edges stand for, told by those of the operands. The operands belong together: their
// contours were made at once.
CurvedRegion Traced(ZBR_REGION result, const std::vector<const CurvedRegion*>& operands);

// A closed path for each ring, in their order: chords of one curve become that curve again, and so do the parts of a line that was
// cut. What bounds all of a circle is a path of one point. A chord with an end beside its curve stays a line; `beside`, if given,
// is set to how many such there are.
std::vector<Path> OutlinesOf(const CurvedRegion& region, std::size_t* beside = nullptr);

// The rings (CurvedRegion) are as they were drawn, or what the polygons of a file cover together.
struct Region : CurvedRegion {
  ZBR_FILL_RULE fill = ZBR_FILL_EVEN_ODD;
  bool isValid = false;                  // rings are simple and nested already
  std::vector<ZBR_REGION_FAULT> faults;  // some of the places where the contours cross, overlap or fold; rings are the contours'
};

// The contours as flat rings, one after the other.
ZBR_REGION RingsOf(const Contours& contours);

// What the rings bound by the rule, whatever they do to each other. Where the file says which rings form a polygon, the region is
// the union of its polygons, which may overlap; then only faults within a polygon are told. Fails for coordinates above 1e150.
Region MakeRegion(const Contours& contours, ZBR_FILL_RULE rule = ZBR_FILL_EVEN_ODD);

// The region as valid polygons, every ring from its lowest point on (the leftmost of these), polygons and holes in the order of
// them.
ZBR_REGION ValidShape(const Region& region);

// The same with what its edges stand for.
CurvedRegion CurvedShape(const Region& region);

// A valid region without points that are within the tolerance of the straight edges that replace them. Ends of curves stay, and so
// do curves; rings that would meet others, lose their area or come to lie elsewhere in the nesting stay as they are.
CurvedRegion Simplified(const CurvedRegion& region, double tolerance);

// The nested loops of a valid region.
Layer MakeLayer(const std::string& name, const ZBR_REGION& shape);
Layer MakeLayer(const std::string& name, const CurvedRegion& shape);

// "crossing", "repeated_point": a word for each kind of fault, as reports have it.
const char* NameOf(ZBR_REGION_FAULT_KIND kind);

// How many holes and vertices nested loops have.
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
