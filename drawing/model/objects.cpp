// Meshes put together.
#include <zbr-drawing/objects.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
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
  all.objects.push_back({shift, static_cast<std::uint32_t>(all.triangles.size())});
  if (shift == 0) {
    std::vector<MeshObject> objects = std::move(all.objects);
    all = std::move(mesh);
    all.objects = std::move(objects);
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

// Those without triangles, too: points are welded by object.
void CheckObjects(const Mesh& mesh) {
  MeshObject before;
  for (const MeshObject& o : mesh.objects) {
    const bool isFirst = &o == mesh.objects.data();
    if (isFirst && (o.firstPoint != 0 || o.firstTriangle != 0)) throw Failure("the first object does not start with the mesh");
    if (o.firstPoint < before.firstPoint || o.firstTriangle < before.firstTriangle || o.firstPoint > mesh.points.size() ||
        o.firstTriangle > mesh.triangles.size())
      throw Failure("object " + std::to_string(&o - mesh.objects.data()) + " is out of order");
    before = o;
  }
}

}  // namespace

bool IsMeshCoordinate(const ZBR_PT3& p) {
  constexpr double kLargest = 1e75;
  return std::abs(p.x()) <= kLargest && std::abs(p.y()) <= kLargest && std::abs(p.z()) <= kLargest;
}

void CheckMesh(const Mesh& mesh) {
  if (mesh.points.size() > kMostMeshPoints || mesh.triangles.size() > kMostMeshPoints) throw Failure("the mesh is too large");
  for (std::size_t i = 0; i < mesh.points.size(); ++i) {
    if (!IsMeshCoordinate(mesh.points[i]))
      throw Failure("a coordinate of point " + std::to_string(i) + " is too large or no number");
  }
  SaysOfShells(mesh);
  CheckObjects(mesh);
  std::size_t object = 0, firstPoint = 0, lastPoint = mesh.points.size();
  for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
    for (; object < mesh.objects.size() && mesh.objects[object].firstTriangle <= t; ++object) {
      firstPoint = mesh.objects[object].firstPoint;
      lastPoint = object + 1 < mesh.objects.size() ? mesh.objects[object + 1].firstPoint : mesh.points.size();
    }
    for (const std::uint32_t corner : mesh.triangles[t]) {
      if (corner < firstPoint || corner >= lastPoint || corner >= mesh.points.size())
        throw Failure("triangle " + std::to_string(t) + " has the corner " + std::to_string(corner) +
                      ", which is no point of its object");
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
