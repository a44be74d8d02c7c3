// Where the interpolated normal is at a right angle to the line of sight.
//
// Idea: normals at the corners of facets, the same for all facets that are smooth there, are interpolated over each facet. Where
// their product with the direction of view is 0 the surface turns away: a straight line across the facet, from an edge on which the
// next facet's line ends, at the same place. So the curves close, and there are as many as the surface has, however fine the mesh.
// Difficulty: they do not lie on the silhouette of the facets, but up to a facet's width before or behind it. What hides a curve is
// looked for from a facet's width nearer to the viewer; and where a curve is seen for less than is worth drawing, or hidden, the
// stretch goes the way of those beside it (visible_runs.h).
#include "drawing/silhouettes/smooth_silhouettes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "drawing/sections/contours.h"
#include "drawing/sections/cut_chains.h"
#include "drawing/silhouettes/smooth_normals.h"
#include "drawing/silhouettes/visible_runs.h"

namespace zbr::drawing {
namespace {

// In widths of a facet.
constexpr double kNearer = 2.0;

// Twice the area over the longest side.
double WidthOf(const ZBR_HL_TRI& t) {
  double longest2 = 0.0;
  for (int i = 0; i < 3; ++i) longest2 = std::max(longest2, (t.pt[(i + 1) % 3] - t.pt[i]).Length2());
  return longest2 > 0 ? (t.pt[1] - t.pt[0]).OuterProduct(t.pt[2] - t.pt[0]).Length() / std::sqrt(longest2) : 0.0;
}

// Of a triangle and its neighbours: beside the silhouette there may be slivers.
double WidthAround(const Scene& scene, const Model& model, std::uint32_t t) {
  double width = WidthOf(scene.triangles[t]);
  const std::size_t begin = model.shellBegin[model.ShellOf(t)];
  for (const int adjacent : scene.triangles[t].adj) {
    if (adjacent >= 0) width = std::max(width, WidthOf(scene.triangles[begin + static_cast<std::size_t>(adjacent)]));
  }
  return width;
}

}  // namespace

SmoothSilhouettes::SmoothSilhouettes(const Model& model, const View& view) {
  for (std::size_t s = 0; s < model.ShellCount(); ++s) FindIn(model, s, view);
}

void SmoothSilhouettes::FindIn(const Model& model, std::size_t s, const View& view) {
  const ZBR_ZBREPS& shell = model.Shell(s);
  const SmoothNormals normals = SmoothNormalsOf(model, s);
  std::vector<double> facing;
  facing.reserve(normals.all.size());
  for (const ZBR_PT3& normal : normals.all) facing.push_back(normal.InnerProduct(view.toViewer));

  Cuts cuts;
  std::vector<std::array<ZBR_PT3, 2>> places;  // of the ends of cuts
  for (int t = 0; t < shell.GetTriangleCnt(); ++t) {
    const ZBR_ZBREPT& triangle = *shell.GetTriangle(t);
    std::array<double, 3> at{};
    for (std::size_t i = 0; i < 3; ++i) at[i] = facing[normals.ofCorner[static_cast<std::size_t>(t)][i]];
    if ((at[0] < 0) == (at[1] < 0) && (at[1] < 0) == (at[2] < 0)) continue;
    std::array<std::uint32_t, 2> names{};
    std::array<ZBR_PT3, 2> ends;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::size_t j = (i + 1) % 3;
      if ((at[i] < 0) == (at[j] < 0)) continue;
      const std::size_t side = at[i] < 0 ? 1 : 0;
      const ZBR_ZBREPE& edge = EdgeOf(triangle, i);
      // An edge at which the surface bends has an end for each of its triangles.
      names[side] = static_cast<std::uint32_t>(IsSmoothAcross(model, s, edge) ? edge.GetIndex()
                                                                              : shell.GetEdgeCnt() + 3 * t + static_cast<int>(i));
      ends[side] = CrossingOf(VertexOf(triangle, i).GetPt(), at[i], VertexOf(triangle, j).GetPt(), at[j]);
    }
    cuts.Add(static_cast<std::uint32_t>(t), names[0], names[1]);
    places.push_back(ends);
  }
  for (const CutChain& chain : ChainCuts(cuts)) {
    Curve curve{static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(lines_.size()), 0, chain.closed};
    for (const std::uint32_t end : chain.ends) {
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

// Where an edge is a crease as well no curve runs over it, and it stays.
void SmoothSilhouettes::PutInto(const Model& model, Scene& scene) const {
  const std::size_t facets = scene.TriangleCount();
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    for (std::size_t t = model.shellBegin[s]; t < model.shellBegin[s + 1]; ++t) {
      const ZBR_ZBREPT& record = *model.Shell(s).GetTriangle(static_cast<int>(t - model.shellBegin[s]));
      for (std::size_t i = 0; i < 3; ++i) {
        if (scene.classes[t][i] != EdgeClass::kSilhouette || EdgeOf(record, i).GetShow()) continue;
        scene.classes[t][i] = EdgeClass::kSmooth;
        scene.triangles[t].dispj[i] = false;
      }
    }
  }
  for (std::size_t k = 0; k < lines_.size(); ++k) {
    const ZBR_PT3 nearer(0, 0, kNearer * WidthAround(scene, model, lines_[k].triangles[0]));
    for (ZBR_PT3& p : scene.triangles[facets + first_ + k].pt) p += nearer;
  }
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
