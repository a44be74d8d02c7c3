// The steps from a mesh to a model: weld, leave out what is no triangle, fill records, sort into shells, classify edges.
//
// What hangs together is known only when there are edges, and so everything goes into one shell first. Mostly that is the only one;
// else the shells are filled anew from the sorted triangles.
#include <zbr-drawing/model.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "drawing/model/edge_classes.h"
#include "drawing/model/named_shells.h"
#include "drawing/model/records.h"
#include "drawing/model/rough_creases.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/model/tangents.h"
#include "drawing/model/weld.h"
#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Smallest part of the diagonal worth welding by; below it only rounding of the cells' numbers would decide.
constexpr double kSmallestWeld = 1e-15;

void Enclose(const ZBR_PT3& p, ZBR_PT3& low, ZBR_PT3& high) {
  low.Set(std::min(low.x(), p.x()), std::min(low.y(), p.y()), std::min(low.z(), p.z()));
  high.Set(std::max(high.x(), p.x()), std::max(high.y(), p.y()), std::max(high.z(), p.z()));
}

// A mesh's triangles on their way into the records: of distinct points, and then the ones that stay, in order of shells.
struct Gathered {
  std::vector<ZBR_PT3> points;
  std::vector<Corners> triangles;
  std::vector<std::uint32_t> source;
  std::vector<std::uint32_t> shell;  // numbers of those that the mesh names, if it does
};

// Joins the points of each body for itself: bodies that touch stay bodies. Returns where each point of the mesh went.
std::vector<std::uint32_t> WeldBodies(const Mesh& mesh, double weld, std::vector<ZBR_PT3>& points) {
  const std::vector<MeshObject> starts = BodyStarts(mesh);
  if (starts.size() == 1) {
    points = mesh.points;
    return WeldPoints(points, weld);
  }
  std::vector<std::uint32_t> places;
  for (std::size_t k = 0; k < starts.size(); ++k) {
    const std::size_t end = k + 1 < starts.size() ? starts[k + 1].firstPoint : mesh.points.size();
    std::vector<ZBR_PT3> own(mesh.points.begin() + starts[k].firstPoint, mesh.points.begin() + static_cast<std::ptrdiff_t>(end));
    const auto before = static_cast<std::uint32_t>(points.size());
    for (const std::uint32_t place : WeldPoints(own, weld)) places.push_back(before + place);
    points.insert(points.end(), own.begin(), own.end());
  }
  return places;
}

Gathered Gather(const Mesh& mesh, double weld, Model& model) {
  Gathered gathered;
  const std::vector<std::uint32_t> places = WeldBodies(mesh, weld, gathered.points);
  gathered.triangles.reserve(mesh.triangles.size());
  gathered.source.reserve(mesh.triangles.size());
  for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
    const auto& t = mesh.triangles[k];
    const Corners welded = {places[t[0]], places[t[1]], places[t[2]]};
    if (welded[0] == welded[1] || welded[1] == welded[2] || welded[2] == welded[0]) {
      ++model.collapsed;
      continue;
    }
    gathered.triangles.push_back(welded);
    gathered.source.push_back(static_cast<std::uint32_t>(k));
  }
  if (!mesh.shells.empty()) gathered.shell = SeparateShells(mesh, gathered.source, gathered.triangles, gathered.points);
  return gathered;
}

void SetBox(const Gathered& gathered, Model& model) {
  if (gathered.triangles.empty()) return;
  model.low = model.high = gathered.points[gathered.triangles.front()[0]];
  for (const Corners& t : gathered.triangles) {
    for (const std::uint32_t p : t) Enclose(gathered.points[p], model.low, model.high);
  }
}

void Remove(const std::vector<std::uint32_t>& places, Gathered& gathered) {
  auto gone = places.begin();
  std::size_t kept = 0;
  for (std::size_t t = 0; t < gathered.triangles.size(); ++t) {
    if (gone != places.end() && *gone == t) {
      ++gone;
      continue;
    }
    gathered.triangles[kept] = gathered.triangles[t];
    if (!gathered.shell.empty()) gathered.shell[kept] = gathered.shell[t];
    gathered.source[kept++] = gathered.source[t];
  }
  gathered.triangles.resize(kept);
  gathered.source.resize(kept);
  if (!gathered.shell.empty()) gathered.shell.resize(kept);
}

// Makes one shell of everything and returns its junctions. Two layers of the same triangles, as double-sided surfaces are often
// stored, would make a junction of every edge: of repeated triangles one stays.
std::vector<EdgeUse> FillWhole(Gathered& gathered, Model& model) {
  ShellFiller filler(gathered.points);
  const auto fill = [&] {
    model.body = ZBR_ZBREPB();
    model.body.SetShellCnt(1);
    filler.Fill(gathered.triangles, *model.body.GetShell(0));
    return FindJunctions(model.Shell(0));
  };
  std::vector<EdgeUse> junctions = fill();
  const std::vector<std::uint32_t> repeated = FindRepeated(model.Shell(0), gathered.triangles, junctions);
  if (repeated.empty()) return junctions;
  model.repeated = repeated.size();
  Remove(repeated, gathered);
  return fill();
}

template <class T>
void Reorder(std::vector<T>& values, const std::vector<std::uint32_t>& target) {
  std::vector<T> sorted(values.size());
  for (std::size_t t = 0; t < values.size(); ++t) sorted[target[t]] = values[t];
  values = std::move(sorted);
}

