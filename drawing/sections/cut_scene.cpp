// Triangles clipped by planes.
//
// A scene is cut rather than the model: normals, silhouettes and creases stay those of the whole, and no sliver beside the cut gets
// a direction of its own. What is left of a triangle is a convex polygon, whose sides are parts of the triangle's edges or cuts.
// Both triangles of an edge are cut at the same point, to the bit, and their parts become neighbours again.
#include "drawing/sections/cut_scene.h"

#include <zbr/tolerance.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "drawing/sections/caps.h"
#include "drawing/sections/contours.h"
#include "drawing/sections/refilled_scene.h"

namespace zbr::drawing {
namespace {

// A side of what is left of a triangle: its edge 0, 1 or 2, or one of these.
enum : std::uint8_t { kDrawnCut = 3, kCut = 4, kInside = 5 };

// The four sides of a picture, and what is too near; a slab has two.
constexpr std::size_t kMostPlanes = 5;

constexpr std::uint32_t kNone = 0xffffffffU;

struct Corner {
  ZBR_PT3 place;                     // in the model
  std::bitset<kMostPlanes> isAbove;  // by plane
  std::uint8_t side = 0;             // from here to the next corner
};

class SceneCutter {
 public:
  SceneCutter(const Model& model, const std::vector<CuttingPlane>& planes, Scene& scene)
      : model_(model), planes_(planes), scene_(scene), out_(scene) {}

  void AddShell(std::size_t s) {
    shell_ = s;
    begin_ = out_.Count();
    heights_.clear();
    for (const CuttingPlane& cut : planes_) heights_.push_back(HeightsOf(model_, s, cut.plane));
    first_.assign(static_cast<std::size_t>(model_.Shell(s).GetEdgeCnt()), kNone);
    for (std::size_t t = model_.shellBegin[s]; t < model_.shellBegin[s + 1]; ++t) Cut(t);
  }

  // `height` is that of the section in the scene.
  void AddCover(const ZBR_REGION& region, double height) {
    for (const auto& corners : CoverOf(region)) {
      std::array<ZBR_PT3, 3> places;
      for (std::size_t i = 0; i < 3; ++i) {
        const ZBR_PT p = corners[i] * scene_.scale;
        places[i].Set(p.x(), p.y(), height);
      }
      AddTriangle(places, ScenePart{});
    }
  }

  void EndShell() { ends_.push_back(out_.Count()); }

  // Free lines run between points: what is left of each is a line again.
  void AddLines(const std::vector<IntersectionLine>& lines) {
    std::size_t kept = 0;
    for (std::size_t k = 0; k < lines.size(); ++k) {
      ZBR_PT3 from = lines[k].ends[0].place, to = lines[k].ends[1].place;
      if (!Clip(from, to)) continue;
      out_.Read(model_.TriangleCount() + k);
      ZBR_HL_TRI& line = out_.Keep(ScenePart{});
      scene_.crossing[kept++] = scene_.crossing[k];
      line.idx = static_cast<int>(kept - 1);
      line.pt[0] = scene_.FromModel(from);
      line.pt[1] = line.pt[2] = scene_.FromModel(to);
    }
    scene_.crossing.resize(kept);
    if (kept > 0) ends_.push_back(out_.Count());
  }

  void Finish() {
    out_.Finish();
    scene_.shells.clear();
    std::size_t begin = 0;
    scene_.shells.reserve(ends_.size());
    for (const std::size_t end : ends_) {
      ZBR_HL_SHELL& shell = scene_.shells.emplace_back(scene_.triangles.data() + begin, static_cast<unsigned>(end - begin));
      // The lists of a hundred thousand shells would be as large as their triangles, and the removal brings its own.
      for (auto* list :
           {&shell.tri_result, &shell.xy_result, &shell.edge_result[0], &shell.edge_result[1], &shell.edge_result[2], &shell.work})
        *list = std::vector<ZBR_HL_INTERVAL>();
      begin = end;
    }
    CountDrawable();
  }

