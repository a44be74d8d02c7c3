// Taking polygons apart. Nearly all of them have three or four corners, which needs no search.
#include <zbr-drawing/failure.h>
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/triangulate.h>

#include <cstddef>
#include <string>

namespace zbr::drawing {
namespace {

using Points = std::vector<ZBR_PT3>;
using Corners = std::vector<std::uint32_t>;
using Triangles = std::vector<std::array<std::uint32_t, 3>>;

bool IsLeft(const Points& points, const ZBR_PT3& normal, std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  return (points[b] - points[a]).OuterProduct(points[c] - points[a]).InnerProduct(normal) > 0;
}

// Whether the diagonal from the first corner to the third lies inside.
bool IsInside(const Points& points, const ZBR_PT3& normal, const Corners& q) {
  return IsLeft(points, normal, q[0], q[1], q[2]) && IsLeft(points, normal, q[0], q[2], q[3]);
}

void AddFan(const Corners& corners, std::size_t first, Triangles& triangles) {
  const std::size_t n = corners.size();
  for (std::size_t i = 1; i + 1 < n; ++i)
    triangles.push_back({corners[first], corners[(first + i) % n], corners[(first + i + 1) % n]});
}

}  // namespace

void AddPolygon(Mesh& mesh, const Corners& corners) {
  AddPolygon(mesh.points, corners, mesh.triangles);
}

void AddPolygon(const Points& points, const Corners& corners, Triangles& triangles) {
  for (const std::uint32_t corner : corners) {
    if (corner >= points.size()) throw Failure("a polygon has the corner " + std::to_string(corner) + ", which is no point");
  }
  if (corners.size() < 3) return;
  if (corners.size() == 3) return AddFan(corners, 0, triangles);
  Points own;
  for (const std::uint32_t corner : corners) own.push_back(points[corner]);
  const ZBR_PT3 normal = NormalOf(own);
  if (corners.size() == 4) {
    const Corners turned = {corners[1], corners[2], corners[3], corners[0]};
    return AddFan(corners, !IsInside(points, normal, corners) && IsInside(points, normal, turned) ? 1 : 0, triangles);
  }
  Corners loop;
  for (std::uint32_t i = 0; i < corners.size(); ++i) loop.push_back(i);
  const auto parts = Triangulate(Flattened(own, normal), {loop});
  if (parts.empty()) return AddFan(corners, 0, triangles);
  for (const auto& t : parts) triangles.push_back({corners[t[0]], corners[t[1]], corners[t[2]]});
}

}  // namespace zbr::drawing
