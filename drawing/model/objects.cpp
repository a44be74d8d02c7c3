// Meshes put together.
#include <zbr-drawing/objects.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

namespace zbr::drawing {
namespace {

void Move(Mesh& mesh, const ObjectSource& source) {
  const ZBR_PT3& d = source.shift;
  if (d.x() == 0 && d.y() == 0 && d.z() == 0) return;
  for (ZBR_PT3& p : mesh.points) {
    p += d;
    if (!IsMeshCoordinate(p)) throw Failure(source.name, "the place given carries it too far away");
  }
}

void Append(Mesh mesh, Mesh& all) {
  if (mesh.points.size() > kMostMeshPoints - all.points.size() || mesh.triangles.size() > kMostMeshPoints - all.triangles.size())
    throw Failure("the objects have too many triangles together");
  const auto shift = static_cast<std::uint32_t>(all.points.size());
  const MeshObject start = {shift, static_cast<std::uint32_t>(all.triangles.size())};
  all.objects.push_back(start);
  for (const MeshObject& body : BodyStarts(mesh)) {
    if (body.firstPoint == 0 && body.firstTriangle == 0) continue;  // where the object starts
    all.bodies.push_back({start.firstPoint + body.firstPoint, start.firstTriangle + body.firstTriangle});
  }
  if (shift == 0) {
    std::vector<MeshObject> objects = std::move(all.objects), bodies = std::move(all.bodies);
    all = std::move(mesh);
    all.objects = std::move(objects);
    all.bodies = std::move(bodies);
    return;
  }
  all.points.insert(all.points.end(), mesh.points.begin(), mesh.points.end());
  for (std::array<std::uint32_t, 3> triangle : mesh.triangles) {
    for (std::uint32_t& corner : triangle) corner += shift;
    all.triangles.push_back(triangle);
  }
  all.shells.insert(all.shells.end(), mesh.shells.begin(), mesh.shells.end());
}

bool SaysOfShells(const Mesh& mesh) {
  if (mesh.shells.empty()) return false;
  if (mesh.shells.size() == mesh.triangles.size()) return true;
  throw Failure("there are " + std::to_string(mesh.triangles.size()) + " triangles, but numbers of shells for " +
                std::to_string(mesh.shells.size()));
}

bool IsBefore(const MeshObject& a, const MeshObject& b) {
  return std::pair(a.firstTriangle, a.firstPoint) < std::pair(b.firstTriangle, b.firstPoint);
}

// Those without triangles, too: points are welded by body.
void CheckOrder(const Mesh& mesh, const std::vector<MeshObject>& starts, const char* what) {
  MeshObject before;
  for (const MeshObject& o : starts) {
    if (o.firstPoint < before.firstPoint || o.firstTriangle < before.firstTriangle || o.firstPoint > mesh.points.size() ||
        o.firstTriangle > mesh.triangles.size())
      throw Failure(what + (" " + std::to_string(&o - starts.data())) + " is out of order");
    before = o;
  }
}

void CheckObjects(const Mesh& mesh) {
  if (!mesh.objects.empty() && (mesh.objects.front().firstPoint != 0 || mesh.objects.front().firstTriangle != 0))
    throw Failure("the first object does not start with the mesh");
  CheckOrder(mesh, mesh.objects, "object");
  CheckOrder(mesh, mesh.bodies, "body");
  CheckOrder(mesh, BodyStarts(mesh), "the start of an object or a body,");
}

}  // namespace

bool IsMeshCoordinate(const ZBR_PT3& p) {
  constexpr double kLargest = 1e75;
  return std::abs(p.x()) <= kLargest && std::abs(p.y()) <= kLargest && std::abs(p.z()) <= kLargest;
}

std::vector<MeshObject> BodyStarts(const Mesh& mesh) {
  std::vector<MeshObject> starts = {{0, 0}};
  std::merge(mesh.objects.begin(), mesh.objects.end(), mesh.bodies.begin(), mesh.bodies.end(), std::back_inserter(starts),
             IsBefore);
  const auto isSame = [](const MeshObject& a, const MeshObject& b) { return !IsBefore(a, b) && !IsBefore(b, a); };
  starts.erase(std::unique(starts.begin(), starts.end(), isSame), starts.end());
  return starts;
}

void CheckMesh(const Mesh& mesh) {
  if (mesh.points.size() > kMostMeshPoints || mesh.triangles.size() > kMostMeshPoints) throw Failure("the mesh is too large");
  for (std::size_t i = 0; i < mesh.points.size(); ++i) {
    if (!IsMeshCoordinate(mesh.points[i]))
      throw Failure("a coordinate of point " + std::to_string(i) + " is too large or no number");
  }
  SaysOfShells(mesh);
  CheckObjects(mesh);
  const std::vector<MeshObject> starts = BodyStarts(mesh);
  std::size_t body = 0, firstPoint = 0, lastPoint = mesh.points.size();
  for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
    for (; body < starts.size() && starts[body].firstTriangle <= t; ++body) {
      firstPoint = starts[body].firstPoint;
      lastPoint = body + 1 < starts.size() ? starts[body + 1].firstPoint : mesh.points.size();
    }
    for (const std::uint32_t corner : mesh.triangles[t]) {
      if (corner < firstPoint || corner >= lastPoint || corner >= mesh.points.size())
        throw Failure("triangle " + std::to_string(t) + " has the corner " + std::to_string(corner) +
                      ", which is no point of its " + (mesh.bodies.empty() ? "object" : "body"));
    }
  }
}

void AddObject(Objects& objects, Mesh mesh, ObjectSource source) {
  if (SaysOfShells(mesh) != SaysOfShells(objects.mesh) && !mesh.triangles.empty() && !objects.mesh.triangles.empty())
    throw Failure(source.name, "either all objects say which shells their triangles are of, or none does");
  // Asked before the points are moved: sums are no single-precision numbers any more, but as inexact.
  const double rounding = std::max(objects.mesh.rounding, mesh.rounding < 0 ? RoundingOf(mesh.points) : mesh.rounding);
  Move(mesh, source);
  source.firstTriangle = objects.mesh.triangles.size();
  Append(std::move(mesh), objects.mesh);
  objects.mesh.rounding = rounding;
  objects.sources.push_back(std::move(source));
}

}  // namespace zbr::drawing