 private:
  // A triangle gains a corner by each plane at most.
  class Polygon {
   public:
    void Add(const Corner& corner) { corners_[static_cast<std::size_t>(count_++)] = corner; }
    void Clear() { count_ = 0; }
    std::size_t Size() const { return static_cast<std::size_t>(count_); }
    const Corner& operator[](std::size_t i) const { return corners_[i]; }
    bool ReachesAbove(std::size_t plane) const {
      return std::any_of(corners_.begin(), corners_.begin() + count_, [plane](const Corner& c) { return c.isAbove[plane]; });
    }

   private:
    std::array<Corner, 3 + kMostPlanes> corners_;
    std::ptrdiff_t count_ = 0;
  };

  // Of a triangle before it was cut.
  struct Sides {
    std::array<EdgeClass, 3> classes;
    std::array<int, 3> adjacent;
  };

  const ZBR_ZBREPT& Record(std::size_t t) const {
    return *model_.Shell(shell_).GetTriangle(static_cast<int>(t - model_.shellBegin[shell_]));
  }
  double HeightAt(std::size_t k, const ZBR_ZBREPV& vertex) const { return heights_[k][NumberOf(vertex)]; }
  // The same as its index, without a look at it.
  std::size_t NumberOf(const ZBR_ZBREPV& vertex) const {
    return static_cast<std::size_t>(&vertex - model_.Shell(shell_).GetVertex(0));
  }

  // What lies below all planes stays as it is. Where corners are so close that the scene does not tell them apart the model has to.
  void Cut(std::size_t t) {
    const ZBR_ZBREPT& record = Record(t);
    const ZBR_HL_TRI& triangle = out_.Read(t);
    bool isWhole = true;
    for (const std::vector<double>& heights : heights_) {
      int above = 0;
      for (std::size_t i = 0; i < 3; ++i) above += IsAbove(heights[NumberOf(VertexOf(record, i))], InPlane::kAbove) ? 1 : 0;
      if (above == 3) return;
      isWhole = isWhole && above == 0;
    }
    const auto areApart = [&](int i, int k) { return !(triangle.pt[i] == triangle.pt[k]); };
    if (isWhole && areApart(0, 1) && areApart(1, 2) && areApart(2, 0)) {
      Keep(t, record);
    } else {
      CutInParts(t, record);
    }
  }

  void Keep(std::size_t t, const ZBR_ZBREPT& record) {
    ScenePart part;
    part.triangle = static_cast<std::uint32_t>(t);
    part.edges = {0, 1, 2};
    const std::size_t here = out_.Count();
    ZBR_HL_TRI& triangle = out_.Keep(part);
    triangle.idx = static_cast<int>(here - begin_);
    for (std::size_t i = 0; i < 3; ++i) {
      const bool isInner = std::exchange(triangle.adj[i], -1) >= 0;
      triangle.adj_edge[i] = -1;
      if (isInner) ConnectAcross(here, i, EdgeOf(record, i));
    }
  }

  void CutInParts(std::size_t t, const ZBR_ZBREPT& record) {
    Polygon polygon;
    for (std::size_t i = 0; i < 3; ++i) {
      Corner corner;
      corner.place = VertexOf(record, i).GetPt();
      corner.side = static_cast<std::uint8_t>(i);
      for (std::size_t k = 0; k < planes_.size(); ++k)
        corner.isAbove[k] = IsAbove(HeightAt(k, VertexOf(record, i)), InPlane::kAbove);
      polygon.Add(corner);
    }
    for (std::size_t k = 0; k < planes_.size(); ++k) {
      if (polygon.ReachesAbove(k)) polygon = Below(polygon, record, k);
    }
    polygon = WithLength(polygon);
    const Sides sides{out_.ClassesRead(t), std::to_array(out_.Read(t).adj)};
    for (std::size_t i = 1; i + 1 < polygon.Size(); ++i) AddPart(polygon, i, t, sides);
  }

