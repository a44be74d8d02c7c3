// Turns a model into view coordinates and finds its silhouettes.
//
// A silhouette is an edge between a facet that faces the viewer and one that does not. The difficulty are facets so narrow in
// projection that for the removal their edges are one line: the facets of slender rods, and single ones that the view happens to
// meet almost edge-on. There the surface that rises behind the silhouette would hide it, being on its line and higher. So narrow
// facets count to the lower side, one after the other, and the silhouette is the uppermost of the edges on its line.
#include <zbr-drawing/scene.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"
#include "drawing/touched.h"

namespace zbr::drawing {
namespace {

// Whether an edge between triangles whose normals have these z components is a silhouette.
//
// Between a triangle seen from the front and one that is not. On a wall seen edge-on that is the upper edge alone: the lower one
// lies under it in the drawing. Where no side is the outer one, both edges of a wall count; the removal drops what is covered.
bool IsSilhouette(double a, double b, Facing facing) {
  constexpr double kFlat = kSceneTolerance;
  if (facing == Facing::kOutward) return (a > kFlat) != (b > kFlat);
  if (facing == Facing::kInward) return (a < -kFlat) != (b < -kFlat);
  return (a > kFlat) != (b > kFlat) || (a < -kFlat) != (b < -kFlat);
}

double LongestEdge2(const ZBR_HL_TRI& t) {
  double longest2 = 0.0;
  for (int i = 0; i < 3; ++i) longest2 = std::max(longest2, (t.pt[(i + 1) % 3].xy() - t.pt[i].xy()).Length2());
  return longest2;
}

// Whether the removal takes edges of the triangle for one line, or the whole of it for a wall because its short edge is seen
// end-on. One whose corners it takes for two hides nothing.
bool IsNarrow(const ZBR_HL_TRI& t) {
  constexpr double kLine = 2e-7;  // twice the distance within which points are on a line there
  const double area2 = (t.pt[1].xy() - t.pt[0].xy()).OuterProduct(t.pt[2].xy() - t.pt[0].xy());
  bool isNarrow = area2 * area2 <= kLine * kLine * LongestEdge2(t);
  for (int i = 0; i < 3; ++i) {
    const ZBR_PT3 &p = t.pt[i], &q = t.pt[(i + 1) % 3];
    if ((q - p).Length2() <= kSceneTolerance * kSceneTolerance) return false;
    isNarrow = isNarrow || ZBR_HL_TRI::EqualPtPt(p, q, kSceneTolerance);
  }
  return isNarrow;
}

// Faces that met before their corners were rounded are some steps apart. However coarse the coordinates are, what shows in a
// drawing is no contact.
double ContactOf(const Model& model, double scale) {
  constexpr double kSteps = 4.0;
  constexpr double kLargest = 1e-4 * kSceneDiagonal;
  return std::min(kSteps * model.rounding * scale, kLargest);
}

class SceneMaker {
 public:
  SceneMaker(const Model& model, Scene& scene, bool tangents) : model_(model), scene_(scene), tangents_(tangents) {}

  // Each triangle tells its own sides, so that ranges of them have nothing to do with each other; silhouettes are raised
  // afterwards.
  void FillShells(unsigned threads) {
    std::vector<Found> inRange(RangeCount(model_.TriangleCount()));
    ForEachPart(model_.shellBegin, threads, [&](std::size_t range, std::size_t s, std::size_t begin, std::size_t end) {
      SceneMaker part(model_, scene_, tangents_);
      part.Enter(s);
      for (std::size_t t = begin; t < end; ++t) part.Fill(t, inRange[range]);
    });
    // Mostly no facet beside one is narrow, and nothing there is raised.
    RunParallel(inRange.size(), threads, [&](std::size_t range) {
      std::erase_if(inRange[range].silhouettes, [&](const Side& side) {
        const ZBR_HL_TRI& t = scene_.triangles[side.triangle];
        const std::size_t begin = model_.shellBegin[model_.ShellOf(static_cast<std::uint32_t>(side.triangle))];
        return !IsNarrow(t) && !IsNarrow(scene_.triangles[begin + static_cast<std::size_t>(t.adj[side.edge])]);
      });
    });
    std::vector<Side> silhouettes;
    for (const Found& found : inRange) {
      scene_.drawable += found.drawable;
      silhouettes.insert(silhouettes.end(), found.silhouettes.begin(), found.silhouettes.end());
    }
    auto next = silhouettes.cbegin();
    for (std::size_t s = 0; s < model_.ShellCount(); ++s) {
      Enter(s);
      for (; next != silhouettes.cend() && next->triangle < model_.shellBegin[s + 1]; ++next)
        silhouettes_.push_back({next->triangle - model_.shellBegin[s], next->edge});
      RaiseSilhouettes();
      AddShell(triangles_, model_.shellBegin[s + 1] - model_.shellBegin[s]);
    }
  }