// Sorts the triangles by the numbers of their shells, in place of which it leaves where they went.
void SortByShell(std::vector<std::uint32_t>& shell, Gathered& gathered, Model& model) {
  for (const std::uint32_t s : shell) ++model.shellBegin[s + 1];
  for (std::size_t s = 1; s < model.shellBegin.size(); ++s) model.shellBegin[s] += model.shellBegin[s - 1];
  const bool isSorted = std::is_sorted(shell.begin(), shell.end());
  std::vector<std::uint32_t> next = model.shellBegin;
  for (std::uint32_t& s : shell) s = next[s]++;
  if (isSorted) return;
  Reorder(gathered.triangles, shell);
  Reorder(gathered.source, shell);
}

// Each thread has a filler, whose table is as long as all points.
void FillShells(const Gathered& gathered, std::size_t count, unsigned threads, Model& model) {
  model.body = ZBR_ZBREPB();
  model.body.SetShellCnt(static_cast<int>(count));
  const std::size_t fillers = std::clamp<std::size_t>(RangeCount(gathered.triangles.size()), 1, std::max(threads, 1U));
  RunParallel(fillers, threads, [&](std::size_t k) {
    const auto firstOf = [&](std::size_t share) {
      const std::size_t triangle = gathered.triangles.size() / fillers * share;
      const auto end = model.shellBegin.end() - 1;
      return share == fillers
                 ? count
                 : static_cast<std::size_t>(std::lower_bound(model.shellBegin.begin(), end, triangle) - model.shellBegin.begin());
    };
    ShellFiller filler(gathered.points);
    for (std::size_t s = firstOf(k); s < firstOf(k + 1); ++s) {
      const std::size_t begin = model.shellBegin[s], end = model.shellBegin[s + 1];
      filler.Fill(std::span(gathered.triangles).subspan(begin, end - begin), *model.body.GetShell(static_cast<int>(s)));
    }
  });
}

void NumberEdges(Model& model) {
  for (int s = 0; s < model.body.GetShellCnt(); ++s) {
    model.body.GetShell(s)->SetIndex(s);
    model.edgeBegin.push_back(model.edgeBegin.back() + static_cast<std::uint32_t>(model.body.GetShell(s)->GetEdgeCnt()));
  }
  model.notes.resize(model.edgeBegin.back());
}

// Places of all triangles in the sorted order are in `target`.
void NoteJunctions(const std::vector<EdgeUse>& junctions, const std::vector<std::uint32_t>& target, Model& model) {
  for (std::size_t k = 0; k < junctions.size(); ++k) {
    ++(k > 0 && junctions[k].edge == junctions[k - 1].edge ? model.junctionCopies : model.junctions);
    const std::uint32_t t = target[junctions[k].use / 3];
    const std::size_t s = model.ShellOf(t);
    const ZBR_ZBREPE& edge = EdgeOf(*model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s])), junctions[k].use % 3);
    model.notes[model.edgeBegin[s] + static_cast<std::size_t>(edge.GetIndex())].isJunction = true;
  }
}

// Every triangle that runs along an edge from the smaller vertex to the larger turns the edge's note over; so does the first.
void NoteDirections(Model& model, unsigned threads) {
  ForEachShell(model.shellBegin, threads, [&](std::size_t s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    EdgeNote* const notes = model.notes.data() + model.edgeBegin[s];
    for (int e = 0; e < shell.GetEdgeCnt(); ++e) notes[e].isSameWay = true;
    for (int k = 0; k < shell.GetTriangleCnt(); ++k) {
      const ZBR_ZBREPT& t = *shell.GetTriangle(k);
      const int v[3] = {t.GetVertex0()->GetIndex(), t.GetVertex1()->GetIndex(), t.GetVertex2()->GetIndex()};
      const int e[3] = {t.GetEdge0()->GetIndex(), t.GetEdge1()->GetIndex(), t.GetEdge2()->GetIndex()};
      for (std::size_t i = 0; i < 3; ++i) {
        if (v[i] < v[(i + 1) % 3]) notes[e[i]].isSameWay = !notes[e[i]].isSameWay;
      }
    }
  });
}

void FillBody(Gathered& gathered, unsigned threads, Model& model) {
  const std::vector<EdgeUse> junctions = FillWhole(gathered, model);
  model.pointCount = static_cast<std::size_t>(model.Shell(0).GetVertexCnt());
  std::uint32_t count = 0;
  std::vector<std::uint32_t> shell = std::move(gathered.shell);
  if (shell.empty()) {
    shell = NumberParts(model.Shell(0), junctions, count);
  } else {
    count = *std::max_element(shell.begin(), shell.end()) + 1;
  }
  model.shellBegin.assign(count + 1, 0);
  SortByShell(shell, gathered, model);
  if (count != 1) FillShells(gathered, count, threads, model);
  NumberEdges(model);
  NoteJunctions(junctions, shell, model);
  NoteDirections(model, threads);
  model.source = std::move(gathered.source);
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
  Gathered gathered = Gather(mesh, WeldDistance(mesh.points, weld), model);
  SetBox(gathered, model);
  FillBody(gathered, threads, model);
  SetNormals(model, threads);
  ShowEdges(model, creaseDegrees, threads);
  FindFacing(model, threads);
  NoteTangents(model, threads);
  model.isRough = AreCreasesRough(model);
  if (model.isRough) TidyRoughCreases(model, creaseDegrees);
  model.objectBegin = FirstShells(mesh.objects, model);
  model.bodyBegin = FirstShells(BodyStarts(mesh), model);
  return model;
}

}  // namespace zbr::drawing