  // The part of the polygon below plane k.
  Polygon Below(const Polygon& polygon, const ZBR_ZBREPT& record, std::size_t k) const {
    Polygon below;
    for (std::size_t i = 0; i < polygon.Size(); ++i) {
      const Corner &a = polygon[i], &b = polygon[(i + 1) % polygon.Size()];
      if (!a.isAbove[k]) below.Add(a);
      if (a.isAbove[k] == b.isAbove[k]) continue;
      Corner crossing = a;
      crossing.place = CrossingOn(record, a, b, k);
      for (std::size_t j = 0; j < planes_.size(); ++j)
        crossing.isAbove[j] = j > k && planes_[j].plane.HeightOf(crossing.place) >= 0;
      if (!a.isAbove[k]) crossing.side = planes_[k].drawn ? kDrawnCut : kCut;
      below.Add(crossing);
    }
    return below;
  }

  // On an edge of the triangle it is the same for both of the edge's triangles.
  ZBR_PT3 CrossingOn(const ZBR_ZBREPT& record, const Corner& a, const Corner& b, std::size_t k) const {
    if (a.side < kDrawnCut) {
      const ZBR_ZBREPV &from = VertexOf(record, a.side), &to = VertexOf(record, (a.side + 1U) % 3);
      const double heightFrom = HeightAt(k, from), heightTo = HeightAt(k, to);
      if ((heightFrom < 0) != (heightTo < 0)) return CrossingOf(from.GetPt(), heightFrom, to.GetPt(), heightTo);
    }
    const double heightA = planes_[k].plane.HeightOf(a.place), heightB = planes_[k].plane.HeightOf(b.place);
    return (heightA < 0) != (heightB < 0) ? CrossingOf(a.place, heightA, b.place, heightB) : a.place;
  }

  static Polygon WithLength(const Polygon& polygon) {
    Polygon kept;
    for (std::size_t i = 0; i < polygon.Size(); ++i) {
      if (!(polygon[i].place == polygon[(i + 1) % polygon.Size()].place)) kept.Add(polygon[i]);
    }
    if (kept.Size() < 3) kept.Clear();
    return kept;
  }

  // The triangle of corners 0, i and i + 1.
  void AddPart(const Polygon& polygon, std::size_t i, std::size_t t, const Sides& sides) {
    std::array<Corner, 3> corners = {polygon[0], polygon[i], polygon[i + 1]};
    if (i > 1) corners[0].side = kInside;
    if (i + 2 < polygon.Size()) corners[2].side = kInside;
    ScenePart part;
    part.triangle = static_cast<std::uint32_t>(t);
    std::array<ZBR_PT3, 3> places;
    for (std::size_t k = 0; k < 3; ++k) {
      places[k] = scene_.FromModel(corners[k].place);
      part.edges[k] = corners[k].side < kDrawnCut ? corners[k].side : EdgeRef::kAcross;
    }
    AddTriangle(places, part);
    const std::size_t here = out_.Count() - 1;
    if (i > 1) Connect(here, 0, here - 1, 2);
    for (std::size_t k = 0; k < 3; ++k) {
      if (corners[k].side < kDrawnCut) SetEdge(here, k, t, corners[k].side, sides);
      if (corners[k].side == kDrawnCut) Draw(here, k, EdgeClass::kBorder);
    }
  }

  void AddTriangle(const std::array<ZBR_PT3, 3>& places, const ScenePart& part) {
    ZBR_HL_TRI& triangle = out_.Add(part);
    triangle.idx = static_cast<int>(out_.Count() - 1 - begin_);
    triangle.skip = false;
    for (std::size_t i = 0; i < 3; ++i) {
      triangle.pt[i] = places[i];
      triangle.profile[i] = triangle.adj[i] = triangle.adj_edge[i] = -1;
      triangle.dispj[i] = false;
    }
  }