  // A triangle without width draws one edge and hides nothing.
  void FillLines(const std::vector<IntersectionLine>& lines) {
    ZBR_HL_TRI* const first = scene_.triangles.data() + model_.TriangleCount();
    scene_.crossing.clear();
    for (std::size_t k = 0; k < lines.size(); ++k) {
      ZBR_HL_TRI& triangle = first[k];
      triangle.idx = static_cast<int>(k);
      triangle.skip = false;
      triangle.pt[0] = Look(lines[k].ends[0].place);
      triangle.pt[1] = triangle.pt[2] = Look(lines[k].ends[1].place);
      for (std::size_t i = 0; i < 3; ++i) {
        triangle.profile[i] = triangle.adj[i] = triangle.adj_edge[i] = -1;
        triangle.dispj[i] = i == 0;
      }
      scene_.classes[model_.TriangleCount() + k] = {EdgeClass::kIntersection, EdgeClass::kSmooth, EdgeClass::kSmooth};
      scene_.crossing.push_back(lines[k].triangles);
    }
    scene_.drawable += lines.size();
    if (!lines.empty()) AddShell(first, lines.size());
  }

 private:
  struct Side {
    std::size_t triangle, edge;
  };

  // In a range of triangles; the silhouettes by numbers that go through all shells, each from the later one of its sides.
  struct Found {
    std::size_t drawable = 0;
    std::vector<Side> silhouettes;
  };

  // The removal of a whole scene brings its own lists; those of a hundred thousand shells would be as large as their triangles. A
  // copy has none.
  void AddShell(ZBR_HL_TRI* first, std::size_t count) {
    ZBR_HL_SHELL& shell = scene_.shells.emplace_back(withoutTriangles_);
    shell.tris = first;
    shell.count = static_cast<unsigned>(count);
  }

  ZBR_PT3 Look(const ZBR_PT3& p) const { return scene_.FromModel(p); }

  // How much a triangle faces the viewer.
  double Facing(std::size_t t) const {
    if (const auto lowered = lowered_.find(t); lowered != lowered_.end()) return lowered->second;
    const ZBR_PT3& normal = model_.normals[model_.shellBegin[shell_] + t];
    if (!scene_.view.perspective) return normal.InnerProduct(scene_.view.toViewer);
    const ZBR_PT3 toEye =
        scene_.view.perspective->eye - model_.Shell(shell_).GetTriangle(static_cast<int>(t))->GetVertex0()->GetPt();
    const double distance = toEye.Length();
    return distance > 0 ? normal.InnerProduct(toEye) / distance : 0.0;
  }

  void Enter(std::size_t s) {
    shell_ = s;
    triangles_ = scene_.triangles.data() + model_.shellBegin[s];
    classes_ = scene_.classes.data() + model_.shellBegin[s];
    lowered_.clear();
    silhouettes_.clear();
  }

  void Fill(std::size_t t, Found& found) const {
    const ZBR_ZBREPT& record = *model_.Shell(shell_).GetTriangle(static_cast<int>(t));
    ZBR_HL_TRI& triangle = triangles_[t];
    triangle.idx = static_cast<int>(t);
    triangle.skip = false;
    for (std::size_t i = 0; i < 3; ++i) {
      triangle.pt[i] = Look(VertexOf(record, i).GetPt());
      triangle.profile[i] = -1;
      FillSide(t, i, EdgeOf(record, i), found);
    }
  }

