// Where the interpolated normal is at a right angle to the line of sight.
//
// Idea: normals at the corners of facets, the same for all facets that are smooth there, are interpolated over each facet. Where
// their product with the direction of view is 0 the surface turns away: a straight line across the facet, from an edge on which the
// next facet's line ends, at the same place. So the curves close, and there are as many as the surface has, however fine the mesh.
// Difficulty: they do not lie on the silhouette of the facets, but up to a facet's width before or behind it. What hides a curve is
// looked for from a facet's width nearer to the viewer; and where a curve is seen for less than is worth drawing, or hidden, the
// stretch goes the way of those beside it (visible_runs.h). Where facets are coarse and end in creases, the lines of these are
// those of the facets, and so are the silhouettes.
#include "drawing/silhouettes/smooth_silhouettes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "drawing/sections/contours.h"
#include "drawing/sections/cut_chains.h"
#include "drawing/silhouettes/smooth_normals.h"

namespace zbr::drawing {
namespace {

// In widths of a facet.
constexpr double kNearer = 2.0;
// As a part of that: how far behind other bodies a curve is seen, which facets of both may cover where bodies touch.
constexpr double kOther = 0.01;

// As a part of the model's diagonal, half a line's width: silhouettes of facets above which the surface rises more miss the ends of
// creases there, and edges beside them would be taken for another line.
constexpr double kCoarse = 1e-3;
// Of a surface with creases: the share of its silhouette's facets that have one, above rounding and stray edges.
constexpr double kCreased = 0.1;

// How far a surface with this normal, outwards, turns to the viewer. One that is seen edge-on does not, whatever rounding says:
// where it ends below in a crease there is nothing beyond that turns away, and the curve runs over it all the same.
double Towards(const ZBR_PT3& normal, const View& view, Facing facing) {
  const double towards = normal.InnerProduct(view.toViewer) * (facing == Facing::kInward ? -1.0 : 1.0);
  return towards > kSceneTolerance * normal.Length() ? towards : std::min(towards, 0.0);
}

// Whether the triangle, or the one that the surface goes on to smoothly across the edge, is seen edge-on. Ends of cylinders that
// are, beyond creases, tell nothing of the silhouette.
bool IsWall(const Model& model, std::size_t s, const ZBR_ZBREPT& triangle, const ZBR_ZBREPE& edge, const View& view) {
  const std::array triangles = {edge.GetTriangle0(), edge.GetTriangle1()};
  const bool isSmooth = IsSmoothAcross(model, s, edge);
  return std::any_of(triangles.begin(), triangles.end(), [&](const ZBR_ZBREPT* t) {
    if (t == nullptr || (t != &triangle && !isSmooth)) return false;
    const ZBR_PT3& normal = model.normals[model.shellBegin[s] + static_cast<std::size_t>(t->GetIndex())];
    return std::abs(normal.InnerProduct(view.toViewer)) <= kSceneTolerance;
  });
}

// Whether the surface turns away on the way to the viewer: then it is in front of its own silhouette.
bool IsHollow(const ZBR_ZBREPT& t, const std::array<double, 3>& facing, const ZBR_PT3& toViewer) {
  const ZBR_PT3 &p = VertexOf(t, 0).GetPt(), a = VertexOf(t, 1).GetPt() - p, b = VertexOf(t, 2).GetPt() - p;
  const ZBR_PT3 normal = a.OuterProduct(b);
  return toViewer.OuterProduct(b).InnerProduct(normal) * (facing[1] - facing[0]) +
             a.OuterProduct(toViewer).InnerProduct(normal) * (facing[2] - facing[0]) <
         0;
}

// How far the surface rises over a facet, from how wide that is and by how much its normals differ.
double RiseOver(const ZBR_ZBREPT& t, const std::array<std::uint32_t, 3>& corners, const std::vector<ZBR_PT3>& normals) {
  double longest = 0.0, bend = 0.0;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t j = (i + 1) % 3;
    longest = std::max(longest, VertexOf(t, i).GetPt().Distance(VertexOf(t, j).GetPt()));
    const ZBR_PT3 &m = normals[corners[i]], &n = normals[corners[j]];
    const double lengths = m.Length() * n.Length();
    if (lengths > 0) bend = std::max(bend, m.OuterProduct(n).Length() / lengths);
  }
  if (!(longest > 0)) return 0.0;
  const ZBR_PT3& a = VertexOf(t, 0).GetPt();
  return (VertexOf(t, 1).GetPt() - a).OuterProduct(VertexOf(t, 2).GetPt() - a).Length() / longest * bend / 8.0;
}

// How far the facet goes beside a line on it: slivers may reach far to both sides.
double ExtentAcross(const ZBR_HL_TRI& facet, const ZBR_HL_TRI& line) {
  const ZBR_PT3 along = line.pt[1] - line.pt[0];
  const double length = along.Length();
  if (!(length > 0)) return 0.0;
  double farthest = 0.0;
  for (const ZBR_PT3& p : facet.pt) farthest = std::max(farthest, along.OuterProduct(p - line.pt[0]).Length() / length);
  return farthest;
}

// Whether most of the silhouette, by length, is on facets too coarse for it, and some of them have creases.
bool IsCoarse(const Model& model, std::size_t s, const SmoothNormals& normals, const Cuts& cuts,
              const std::vector<std::array<ZBR_PT3, 2>>& places) {
  double length = 0.0, coarse = 0.0, creased = 0.0;
  for (std::size_t k = 0; k < places.size(); ++k) {
    const ZBR_ZBREPT& triangle = *model.Shell(s).GetTriangle(static_cast<int>(cuts.triangles[k]));
    const double part = places[k][0].Distance(places[k][1]);
    length += part;
    if (RiseOver(triangle, normals.ofCorner[cuts.triangles[k]], normals.all) > kCoarse * model.Diagonal()) coarse += part;
    bool hasCrease = false;
    for (std::size_t i = 0; i < 3; ++i) hasCrease = hasCrease || !IsSmoothAcross(model, s, EdgeOf(triangle, i));
    if (hasCrease) creased += part;
  }
  return 2.0 * coarse > length && creased > kCreased * length;
}

}  // namespace

