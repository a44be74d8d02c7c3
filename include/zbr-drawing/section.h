// Sections: a model cut by a plane, and the faces that the cut lays open.
//
//   SectionPlane plane;
//   plane.normal = {1, 0, 0};                // to the viewer
//   plane.offset = 10.0;                     // x = 10
//   const View view = SectionView(plane);
//   for (const SectionFace& face : FindSection(model, view, plane).faces) Hatch(face.region);
//
// DrawViews (views.h) draws section views: with the faces, their outlines, and what lies behind.
#pragma once

#include <zbr-drawing/model.h>
#include <zbr-drawing/view.h>
#include <zbr/region.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace zbr::drawing {

// Points with normal.InnerProduct(p) == offset. What lies to where the normal points is taken away; so is what lies more than
// `depth` behind the plane, which leaves a slab between two planes.
struct SectionPlane {
  ZBR_PT3 normal{0, 0, 1};  // of length 1, to the viewer
  double offset = 0.0;
  double depth = std::numeric_limits<double>::infinity();  // positive

  double HeightOf(const ZBR_PT3& p) const { return normal.InnerProduct(p) - offset; }
};

// "X=10", "Y=10", "Z=10": seen as the named views right, front and top are. "X=10..25": what lies between the two. "1,0,1=20":
// the plane at this distance from the origin in this direction, from where it is seen. Fails on anything else.
SectionPlane ParseSection(const std::string& text, bool yUp = false);

// Along the normal, with the model's upward axis drawn upwards; planes that lie flat are seen as the views from above and below
// are.
View SectionView(const SectionPlane& plane, bool yUp = false);

// The name of the i-th section of a sheet: "A-A", "B-B" and so on, without letters that look like numbers. Fails where none is
// left.
std::string SectionName(std::size_t i);

// What the plane lays open of one body. Points are in the view's x and y, with the middle of the model's box as the origin, in the
// unit of the model.
struct SectionFace {
  std::uint32_t object = 0;
  std::uint32_t shell = 0;  // the body's outer one
  ZBR_REGION region;        // material on both sides of the plane
};

// Where an outline of a face runs: the points of a polyline and the triangles that its edges cross, places in the mesh.
struct SectionLine {
  std::vector<ZBR_PT> points;  // of a closed one the last repeats the first
  std::vector<std::uint32_t> triangles;
  std::uint32_t shell = 0;
  bool closed = false;
  bool isCut = true;  // false: a face of the body lies in the plane here, and only its border is seen
};

// A section belongs to a plane, and to a view along its normal.
struct SectionCut {
  std::vector<SectionFace> faces;  // in the order of shells
  std::vector<SectionLine> lines;  // outlines of the faces, and cuts that bound none
  std::vector<ZBR_REGION> covers;  // parallel to the faces: with them what of bodies ends in the plane
  std::size_t openLines = 0;       // of them: where the mesh is open, the cut does not close
  std::size_t bridged = 0;         // cuts that were closed straight across an opening, small beside their length
};

// Cuts are exact as to what follows what: a vertex is above, below or in the plane for all its triangles, and cuts of triangles are
// joined by the edges that they share. Gaps below a ten-thousandth of the diagonal are closed. About n log n in what is cut.
SectionCut FindSection(const Model& model, const View& view, const SectionPlane& plane);

}  // namespace zbr::drawing