  // Of an edge between two triangles, the second one counts what there is of it.
  void FillSide(std::size_t t, std::size_t i, const ZBR_ZBREPE& edge, Found& found) const {
    const EdgeNote note = model_.Note(shell_, edge);
    const bool isBorder = edge.GetTriangle1() == nullptr;
    if (note.isJunction || isBorder) {
      SetSide(t, i, -1, -1, note.isJunction ? EdgeClass::kJunction : EdgeClass::kBorder);
      ++found.drawable;
      return;
    }
    const auto first = static_cast<std::size_t>(edge.GetTriangle0()->GetIndex());
    const ZBR_ZBREPT& other = first == t ? *edge.GetTriangle1() : *edge.GetTriangle0();
    const auto u = static_cast<std::size_t>(other.GetIndex());
    int k = 0;
    while (&EdgeOf(other, static_cast<std::size_t>(k)) != &edge) ++k;
    const EdgeClass drawn = InnerClass(t, u, edge, note);
    SetSide(t, i, other.GetIndex(), k, drawn);
    if (first == t) return;
    if (drawn != EdgeClass::kSmooth) ++found.drawable;
    if (drawn == EdgeClass::kSilhouette) found.silhouettes.push_back({model_.shellBegin[shell_] + t, i});
  }

  void SetSide(std::size_t t, std::size_t i, int adjacent, int adjacentEdge, EdgeClass edge) const {
    triangles_[t].adj[i] = adjacent;
    triangles_[t].adj_edge[i] = adjacentEdge;
    triangles_[t].dispj[i] = edge != EdgeClass::kSmooth;
    classes_[t][i] = edge;
  }

  // Along the silhouette of a rough surface edges are creases here and there, which shall not divide it.
  EdgeClass InnerClass(std::size_t t, std::size_t u, const ZBR_ZBREPE& edge, EdgeNote note) const {
    if (edge.GetShow() && !model_.isRough) return EdgeClass::kCrease;
    const EdgeClass smooth = SmoothClass(t, u, note);
    return edge.GetShow() && smooth != EdgeClass::kSilhouette ? EdgeClass::kCrease : smooth;
  }

  EdgeClass SmoothClass(std::size_t t, std::size_t u, EdgeNote note) const {
    const double here = Facing(t), other = Facing(u);
    if (IsSilhouette(here, note.isSameWay ? -other : other, model_.facing[shell_])) return EdgeClass::kSilhouette;
    return tangents_ && note.isTangent ? EdgeClass::kTangent : EdgeClass::kSmooth;
  }

  // From the silhouettes as the normals tell them. Each facet is lowered once.
  void RaiseSilhouettes() {
    while (!silhouettes_.empty()) {
      const Side side = silhouettes_.back();
      silhouettes_.pop_back();
      if (classes_[side.triangle][side.edge] != EdgeClass::kSilhouette) continue;  // raised already
      const Side other = Opposite(side);
      if (Rises(side)) Lower(side, other.triangle);
      if (Rises(other)) Lower(other, side.triangle);
    }
  }

  Side Opposite(const Side& side) const {
    const ZBR_HL_TRI& t = triangles_[side.triangle];
    return {static_cast<std::size_t>(t.adj[side.edge]), static_cast<std::size_t>(t.adj_edge[side.edge])};
  }

  // Whether a facet is narrow, its third vertex higher than a long edge of it, and another long edge there to be drawn instead.
  bool Rises(const Side& side) const {
    const ZBR_HL_TRI& t = triangles_[side.triangle];
    if (!IsNarrow(t) || lowered_.contains(side.triangle) || std::abs(Facing(side.triangle)) <= kSceneTolerance) return false;
    constexpr double kLong = 0.25;
    const double long2 = kLong * kLong * LongestEdge2(t);
    const std::size_t next = (side.edge + 1) % 3, last = (side.edge + 2) % 3;
    const ZBR_PT3 &a = t.pt[side.edge], &b = t.pt[next], &apex = t.pt[last];
    const ZBR_PT along = b.xy() - a.xy(), across = apex.xy() - a.xy();
    if (!(along.Length2() > long2) || apex.z() <= a.z() + (b.z() - a.z()) * (across.InnerProduct(along) / along.Length2()))
      return false;
    const auto isFree = [&](std::size_t i) {
      return (t.pt[(i + 1) % 3].xy() - t.pt[i].xy()).Length2() > long2 && classes_[side.triangle][i] != EdgeClass::kSilhouette;
    };
    return isFree(next) || isFree(last);
  }

