// Faces of solids, and their joint triangulation.
#include "models/solid.h"

#include <zbr-drawing/triangulate.h>
#include <zbr/boolean.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "bench/portable_numbers.h"

namespace example {
namespace {

double Rounded(double x) {
  return std::round(x * 1e6) / 1e6 + 0.0;  // adding zero turns -0 into 0
}

ZBR_PT3 InSpace(Axis axis, const ZBR_PT& p, double w) {
  const double u = Rounded(p.x()), v = Rounded(p.y()), r = Rounded(w);
  switch (axis) {
    case Axis::kX:
      return ZBR_PT3(r, u, v);
    case Axis::kY:
      return ZBR_PT3(u, -r + 0.0, v);
    case Axis::kZ:
      break;
  }
  return ZBR_PT3(u, v, r);
}

// The way back: u, v and w of a point.
ZBR_PT3 InDrawing(Axis axis, const ZBR_PT3& p) {
  switch (axis) {
    case Axis::kX:
      return ZBR_PT3(p.y(), p.z(), p.x());
    case Axis::kY:
      return ZBR_PT3(p.x(), p.z(), -p.y());
    case Axis::kZ:
      break;
  }
  return p;
}

// All loops of a region, outer ones and holes, the material on the left.
std::vector<const ZBR_LOOP*> Loops(const Region& region) {
  std::vector<const ZBR_LOOP*> loops;
  for (const auto& outer : region) {
    loops.push_back(outer.get());
    for (const auto& hole : outer->children()) loops.push_back(hole.get());
  }
  return loops;
}

Region Combined(const Region& a, const Region& b, ZBR_BOOLEAN_OPE operation) {
  Region result;
  std::vector<ZBR_CROSS> crossings;
  zbrBooleanLoops(a, b, &operation, &result, 1, crossings);
  return result;
}

void AddArc(std::vector<ZBR_PT>& corners, double u, double v, double radius, double fromTurns, int steps) {
  for (int i = 0; i <= steps; ++i) {
    const auto [sin, cos] = bench::SinCosOfTurns(fromTurns + 0.25 * i / steps);
    corners.emplace_back(u + radius * cos, v + radius * sin);
  }
}

// Where two planes meet, a wall between them has no height.
void DropRepeats(std::vector<ZBR_PT3>& loop) {
  const auto same = [](const ZBR_PT3& a, const ZBR_PT3& b) { return a.x() == b.x() && a.y() == b.y() && a.z() == b.z(); };
  loop.erase(std::unique(loop.begin(), loop.end(), same), loop.end());
  while (loop.size() > 1 && same(loop.front(), loop.back())) loop.pop_back();
}

// By the parity of crossings with a ray.
bool IsInside(Axis axis, const std::vector<ZBR_PT3>& loop, const ZBR_PT& p) {
  bool inside = false;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const ZBR_PT3 a = InDrawing(axis, loop[i]), b = InDrawing(axis, loop[(i + 1) % loop.size()]);
    if ((a.y() > p.y()) == (b.y() > p.y())) continue;
    if (a.x() + (p.y() - a.y()) / (b.y() - a.y()) * (b.x() - a.x()) > p.x()) inside = !inside;
  }
  return inside;
}

}  // namespace

Region Polygon(const std::vector<ZBR_PT>& corners) {
  Region region = {std::make_shared<ZBR_LOOP>()};
  region.front()->pt() = corners;
  zbrMakeLoopTree(region);
  return region;
}

Region Rectangle(double u0, double v0, double u1, double v1) {
  return Polygon({{u0, v0}, {u1, v0}, {u1, v1}, {u0, v1}});
}

Region Circle(double u, double v, double radius, int sides) {
  std::vector<ZBR_PT> corners;
  for (int i = 0; i < sides; ++i) {
    const auto [sin, cos] = bench::SinCosOfTurns(static_cast<double>(i) / sides);
    corners.emplace_back(u + radius * cos, v + radius * sin);
  }
  return Polygon(corners);
}

Region RoundedRectangle(double u0, double v0, double u1, double v1, double radius, int steps) {
  std::vector<ZBR_PT> corners;
  AddArc(corners, u1 - radius, v1 - radius, radius, 0.0, steps);
  AddArc(corners, u0 + radius, v1 - radius, radius, 0.25, steps);
  AddArc(corners, u0 + radius, v0 + radius, radius, 0.5, steps);
  AddArc(corners, u1 - radius, v0 + radius, radius, 0.75, steps);
  return Polygon(corners);
}

Region Union(const Region& a, const Region& b) {
  return Combined(a, b, ZBR_BOOL_OR);
}
Region Minus(const Region& a, const Region& b) {
  return Combined(a, b, ZBR_BOOL_A_MINUS_B);
}

void Solid::Extrude(Axis axis, const Region& region, const Height& from, const Height& to) {
  AddFaces(axis, region, from, false);
  AddWalls(axis, region, from, to);
  AddFaces(axis, region, to, true);
}

void Solid::Stack(Axis axis, const std::vector<double>& levels, const std::vector<Region>& regions) {
  Region below;
  for (std::size_t k = 0; k < regions.size(); ++k) {
    AddFaces(axis, Minus(below, regions[k]), levels[k], true);
    AddFaces(axis, Minus(regions[k], below), levels[k], false);
    AddWalls(axis, regions[k], levels[k], levels[k + 1]);
    below = regions[k];
  }
  AddFaces(axis, below, levels[regions.size()], true);
}