SmoothSilhouettes::SmoothSilhouettes(const Model& model, const std::vector<SmoothNormals>& normals, const View& view) {
  for (std::size_t s = 0; s < model.ShellCount(); ++s) FindIn(model, s, normals[s], view);
}

void SmoothSilhouettes::FindIn(const Model& model, std::size_t s, const SmoothNormals& normals, const View& view) {
  const ZBR_ZBREPS& shell = model.Shell(s);
  std::vector<double> facing;
  facing.reserve(normals.all.size());
  for (const ZBR_PT3& normal : normals.all) facing.push_back(Towards(normal, view, model.facing[s]));

  Cuts cuts;
  std::vector<std::array<ZBR_PT3, 2>> places;  // of the ends of cuts
  std::vector<bool> hollow;
  for (int t = 0; t < shell.GetTriangleCnt(); ++t) {
    const ZBR_ZBREPT& triangle = *shell.GetTriangle(t);
    std::array<double, 3> at{};
    for (std::size_t i = 0; i < 3; ++i) at[i] = facing[normals.ofCorner[static_cast<std::size_t>(t)][i]];
    if ((at[0] > 0) == (at[1] > 0) && (at[1] > 0) == (at[2] > 0)) continue;
    std::array<std::uint32_t, 2> names{};
    std::array<ZBR_PT3, 2> ends;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::size_t j = (i + 1) % 3;
      if ((at[i] > 0) == (at[j] > 0)) continue;
      const std::size_t side = at[i] > 0 ? 0 : 1;
      const ZBR_ZBREPE& edge = EdgeOf(triangle, i);
      // An edge at which the surface bends has an end for each of its triangles.
      names[side] = static_cast<std::uint32_t>(IsSmoothAcross(model, s, edge) ? edge.GetIndex()
                                                                              : shell.GetEdgeCnt() + 3 * t + static_cast<int>(i));
      // A wall seen edge-on ends at its upper edge, wherever normals that are interpolated down to its foot say that it does.
      ends[side] = IsWall(model, s, triangle, edge, view)
                       ? VertexOf(triangle, at[i] > 0 ? i : j).GetPt()
                       : CrossingOf(VertexOf(triangle, i).GetPt(), at[i], VertexOf(triangle, j).GetPt(), at[j]);
    }
    cuts.Add(static_cast<std::uint32_t>(t), names[0], names[1]);
    places.push_back(ends);
    hollow.push_back(!model.isRough && IsHollow(triangle, at, view.toViewer));
  }
  isCoarse_.push_back(IsCoarse(model, s, normals, cuts, places));
  if (isCoarse_.back()) return;
  for (const CutChain& chain : ChainCuts(cuts)) {
    Curve curve{static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(lines_.size()), 0, chain.closed};
    for (const std::uint32_t end : chain.ends) {
      isHollow_.push_back(hollow[end / 2]);
      IntersectionLine& line = lines_.emplace_back();
      const std::array<ZBR_PT3, 2>& ends = places.at(end / 2);
      line.ends[0].place = ends[end % 2];
      line.ends[1].place = ends[1 - end % 2];
      line.triangles.fill(model.shellBegin[s] + cuts.triangles[end / 2]);
    }
    curve.end = static_cast<std::uint32_t>(lines_.size());
    curves_.push_back(curve);
  }
}

