// What a pickle says, before anything is made of it: bytes may have been damaged, or written by someone else.
//
// Numbers that lists are gone through by lead to where there is something, and sizes that work depends on (of arcs, of hatched
// faces) are in proportion. Numbers that only change the picture are taken.
#include "python/src/drawings.h"

#include <zbr-drawing/failure.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace zbr::python {
namespace {

void Require(bool holds, const char* what) {
  if (!holds) throw BadArgument("pickle", std::string("its ") + what + " wrong");
}

// Products of two stay finite. Meshes are smaller, but perspective magnifies.
bool IsSmall(double value) {
  constexpr double kLargest = 1e100;
  return std::abs(value) <= kLargest;
}
bool IsSmall(const ZBR_PT& p) {
  return IsSmall(p.x()) && IsSmall(p.y());
}
bool IsSmall(const ZBR_PT3& p) {
  return IsSmall(p.xy()) && IsSmall(p.z());
}
bool IsPositive(double value) {
  return value >= 0.0 && value <= std::numeric_limits<double>::max();
}

constexpr double kRounding = 1e-6;  // of lengths, sines and angles that have a given value

bool IsUnit(const ZBR_PT3& v) {
  return std::abs(v.InnerProduct(v) - 1.0) < kRounding;
}

void CheckView(const drawing::View& v) {
  const bool areUnits = IsUnit(v.right) && IsUnit(v.up) && IsUnit(v.toViewer);
  Require(areUnits && v.toViewer.Distance(v.right.OuterProduct(v.up)) < kRounding, "axes are");
  if (!v.perspective) return;
  const drawing::Perspective& p = *v.perspective;
  Require(IsSmall(p.eye) && IsSmall(p.distance) && p.distance > 0.0 && p.fieldOfView >= 0.0 && p.fieldOfView < 180.0, "eye is");
}

// Points and runs of arcs along them.
void CheckChain(const drawing::Chain& chain) {
  constexpr double kMostTurns = 4.0;  // of an angle: arcs start anywhere in a turn or two
  const std::size_t size = chain.points.size();
  Require(size >= 2 && std::all_of(chain.points.begin(), chain.points.end(), [](const ZBR_PT& p) { return IsSmall(p); }),
          "lines are");
  std::size_t before = 0;
  for (const drawing::CircleRun& run : chain.curves) {
    Require(run.at >= before && run.last > run.at && run.last < size, "arcs are");
    Require(IsSmall(run.centre) && IsSmall(run.u) && IsSmall(run.v), "arcs are");
    Require(std::abs(run.t0) < kMostTurns * drawing::kFullTurn && std::abs(run.t1 - run.t0) < drawing::kFullTurn + kRounding,
            "arcs are");
    before = run.last;
  }
}

void CheckLine(const drawing::Line& line, const DrawingData& data) {
  Require(line.edgeClass <= drawing::EdgeClass::kCentre && line.shell < data.shells && line.other < data.shells, "lines are");
  CheckChain(line.chain);
  const std::size_t triangles = data.mesh->mesh.triangles.size();
  for (const drawing::EdgeRef& e : line.chain.edges) {
    Require(e.triangle < triangles && e.edge <= drawing::EdgeRef::kAcross, "edges are");
  }
}

void CheckPoints(const ZBR_REGION& region) {
  Require(std::all_of(region.points().begin(), region.points().end(), [](const ZBR_PT& p) { return IsSmall(p); }), "rings are");
}

// Faces lie in the view, which is what the distance of hatching depends on.
void CheckSection(const drawing::SectionOfView& section, const drawing::Extent& e) {
  constexpr double kMostFromOrigin = 1e6;  // sizes: the origin is within what is drawn
  const double size = e.Size();
  Require(IsUnit(section.plane.normal) && IsSmall(section.plane.offset) && section.plane.depth > 0.0, "planes are");
  Require(section.letter.size() == 1 && e.Magnitude() <= kMostFromOrigin * size, "sections are");
  for (const drawing::SectionFace& face : section.faces) {
    CheckPoints(face.region);
    double xmin = 0, ymin = 0, xmax = 0, ymax = 0;
    face.region.GetBounds(xmin, ymin, xmax, ymax);
    Require(
        face.region.empty() || (xmin >= e.xmin - size && ymin >= e.ymin - size && xmax <= e.xmax + size && ymax <= e.ymax + size),
        "sections are");
  }
}

void CheckCentres(const drawing::Centres& centres) {
  for (const drawing::CentreMark& mark : centres.marks) Require(IsSmall(mark.centre) && IsSmall(mark.radius), "centres are");
  for (const drawing::CentreAxis& axis : centres.axes)
    Require(IsSmall(axis.from) && IsSmall(axis.to) && IsSmall(axis.radius), "centres are");
}

}  // namespace

void CheckRestored(const MeshData& data) {
  try {
    drawing::CheckMesh(data.mesh);
  } catch (const drawing::Failure& failure) {
    throw BadArgument("pickle", failure.what());
  }
  const std::vector<drawing::MeshObject>& objects = data.mesh.objects;
  Require(data.sources.size() == std::max<std::size_t>(objects.size(), 1), "objects are");
  for (std::size_t k = 0; k < data.sources.size(); ++k) {
    const std::size_t first = objects.empty() ? 0 : objects[k].firstTriangle;
    Require(data.sources[k].firstTriangle == first && IsSmall(data.sources[k].shift), "objects are");
  }
  Require(IsSmall(data.mesh.rounding), "rounding is");
}

void CheckRestored(const DrawingData& data) {
  const drawing::ViewLines& view = data.view;
  const drawing::Extent& e = view.extent;
  Require(IsPositive(data.crease) && IsPositive(data.weld), "options are");
  Require(data.shells <= data.mesh->mesh.triangles.size(), "shells are");
  const bool hasNothing = e.empty() && view.lines.empty() && !view.section;  // of a mesh without area
  Require(hasNothing || (e.xmin <= e.xmax && e.ymin <= e.ymax && IsSmall(e.Magnitude())), "extent is");
  Require(IsSmall(view.middle), "extent is");
  Require(view.outlines.size() <= data.mesh->sources.size(), "outlines are");
  CheckView(view.view);
  for (const drawing::Line& line : view.lines) CheckLine(line, data);
  for (const drawing::LoopList& loops : view.outlines) CheckPoints(zbrRegionOfLoops(loops));
  if (view.section) CheckSection(*view.section, e);
  CheckCentres(view.centres);
  CheckCentres(view.seenCentres);
}

}  // namespace zbr::python