void Solid::Drill(Axis axis, const Region& hole, double from, double to) {
  if (!OpenFace(axis, hole, from)) AddFaces(axis, hole, from, true);
  if (!OpenFace(axis, hole, to)) AddFaces(axis, hole, to, false);
  AddWalls(axis, hole, from, to, true);
}

void Solid::AddFaces(Axis axis, const Region& region, const Height& height, bool up) {
  for (const auto& outer : region) {
    Face face;
    for (const ZBR_LOOP* loop : Loops({outer})) {
      face.emplace_back();
      for (const ZBR_PT& p : loop->pt()) face.back().push_back(InSpace(axis, p, height.Over(p)));
      if (!up) std::reverse(face.back().begin(), face.back().end());
    }
    faces_.push_back(std::move(face));
  }
}

void Solid::AddWalls(Axis axis, const Region& region, const Height& from, const Height& to, bool inwards) {
  for (const ZBR_LOOP* loop : Loops(region)) {
    const std::size_t n = loop->pt().size();
    for (std::size_t i = 0; i < n; ++i) {
      const ZBR_PT &a = loop->pt()[i], &b = loop->pt()[(i + 1) % n];
      Loop wall = {InSpace(axis, a, from.Over(a)), InSpace(axis, b, from.Over(b)), InSpace(axis, b, to.Over(b)),
                   InSpace(axis, a, to.Over(a))};
      if (inwards) std::reverse(wall.begin(), wall.end());
      DropRepeats(wall);
      if (wall.size() >= 3) faces_.push_back({std::move(wall)});
    }
  }
}

// Cuts the mouth of a hole out of the face around it, if there is one at this level.
bool Solid::OpenFace(Axis axis, const Region& hole, double level) {
  const ZBR_PT mouth = hole.front()->pt().front();
  for (Face& face : faces_) {
    const auto isAtLevel = [&](const ZBR_PT3& p) { return InDrawing(axis, p).z() == Rounded(level); };
    if (!std::all_of(face.front().begin(), face.front().end(), isAtLevel) || !IsInside(axis, face.front(), mouth)) continue;
    Loop loop;
    for (const ZBR_PT& p : hole.front()->pt()) loop.push_back(InSpace(axis, p, level));
    if (InDrawing(axis, zbr::drawing::NormalOf(face.front())).z() > 0) std::reverse(loop.begin(), loop.end());
    face.push_back(std::move(loop));
    return true;
  }
  return false;
}

std::uint32_t Solid::Place(const ZBR_PT3& p) {
  const auto [at, isNew] = places_.try_emplace({p.x(), p.y(), p.z()}, static_cast<std::uint32_t>(points_.size()));
  if (isNew) points_.push_back(p);
  return at->second;
}

// The loop's corners with the points that lie on its edges between them. The points' order by x, y, z limits the search.
std::vector<std::uint32_t> Solid::Divided(const Loop& loop) const {
  constexpr double kOnEdge = 2e-6;  // twice the rounding
  std::vector<std::uint32_t> divided;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const ZBR_PT3 &a = loop[i], &b = loop[(i + 1) % loop.size()];
    divided.push_back(places_.at({a.x(), a.y(), a.z()}));
    std::vector<std::pair<double, std::uint32_t>> between;
    const double length = a.Distance(b);
    const auto first = places_.lower_bound({std::min(a.x(), b.x()) - kOnEdge, -1e9, -1e9});
    for (auto at = first; at != places_.end() && at->first[0] <= std::max(a.x(), b.x()) + kOnEdge; ++at) {
      const ZBR_PT3 p = points_[at->second] - a;
      const double along = p.InnerProduct(b - a) / length;
      if (along < kOnEdge || along > length - kOnEdge) continue;
      if (p.Distance((b - a) * (along / length)) <= kOnEdge) between.emplace_back(along, at->second);
    }
    std::sort(between.begin(), between.end());
    for (const auto& [along, place] : between) divided.push_back(place);
  }
  return divided;
}

zbr::drawing::Mesh Solid::Take() {
  for (const Face& face : faces_) {
    for (const Loop& loop : face) {
      for (const ZBR_PT3& p : loop) Place(p);
    }
  }
  zbr::drawing::Mesh mesh;
  for (const Face& face : faces_) {
    std::vector<std::uint32_t> numbers;  // of the face's points
    std::vector<std::vector<std::uint32_t>> loops;
    std::vector<ZBR_PT3> corners;
    for (const Loop& loop : face) {
      loops.emplace_back();
      for (const std::uint32_t place : Divided(loop)) {
        loops.back().push_back(static_cast<std::uint32_t>(numbers.size()));
        numbers.push_back(place);
        corners.push_back(points_[place]);
      }
    }
    for (const auto& t : zbr::drawing::Triangulate(zbr::drawing::Flattened(corners, zbr::drawing::NormalOf(face.front())), loops))
      mesh.triangles.push_back({numbers[t[0]], numbers[t[1]], numbers[t[2]]});
  }
  mesh.points = std::move(points_);
  return mesh;
}

}  // namespace example