void SmoothSilhouettes::AddTo(std::vector<IntersectionLine>& lines) {
  first_ = lines.size();
  lines.insert(lines.end(), lines_.begin(), lines_.end());
}

// Where the surface bends at an edge no curve runs over it, and it stays.
void SmoothSilhouettes::PutInto(const Model& model, Scene& scene) {
  const std::size_t facets = scene.TriangleCount();
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    for (std::size_t t = model.shellBegin[s]; t < model.shellBegin[s + 1]; ++t) {
      const ZBR_ZBREPT& record = *model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s]));
      for (std::size_t i = 0; i < 3; ++i) {
        if (scene.classes[t][i] != EdgeClass::kSilhouette || !IsSmoothAcross(model, s, EdgeOf(record, i))) continue;
        edges_.push_back({static_cast<std::uint32_t>(t), static_cast<std::uint8_t>(i)});
        if (isCoarse_[s]) continue;
        scene.classes[t][i] = EdgeClass::kSmooth;
        scene.triangles[t].dispj[i] = false;
      }
    }
  }
  nearer_.resize(lines_.size());
  for (std::size_t k = 0; k < lines_.size(); ++k) {
    const ZBR_HL_TRI& line = scene.triangles[facets + first_ + k];
    const std::uint32_t t = lines_[k].triangles[0];
    if (!isHollow_[k]) nearer_[k] = std::max(kNearer * WidthAround(scene, model, t), ExtentAcross(scene.triangles[t], line));
    for (ZBR_PT3& p : scene.triangles[facets + first_ + k].pt) p += ZBR_PT3(0, 0, nearer_[k]);
  }
}

void SmoothSilhouettes::LimitRuns(const Model& model, const Scene& scene, const Curve& curve, SeenCurve& seen) const {
  if (seen.visible.empty() || model.ShellCount() < 2) return;
  Extent box;
  for (const ZBR_PT& p : seen.points) box.Add(p);
  std::vector<const ZBR_HL_SHELL*> others;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const ZBR_HL_SHELL& shell = scene.shells[s];
    if (s != curve.shell && shell.max_x > box.xmin && shell.min_x < box.xmax && shell.max_y > box.ymin && shell.min_y < box.ymax)
      others.push_back(&shell);
  }
  if (others.empty()) return;
  const std::size_t first = scene.TriangleCount() + first_ + curve.begin;
  seen.Keep([&](std::size_t k, double part) {
    const ZBR_HL_TRI& line = scene.triangles[first + k];
    const ZBR_PT3 p = line.pt[0] + (line.pt[1] - line.pt[0]) * part;
    const double nearer = nearer_[curve.begin + k], height = p.z() - nearer + kOther * nearer;
    return std::none_of(others.begin(), others.end(), [&](const ZBR_HL_SHELL* shell) {
      double z = height;
      return ZBR_HiddenLine::PickShell(p.x(), p.y(), *shell, z);
    });
  });
}

std::vector<Line> SmoothSilhouettes::TakeFrom(const Model& model, Scene& scene, bool hidden) const {
  std::vector<Line> taken;
  const double size = ExtentOf(scene).Size() * scene.scale;
  const std::size_t first = scene.TriangleCount() + first_;
  for (const Curve& curve : curves_) {
    SeenCurve seen;
    seen.closed = curve.closed;
    for (std::size_t k = curve.begin; k < curve.end; ++k) {
      ZBR_HL_TRI& line = scene.triangles[first + k];
      seen.Add(line.pt[0].xy(), line.pt[1].xy(), model.source[lines_[k].triangles[0]], line.intvl_v[0]);
      line.ClearEdgeAll();
      line.dispj[0] = false;
    }
    LimitRuns(model, scene, curve, seen);
    for (Line& line : LinesOf(seen, size)) {
      if (line.hidden && !hidden) continue;
      line.shell = line.other = curve.shell;
      for (ZBR_PT& p : line.chain.points) p.Set(p.x() / scene.scale, p.y() / scene.scale);
      taken.push_back(std::move(line));
    }
  }
  return taken;
}

}  // namespace zbr::drawing
