// The steps from a mesh to a model: weld, leave out what is no triangle, fill the records of shells, classify edges.
#include <zbr-drawing/model.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <span>
#include <utility>

#include "drawing/model/connectivity.h"
#include "drawing/model/edge_classes.h"
#include "drawing/model/fill_body.h"
#include "drawing/model/named_shells.h"
#include "drawing/model/rough_creases.h"
#include "drawing/model/tangents.h"
#include "drawing/model/weld.h"
#include "drawing/parallel.h"
#include "drawing/points.h"

namespace zbr::drawing {
namespace {

// Smallest part of the diagonal worth welding by; below it only rounding of the cells' numbers would decide.
constexpr double kSmallestWeld = 1e-15;

// Joins the points of each body for itself: bodies that touch stay bodies. Returns where each point of the mesh went.
std::vector<std::uint32_t> WeldBodies(const Mesh& mesh, double weld, unsigned threads, std::vector<ZBR_PT3>& points) {
  const std::vector<MeshObject> starts = BodyStarts(mesh);
  const std::span<const ZBR_PT3> all = mesh.points;
  if (starts.size() == 1) return WeldPoints(all, weld, threads, points);
  std::vector<std::uint32_t> places;
  places.reserve(all.size());
  for (std::size_t k = 0; k < starts.size(); ++k) {
    const std::size_t end = k + 1 < starts.size() ? starts[k + 1].firstPoint : all.size();
    const auto own = all.subspan(starts[k].firstPoint, end - starts[k].firstPoint);
    const std::vector<std::uint32_t> ownPlaces = WeldPoints(own, weld, threads, points);
    places.insert(places.end(), ownPlaces.begin(), ownPlaces.end());
  }
  return places;
}

bool IsCollapsed(const Corners& t) {
  return t[0] == t[1] || t[1] == t[2] || t[2] == t[0];
}

// Drops the triangles that are none any more. Returns how many.
std::size_t DropCollapsed(Gathered& gathered) {
  std::size_t kept = 0;
  for (std::size_t t = 0; t < gathered.triangles.size(); ++t) {
    if (IsCollapsed(gathered.triangles[t])) continue;
    gathered.triangles[kept] = gathered.triangles[t];
    gathered.source[kept++] = gathered.source[t];
  }
  const std::size_t dropped = gathered.triangles.size() - kept;
  gathered.triangles.resize(kept);
  gathered.source.resize(kept);
  return dropped;
}

Gathered Gather(const Mesh& mesh, double weld, unsigned threads, Model& model) {
  Gathered gathered;
  const std::vector<std::uint32_t> places = WeldBodies(mesh, weld, threads, gathered.points);
  gathered.triangles.resize(mesh.triangles.size());
  gathered.source.resize(mesh.triangles.size());
  std::atomic<bool> hasCollapsed{false};
  RunInRanges(mesh.triangles.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) {
      const auto& t = mesh.triangles[k];
      gathered.triangles[k] = {places[t[0]], places[t[1]], places[t[2]]};
      gathered.source[k] = static_cast<std::uint32_t>(k);
      if (IsCollapsed(gathered.triangles[k])) hasCollapsed = true;
    }
  });
  if (hasCollapsed) model.collapsed = DropCollapsed(gathered);
  if (!mesh.shells.empty()) gathered.shell = SeparateShells(mesh, gathered.source, gathered.triangles, gathered.points);
  return gathered;
}

void SetBox(const Gathered& gathered, unsigned threads, Model& model) {
  if (gathered.triangles.empty()) return;
  struct Box {
    ZBR_PT3 low, high;
  };
  const auto first = [&](std::size_t t) { return gathered.points[gathered.triangles[t][0]]; };
  std::vector<Box> boxes(RangeCount(gathered.triangles.size()));
  RunInRanges(gathered.triangles.size(), threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    Box box{first(begin), first(begin)};
    for (std::size_t t = begin; t < end; ++t) {
      for (const std::uint32_t p : gathered.triangles[t]) Enclose(gathered.points[p], box.low, box.high);
    }
    boxes[range] = box;
  });
  model.low = model.high = first(0);
  for (const Box& box : boxes) {
    Enclose(box.low, model.low, model.high);
    Enclose(box.high, model.low, model.high);
  }
}

// The first shells of objects or bodies, and the end: shells are in the order of their first triangles in the mesh.
std::vector<std::uint32_t> FirstShells(const std::vector<MeshObject>& starts, const Model& model) {
  std::vector<std::uint32_t> first{0};
  std::size_t s = 0;
  for (std::size_t k = 1; k < starts.size(); ++k) {
    while (s < model.ShellCount() && model.source[model.shellBegin[s]] < starts[k].firstTriangle) ++s;
    first.push_back(static_cast<std::uint32_t>(s));
  }
  first.push_back(static_cast<std::uint32_t>(model.ShellCount()));
  return first;
}

double WeldDistance(const std::vector<ZBR_PT3>& points, double weld) {
  if (points.empty() || !(weld > kSmallestWeld)) return 0.0;
  ZBR_PT3 low = points.front(), high = low;
  for (const ZBR_PT3& p : points) Enclose(p, low, high);
  return weld * low.Distance(high);
}

// A larger angle than the usual one leaves few creases to tell it by, and takes nothing of the roughness away.
bool IsRough(Model& model, double creaseDegrees, unsigned threads) {
  constexpr double kUsual = 30.0;
  if (creaseDegrees <= kUsual) return AreCreasesRough(model, threads);
  ShowEdges(model, kUsual, threads);
  const bool isRough = AreCreasesRough(model, threads);
  ShowEdges(model, creaseDegrees, threads);
  return isRough;
}

}  // namespace

EdgeClass Model::Class(std::size_t shell, const ZBR_ZBREPE& edge) const {
  if (!edge.GetShow()) return Note(shell, edge).isTangent ? EdgeClass::kTangent : EdgeClass::kSmooth;
  if (Note(shell, edge).isJunction) return EdgeClass::kJunction;
  return edge.GetTriangle1() == nullptr ? EdgeClass::kBorder : EdgeClass::kCrease;
}

std::uint32_t Model::ShellOf(std::uint32_t triangle) const {
  return static_cast<std::uint32_t>(std::upper_bound(shellBegin.begin(), shellBegin.end(), triangle) - shellBegin.begin() - 1);
}

Model MakeModel(const Mesh& mesh, double creaseDegrees, double weld, unsigned threads) {
  CheckMesh(mesh);
  if (!std::isfinite(creaseDegrees) || !std::isfinite(weld))
    throw Failure("the angle of creases and the weld must be finite numbers");
  Model model;
  model.rounding = mesh.rounding < 0 ? RoundingOf(mesh.points) : mesh.rounding;
  Gathered gathered = Gather(mesh, WeldDistance(mesh.points, weld), threads, model);
  SetBox(gathered, threads, model);
  FillBody(std::move(gathered), threads, model);
  SetNormals(model, threads);
  ShowEdges(model, creaseDegrees, threads);
  FindFacing(model, threads);
  NoteTangents(model, threads);
  model.isRough = IsRough(model, creaseDegrees, threads);
  if (model.isRough) {
    DropConnectivity(model);
    TidyRoughCreases(model, creaseDegrees);
  }
  model.objectBegin = FirstShells(mesh.objects, model);
  model.bodyBegin = FirstShells(BodyStarts(mesh), model);
  return model;
}

}  // namespace zbr::drawing