  void SetEdge(std::size_t here, std::size_t k, std::size_t t, std::size_t edge, const Sides& sides) {
    Draw(here, k, sides.classes[edge]);
    if (sides.adjacent[edge] >= 0) ConnectAcross(here, k, EdgeOf(Record(t), edge));
  }

  // With what is left on the other side of the edge, as soon as that is there.
  void ConnectAcross(std::size_t here, std::size_t k, const ZBR_ZBREPE& edge) {
    std::uint32_t& first = first_[static_cast<std::size_t>(&edge - model_.Shell(shell_).GetEdge(0))];
    if (first == kNone) {
      first = static_cast<std::uint32_t>(3 * here + k);
    } else {
      Connect(here, k, first / 3, first % 3);
    }
  }

  void Draw(std::size_t here, std::size_t k, EdgeClass edgeClass) {
    out_.Classes(here)[k] = edgeClass;
    out_.Triangle(here).dispj[k] = edgeClass != EdgeClass::kSmooth;
  }

  void Connect(std::size_t a, std::size_t i, std::size_t b, std::size_t k) {
    ZBR_HL_TRI &first = out_.Triangle(a), &second = out_.Triangle(b);
    first.adj[i] = static_cast<int>(b - begin_);
    first.adj_edge[i] = static_cast<int>(k);
    second.adj[k] = static_cast<int>(a - begin_);
    second.adj_edge[k] = static_cast<int>(i);
  }

  // Keeps what of a free line is below all planes. Nothing may be left.
  bool Clip(ZBR_PT3& from, ZBR_PT3& to) const {
    for (const CuttingPlane& cut : planes_) {
      const double a = cut.plane.HeightOf(from), b = cut.plane.HeightOf(to);
      if (a >= 0 && b >= 0) return false;
      if (a > 0) from = CrossingOf(from, a, to, b);
      if (b > 0) to = CrossingOf(from, a, to, b);
    }
    return true;
  }

  // Edges are drawn by either of their triangles.
  void CountDrawable() {
    std::size_t sides = 0;
    for (std::size_t t = 0; t < scene_.classes.size(); ++t) {
      for (std::size_t i = 0; i < 3; ++i)
        sides += scene_.classes[t][i] != EdgeClass::kSmooth ? (scene_.triangles[t].adj[i] < 0 ? 2 : 1) : 0;
    }
    scene_.drawable = sides / 2;
  }

  const Model& model_;
  const std::vector<CuttingPlane>& planes_;
  Scene& scene_;
  std::size_t shell_ = 0, begin_ = 0;         // what is being cut, and its first triangle
  std::vector<std::vector<double>> heights_;  // by plane
  std::vector<std::uint32_t> first_;          // of the shell's edges: the side met first, 3 x triangle + place
  RefilledScene out_;
  std::vector<std::size_t> ends_;  // of shells
};

}  // namespace

void CutScene(const Model& model, const std::vector<IntersectionLine>& lines, const std::vector<CuttingPlane>& planes,
              const SectionCut& section, Scene& scene) {
  const ZBR_TmpEps hold(SectionTolerance(model));
  const ZBR_PT3 inPlane = planes.front().plane.normal * planes.front().plane.offset;
  const double height = scene.FromModel(inPlane).z();
  SceneCutter cutter(model, planes, scene);
  std::size_t face = 0;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    cutter.AddShell(s);
    for (; face < section.faces.size() && section.faces[face].shell == s; ++face) cutter.AddCover(section.covers[face], height);
    cutter.EndShell();
  }
  cutter.AddLines(lines);
  cutter.Finish();
}

std::vector<CuttingPlane> PlanesOf(const SectionPlane& plane) {
  std::vector<CuttingPlane> planes = {{plane, false}};
  if (std::isfinite(plane.depth)) planes.push_back({{-plane.normal, -(plane.offset - plane.depth)}, true});
  return planes;
}

}  // namespace zbr::drawing
