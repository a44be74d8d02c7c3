// Where a plane cuts a shell, as chains of points.
#pragma once

#include <zbr-drawing/section.h>
#include <zbr/spatial.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Heights of a shell's vertices over the plane, 0 for those in it: no farther away than rounding explains.
std::vector<double> HeightsOf(const Model& model, std::size_t shell, const SectionPlane& plane);

// For Booleans and equal points of cuts, in the model's unit: that of the library, but less in small models.
inline double SectionTolerance(const Model& model) {
  return std::min(1e-5, 1e-7 * model.Diagonal());
}

// What vertices in the plane count as: to be above it, and taken away, or below. Both choices together tell what only touches it.
enum class InPlane : std::uint8_t { kAbove, kBelow };

inline bool IsAbove(double height, InPlane inPlane) {
  return height > 0 || (height == 0 && inPlane == InPlane::kAbove);
}

// The point of an edge in the plane, the same to the bit whichever end comes first. One end at least is above, one not.
ZBR_PT3 CrossingOf(const ZBR_PT3& a, double heightA, const ZBR_PT3& b, double heightB);

// Cut k runs across triangle k from point k to point k + 1; around closed contours the last one back to the first point. Seen from
// above the plane the inside of bodies that face outwards is on the left, as far as triangles are turned alike.
struct Contour {
  std::vector<ZBR_PT3> points;
  std::vector<std::uint32_t> triangles;  // of the shell
  bool closed = false;
  double along = 0.0;  // cuts that run this way, less those of triangles turned round
};

std::vector<Contour> CutShell(const ZBR_ZBREPS& shell, const std::vector<double>& heights, InPlane inPlane);

}  // namespace zbr::drawing
