// The lines that a view of a model shows, as polylines that know the edges they are made of.
//
//   for (const Line& line : view.lines) {
//     if (line.edgeClass == EdgeClass::kSilhouette && !line.hidden) Plot(line.chain.points);
//     const EdgeRef first = line.chain.edges.front();  // place of a triangle in the mesh, and which of its edges
//   }
//
// Points are in the unit of the model, x to the right and y up, with the middle of the model's box as the origin; in perspective
// with the point in the middle of the picture as the origin, and lengths as they are at the distance of what is looked at.
#pragma once

#include <zbr-drawing/centres.h>
#include <zbr-drawing/circles.h>
#include <zbr-drawing/drawing.h>
#include <zbr-drawing/region.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/section.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zbr::drawing {

// A run of a chain along a circle of the model: what the points from `at` to `last` stand for is centre + u cos t + v sin t with t
// from t0 to t1. u and v are the half axes, u the longer one and v counter-clockwise from it; runs on one circle have them, and the
// centre, equal to the bit. A whole circle has t1 = t0 + or - 2 pi.
struct CircleRun : Curve {
  std::size_t last = 0;
  std::uint32_t circle = 0;  // place in the model's circles (circles.h)
};

struct Chain {
  std::vector<ZBR_PT> points;     // of a closed one the last repeats the first
  std::vector<EdgeRef> edges;     // in the order of the chain; next to each other none twice
  std::vector<CircleRun> curves;  // in the order of the chain, without overlap; the rest of it is straight between points
  bool closed = false;
};

struct Line {
  EdgeClass edgeClass = EdgeClass::kBorder;
  bool hidden = false;
  std::uint32_t shell = 0;
  std::uint32_t other = 0;  // the shell met in an intersection line, in whose first shell the chain's triangles are; else `shell`
  Chain chain;
};

// What makes a view a section.
struct SectionOfView {
  std::string letter;  // "A" of A-A
  SectionPlane plane;
  std::vector<SectionFace> faces;  // their outlines are among the view's lines, as EdgeClass::kCut
  std::size_t openLines = 0;       // of them: where the mesh is open, the cut does not close
  std::size_t bridged = 0;         // cuts that were closed across an opening of the mesh
  bool isMarked = false;           // on a sheet: another of its views shows where the plane is
};

// In the unit of the model. The origin is the middle of the model's box: so the views of a sheet line up, and coordinates stay
// precise wherever the model is.
struct ViewLines {
  std::string name;
  View view;
  ZBR_PT3 middle;                  // the origin, in the view's axes
  Extent extent;                   // of the model
  std::vector<Line> lines;         // visible ones first, then by class, then by shell
  std::vector<LoopList> outlines;  // of the objects, as far as nearer ones leave them visible, where asked for
  std::optional<SectionOfView> section;
  Centres centres;           // where centre lines are asked for
  Centres seenCentres;       // of visible circles: for sheets that don't show hidden lines
  std::size_t drawable = 0;  // edges
  std::uint64_t pairs = 0;   // of edges and triangles that the removal looked at closely

  double VisibleLength() const;
};

// "silhouette"
const char* NameOf(EdgeClass edgeClass);

// The classes that are drawn.
inline constexpr EdgeClass kDrawnClasses[] = {
    EdgeClass::kSilhouette, EdgeClass::kBorder, EdgeClass::kCrease,   EdgeClass::kJunction,     EdgeClass::kIntersection,
    EdgeClass::kTangent,    EdgeClass::kCut,    EdgeClass::kHatching, EdgeClass::kCuttingPlane, EdgeClass::kCentre};

// Adds lines behind the visible ones.
void AddVisible(ViewLines& view, std::vector<Line> lines);

// The box of all triangles, in the unit of the model.
Extent ExtentOf(const Scene& scene);

// Chains the lines of a processed scene, for each class and shell by itself, and adds the box. The hidden ones are those that a
// person would draw: none below a visible line, and no tangent edges. With circles of the model, chains tell where they run along
// them. The lines do not depend on the number of threads.
ViewLines CollectLines(const Model& model, const Scene& scene, bool hidden, const Circles* circles = nullptr, unsigned threads = 1);
// The same for a scene that is not needed afterwards: its triangles are given back before the lines take room.
ViewLines CollectLines(const Model& model, Scene&& scene, bool hidden, const Circles* circles = nullptr, unsigned threads = 1);

}  // namespace zbr::drawing
