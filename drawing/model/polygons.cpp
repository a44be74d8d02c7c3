// Taking polygons apart. Nearly all of them have three or four corners, which needs no search.
#include <zbr-drawing/failure.h>
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/triangulate.h>

#include <cstddef>
#include <string>

namespace zbr::drawing {
namespace {

using Corners = std::vector<std::uint32_t>;

bool IsLeft(const Mesh& mesh, const ZBR_PT3& normal, std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  return (mesh.points[b] - mesh.points[a]).OuterProduct(mesh.points[c] - mesh.points[a]).InnerProduct(normal) > 0;
}

// Whether the diagonal from the first corner to the third lies inside.
bool IsInside(const Mesh& mesh, const ZBR_PT3& normal, const Corners& q) {
  return IsLeft(mesh, normal, q[0], q[1], q[2]) && IsLeft(mesh, normal, q[0], q[2], q[3]);
}

void AddFan(Mesh& mesh, const Corners& corners, std::size_t first) {
  const std::size_t n = corners.size();
  for (std::size_t i = 1; i + 1 < n; ++i)
    mesh.triangles.push_back({corners[first], corners[(first + i) % n], corners[(first + i + 1) % n]});
}

}  // namespace

void AddPolygon(Mesh& mesh, const Corners& corners) {
  for (const std::uint32_t corner : corners) {
    if (corner >= mesh.points.size()) throw Failure("a polygon has the corner " + std::to_string(corner) + ", which is no point");
  }
  if (corners.size() < 3) return;
  if (corners.size() == 3) return AddFan(mesh, corners, 0);
  std::vector<ZBR_PT3> points;
  for (const std::uint32_t corner : corners) points.push_back(mesh.points[corner]);
  const ZBR_PT3 normal = NormalOf(points);
  if (corners.size() == 4) {
    const Corners turned = {corners[1], corners[2], corners[3], corners[0]};
    return AddFan(mesh, corners, !IsInside(mesh, normal, corners) && IsInside(mesh, normal, turned) ? 1 : 0);
  }
  Corners loop;
  for (std::uint32_t i = 0; i < corners.size(); ++i) loop.push_back(i);
  const auto triangles = Triangulate(Flattened(points, normal), {loop});
  if (triangles.empty()) return AddFan(mesh, corners, 0);
  for (const auto& t : triangles) mesh.triangles.push_back({corners[t[0]], corners[t[1]], corners[t[2]]});
}

}  // namespace zbr::drawing
