// The lines in which the bodies of a model pass through each other, and a body through itself. No edge of the mesh runs there.
//
//   for (const IntersectionLine& line : FindIntersections(model)) Use(line.ends[0].place, line.ends[1].place);
//
// DrawViews (views.h) finds and draws them if asked to. They belong to the model: all its views share them. Two triangles have at
// most one straight line in common; the lines of neighbouring triangles follow each other and know it by the names of their ends.
// Closed bodies give closed curves, as long as none of their edges lies in a face of the other.
//
// Bodies that stand face to face have no lines within the contact, and where an edge of the mesh that is drawn anyway runs along a
// line there is none. A curve that mostly runs where the surfaces meet at less than the angle by which the meshes turn from facet
// to facet is left out: a peg and its hole that were divided into facets differently are in contact, too. DrawViews
// draws the parts of such a curve that are steeper than 45 degrees, where the peg passes through the plate around the hole; and
// however coarse their facets are, no lines between those of coaxial cylinders.
#pragma once

#include <zbr-drawing/model.h>

#include <array>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Where an edge of one triangle passes through the other, or the corner that both share.
struct IntersectionEnd {
  static constexpr std::uint32_t kAtCorner = 0xffffffffU;

  std::uint32_t triangle = kAtCorner;  // the one passed through
  std::uint32_t edge = 0;              // the one that passes, numbered through all shells; or the point
  ZBR_PT3 place;                       // ends of one name have one place, to the bit

  std::uint64_t Name() const { return std::uint64_t{triangle} << 32U | edge; }
};

struct IntersectionLine {
  std::array<IntersectionEnd, 2> ends;
  std::array<std::uint32_t, 2> triangles{};  // numbers in the model
};

// Bodies at most `contact` apart, or as deep in each other, are in contact; it is at least what rounding explains. About n log n.
// The same to the bit for the same model, with any number of threads.
std::vector<IntersectionLine> FindIntersections(const Model& model, double contact = 0.0, unsigned threads = 1);

}  // namespace zbr::drawing
