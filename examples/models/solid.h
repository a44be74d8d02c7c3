// Solids from planar regions: extruded, stacked, drilled.
//
// A region is a list of loops as the library's Booleans take and leave it: outer loops counter-clockwise, their holes as children.
// It is drawn as seen from the end of an axis: u to the right, v up, w towards the viewer.
#pragma once

#include <zbr-drawing/mesh.h>
#include <zbr/loop.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace example {

using Region = std::vector<std::shared_ptr<ZBR_LOOP>>;

Region Polygon(const std::vector<ZBR_PT>& corners);
Region Rectangle(double u0, double v0, double u1, double v1);
Region Circle(double u, double v, double radius, int sides);
// A rectangle with rounded corners, `steps` edges to each.
Region RoundedRectangle(double u0, double v0, double u1, double v1, double radius, int steps);
Region Union(const Region& a, const Region& b);
Region Minus(const Region& a, const Region& b);

enum class Axis {
  kX,  // seen from the right: u, v, w are y, z, x
  kY,  // seen from the front: u, v, w are x, z, -y
  kZ,  // seen from above: u, v, w are x, y, z
};

// A plane over the drawing: w = at + slopeU u + slopeV v.
struct Height {
  double at = 0.0, slopeU = 0.0, slopeV = 0.0;
  Height(double constant) : at(constant) {}  // NOLINT(google-explicit-constructor): a level plane is a number
  Height(double constant, double u, double v) : at(constant), slopeU(u), slopeV(v) {}
  double Over(const ZBR_PT& p) const { return at + slopeU * p.x() + slopeV * p.y(); }
};

// One body of planar faces in the making. Coordinates are rounded to a millionth, so that they survive being written.
class Solid {
 public:
  // Adds a prism, which must not touch what was added before.
  void Extrude(Axis axis, const Region& region, const Height& from, const Height& to);

  // Adds prisms one on the other as one body: regions[k] reaches from levels[k] to levels[k + 1].
  void Stack(Axis axis, const std::vector<double>& levels, const std::vector<Region>& regions);

  // Drills a hole, whose mouths must lie inside single faces. An end that lies on no face is closed by a floor.
  void Drill(Axis axis, const Region& hole, double from, double to);

  // The triangles, connected: where a face's corner lies on another's edge, that edge gets a point.
  zbr::drawing::Mesh Take();

 private:
  using Loop = std::vector<ZBR_PT3>;
  using Face = std::vector<Loop>;  // seen from outside: the outer loop counter-clockwise, its holes clockwise

  void AddFaces(Axis axis, const Region& region, const Height& height, bool up);
  void AddWalls(Axis axis, const Region& region, const Height& from, const Height& to, bool inwards = false);
  bool OpenFace(Axis axis, const Region& hole, double level);
  std::uint32_t Place(const ZBR_PT3& p);
  std::vector<std::uint32_t> Divided(const Loop& loop) const;

  std::vector<Face> faces_;
  std::map<std::array<double, 3>, std::uint32_t> places_;
  std::vector<ZBR_PT3> points_;
};

}  // namespace example
