// The steps from a mesh to a model: weld, leave out what is no triangle, connect, sort into shells, classify edges.
#include "model/model.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/adjacency.h"
#include "model/edge_classes.h"
#include "model/weld.h"

namespace tool {
namespace {

// Smallest part of the diagonal worth welding by; below it only rounding of the cells' numbers would decide.
constexpr double kSmallestWeld = 1e-15;

void Enclose(const ZBR_PT3& p, ZBR_PT3& low, ZBR_PT3& high) {
  low.Set(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
  high.Set(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
}

void SetBox(Model& model) {
  if (model.triangles.empty()) return;
  model.low = model.high = model.points[model.triangles.front()[0]];
  for (const auto& t : model.triangles) {
    for (const std::uint32_t p : t) Enclose(model.points[p], model.low, model.high);
  }
}

void SetTriangles(Model& model, const Mesh& mesh, const std::vector<std::uint32_t>& places) {
  model.triangles.reserve(mesh.triangles.size());
  model.source.reserve(mesh.triangles.size());
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
    const auto& t = mesh.triangles[k];
    const std::array<std::uint32_t, 3> welded = {places[t[0]], places[t[1]], places[t[2]]};
    if (welded[0] == welded[1] || welded[1] == welded[2] || welded[2] == welded[0]) {
      ++model.collapsed;
      continue;
    }
    model.triangles.push_back(welded);
    model.source.push_back(static_cast<std::uint32_t>(k));
  }
}

// Two layers of the same triangles, as double-sided surfaces are often stored, would make a junction of every edge.
void Connect(Model& model) {
  const std::vector<std::uint32_t> repeated = ConnectTriangles(model);
  if (repeated.empty()) return;
  model.repeated = repeated.size();
  auto gone = repeated.begin();
  std::size_t kept = 0;
  for (std::size_t t = 0; t < model.triangles.size(); ++t) {
    if (gone != repeated.end() && *gone == t) {
      ++gone;
      continue;
    }
    model.triangles[kept] = model.triangles[t];
    model.source[kept++] = model.source[t];
  }
  model.triangles.resize(kept);
  model.source.resize(kept);
  ConnectTriangles(model);
}

template <class T>
void Reorder(std::vector<T>& values, const std::vector<std::uint32_t>& target) {
  std::vector<T> sorted(values.size());
  for (std::size_t t = 0; t < values.size(); ++t) sorted[target[t]] = values[t];
  values = std::move(sorted);
}

void SortByShell(Model& model) {
  std::uint32_t count = 0;
  const std::vector<std::uint32_t> shell = NumberShells(model, count);
  model.shellBegin.assign(count + 1, 0);
  for (const std::uint32_t s : shell) ++model.shellBegin[s + 1];
  for (std::size_t s = 1; s <= count; ++s) model.shellBegin[s] += model.shellBegin[s - 1];
  if (std::is_sorted(shell.begin(), shell.end())) return;
  std::vector<std::uint32_t> next = model.shellBegin;
  std::vector<std::uint32_t> target;
  target.reserve(shell.size());
  for (const std::uint32_t s : shell) target.push_back(next[s]++);
  Reorder(model.triangles, target);
  Reorder(model.source, target);
  Reorder(model.adjacent, target);
  Reorder(model.adjacentEdge, target);
  Reorder(model.classes, target);
  for (auto& row : model.adjacent) {
    for (std::int32_t& u : row) u = u < 0 ? u : static_cast<std::int32_t>(target[static_cast<std::size_t>(u)]);
  }
}

double WeldDistance(const std::vector<ZBR_PT3>& points, double weld) {
  if (points.empty() || !(weld > kSmallestWeld)) return 0.0;
  ZBR_PT3 low = points.front(), high = low;
  for (const ZBR_PT3& p : points) Enclose(p, low, high);
  return weld * low.Distance(high);
}

}  // namespace

bool Model::SameWay(std::size_t triangle, int edge) const {
  const auto i = static_cast<std::size_t>(edge);
  const auto u = static_cast<std::size_t>(adjacent[triangle][i]);
  return triangles[u][static_cast<std::size_t>(adjacentEdge[triangle][i])] == triangles[triangle][i];
}

Model MakeModel(const Mesh& mesh, double creaseDegrees, double weld) {
  Model model;
  model.points = mesh.points;
  SetTriangles(model, mesh, WeldPoints(model.points, WeldDistance(mesh.points, weld)));
  SetBox(model);
  Connect(model);
  SortByShell(model);
  SetNormals(model);
  FindCreases(model, creaseDegrees);
  FindFacing(model);
  return model;
}

}  // namespace tool