  // Makes a facet face as its neighbour does. Its edges change sides with it.
  void Lower(const Side& side, std::size_t neighbour) {
    const ZBR_ZBREPT& record = *model_.Shell(shell_).GetTriangle(static_cast<int>(side.triangle));
    const double below = Facing(neighbour);
    lowered_[side.triangle] = model_.Note(shell_, EdgeOf(record, side.edge)).isSameWay ? -below : below;
    for (std::size_t i = 0; i < 3; ++i) {
      if (triangles_[side.triangle].adj[i] < 0) continue;
      const ZBR_ZBREPE& edge = EdgeOf(record, i);
      const Side other = Opposite({side.triangle, i});
      const EdgeClass drawn = InnerClass(side.triangle, other.triangle, edge, model_.Note(shell_, edge));
      scene_.drawable += drawn != EdgeClass::kSmooth ? 1 : 0;
      scene_.drawable -= classes_[side.triangle][i] != EdgeClass::kSmooth ? 1 : 0;
      SetSide(side.triangle, i, static_cast<int>(other.triangle), static_cast<int>(other.edge), drawn);
      SetSide(other.triangle, other.edge, static_cast<int>(side.triangle), static_cast<int>(i), drawn);
      if (drawn == EdgeClass::kSilhouette) silhouettes_.push_back({side.triangle, i});
    }
  }

  const Model& model_;
  Scene& scene_;
  const bool tangents_;
  const ZBR_HL_SHELL withoutTriangles_;
  // Of the shell it is at.
  std::size_t shell_ = 0;
  ZBR_HL_TRI* triangles_ = nullptr;
  std::array<EdgeClass, 3>* classes_ = nullptr;
  std::vector<Side> silhouettes_;
  std::unordered_map<std::size_t, double> lowered_;  // narrow facets: how much they are taken to face the viewer
};

}  // namespace

ZBR_PT3 Scene::FromEye(const ZBR_PT3& p) const {
  const Perspective& from = *view.perspective;
  const ZBR_PT3 q = view.In(p - from.eye);
  const double shrunk = from.distance / std::max(-q.z(), from.Nearest());
  return ZBR_PT3(q.x() * shrunk, q.y() * shrunk, from.distance * (shrunk - 1.0)) * scale;
}

void MakeScene(const Model& model, const View& view, Scene& scene, const std::vector<IntersectionLine>& lines, bool tangents,
               unsigned threads) {
  const double diagonal = model.Diagonal();
  scene.view = view;
  scene.scale = diagonal > 0 ? kSceneDiagonal / diagonal : 1.0;
  scene.contact = ContactOf(model, scene.scale);
  scene.middle = model.Centre();
  scene.offset = view.perspective ? ZBR_PT3() : view.In(model.Centre());
  scene.drawable = 0;
  scene.parts.clear();
  scene.outlines.clear();
  scene.triangles.resize(model.TriangleCount() + lines.size(), threads);
  scene.classes.resize(model.TriangleCount() + lines.size());
  scene.shells.clear();
  ReserveTouched(scene.shells, model.ShellCount() + 1, threads);
  SceneMaker maker(model, scene, tangents);
  maker.FillShells(threads);
  scene.drawable -= model.junctionCopies;
  maker.FillLines(lines);
}

Scene MakeScene(const Model& model, const View& view, const std::vector<IntersectionLine>& lines, bool tangents, unsigned threads) {
  Scene scene;
  MakeScene(model, view, scene, lines, tangents, threads);
  return scene;
}

}  // namespace zbr::drawing
