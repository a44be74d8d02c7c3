// Idea: where a flat face ends at a chamfer, its rim is one edge of the part, drawn or not. Facets of the chamfer bend from the
// face by angles around the chamfer's, so that at a crease angle of the same size some chords of the rim are creases and some are
// not. What belongs together is told by the flat face: the edges on its border that bend by about the angle of creases, if they lie
// on one circle and go round most of it. If then a part of them bends by that angle, or very nearly, all show.
//
// Difficulty: the rim may be in parts, as that of a hexagon's chamfer which reaches its sides is in six. So the border is taken
// ring by ring, and of a ring whatever bends that way.
#include "drawing/model/round_rims.h"

#include <zbr-drawing/circles.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "drawing/curves/circle_fit.h"
#include "drawing/model/disjoint_sets.h"
#include "drawing/model/edge_classes.h"
#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

constexpr std::size_t kFewestTriangles = 3;  // of a flat face: a facet of a round one has two
constexpr std::size_t kFewestChords = 6;
// One chord in so many bends by nearly the angle or more: inscribed facets bend by less than what they stand for, but a few do not.
constexpr std::size_t kOneIn = 10;
constexpr double kNearly = 0.96;
// Chamfers bend by less. Walls bend by 90 degrees from a flat face and are not divided otherwise by chance.
constexpr double kLargestCrease = 60.0;
constexpr double kLeastTurn = kPi;
constexpr double kOfRadius = 1e-6;       // how far points may be off the circle, as a part of the radius
constexpr double kOfChordHeight = 0.02;  // and of the distance between a chord and its arc

class RimFinder {
 public:
  RimFinder(Model& model, double creaseDegrees)
      : model_(model),
        tolerance_(PlaneTolerance(model)),
        least_(CosineOfBend(creaseDegrees * kMostOfRim)),
        most_(CosineOfBend(creaseDegrees * kLeastOfRim)),
        nearly_(CosineOfBend(creaseDegrees * kNearly)),
        face_(model.TriangleCount(), 0) {}

  void At(std::uint32_t edge) {
    const auto s = static_cast<std::size_t>(std::upper_bound(model_.edgeBegin.begin(), model_.edgeBegin.end(), edge) -
                                            model_.edgeBegin.begin() - 1);
    const ZBR_ZBREPE& record = *model_.Shell(s).GetEdge(static_cast<int>(edge - model_.edgeBegin[s]));
    for (const ZBR_ZBREPT* const t : {record.GetTriangle0(), record.GetTriangle1()}) {
      if (FaceOf(s, *t) != 0) continue;
      Grow(s, *t);
      if (triangles_.size() >= kFewestTriangles) TakeRings(s);
    }
  }

 private:
  std::uint32_t& FaceOf(std::size_t s, const ZBR_ZBREPT& t) {
    return face_[model_.shellBegin[s] + static_cast<std::uint32_t>(t.GetIndex())];
  }
  const ZBR_PT3& NormalOf(std::size_t s, const ZBR_ZBREPT& t) const {
    return model_.normals[model_.shellBegin[s] + static_cast<std::size_t>(t.GetIndex())];
  }

  // The triangles that hang together with one in its plane, but for those of other faces.
  void Grow(std::size_t s, const ZBR_ZBREPT& seed) {
    const ZBR_PT3 &normal = NormalOf(s, seed), &origin = seed.GetVertex0()->GetPt();
    FaceOf(s, seed) = ++faces_;
    triangles_.assign(1, &seed);
    for (std::size_t k = 0; k < triangles_.size(); ++k) {
      const ZBR_ZBREPT& t = *triangles_[k];
      for (std::size_t i = 0; i < 3; ++i) {
        const ZBR_ZBREPT* const u = model_.Across(s, t, EdgeOf(t, i));
        if (u == nullptr || FaceOf(s, *u) != 0 || !(NormalOf(s, *u).InnerProduct(normal) > 0)) continue;
        bool isInPlane = true;
        for (std::size_t c = 0; c < 3; ++c)
          isInPlane = isInPlane && std::abs(normal.InnerProduct(VertexOf(*u, c).GetPt() - origin)) <= tolerance_;
        if (!isInPlane) continue;
        FaceOf(s, *u) = faces_;
        triangles_.push_back(u);
      }
    }
  }

  struct BorderEdge {
    ZBR_ZBREPE* edge;
    bool isEnd;  // a border or a junction
    std::uint32_t ring = 0;
  };

  void TakeRings(std::size_t s) {
    std::vector<BorderEdge> border;
    for (const ZBR_ZBREPT* const t : triangles_) {
      for (std::size_t i = 0; i < 3; ++i) {
        ZBR_ZBREPE& edge = EdgeOf(*t, i);
        const ZBR_ZBREPT* const u = model_.Across(s, *t, edge);
        if (u == nullptr || FaceOf(s, *u) != faces_) border.push_back({&edge, u == nullptr});
      }
    }
    SetRings(border);
    std::stable_sort(border.begin(), border.end(), [](const BorderEdge& a, const BorderEdge& b) { return a.ring < b.ring; });
    std::vector<ZBR_ZBREPE*> rim;
    std::size_t sharp = 0;
    for (std::size_t k = 0; k < border.size(); ++k) {
      const double cosine = border[k].isEnd ? -1.0 : CosineOfBend(model_, s, *border[k].edge);
      if (cosine >= least_ && cosine <= most_) rim.push_back(border[k].edge);
      if (cosine >= least_ && cosine <= nearly_) ++sharp;
      if (k + 1 < border.size() && border[k + 1].ring == border[k].ring) continue;
      if (sharp * kOneIn >= rim.size() && IsRound(rim)) {
        for (ZBR_ZBREPE* const edge : rim) edge->SetShow(true);
      }
      rim.clear();
      sharp = 0;
    }
  }

  // What hangs together by its vertices.
  static void SetRings(std::vector<BorderEdge>& border) {
    std::vector<int> vertices;
    for (const BorderEdge& b : border) vertices.insert(vertices.end(), {b.edge->GetV0(), b.edge->GetV1()});
    std::sort(vertices.begin(), vertices.end());
    vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
    const auto place = [&](int v) {
      return static_cast<std::uint32_t>(std::lower_bound(vertices.begin(), vertices.end(), v) - vertices.begin());
    };
    DisjointSets rings(vertices.size());
    for (const BorderEdge& b : border) rings.Unite(place(b.edge->GetV0()), place(b.edge->GetV1()));
    for (BorderEdge& b : border) b.ring = rings.Find(place(b.edge->GetV0()));
  }

  // Whether the edges go round most of a circle.
  bool IsRound(const std::vector<ZBR_ZBREPE*>& edges) const {
    if (edges.size() < kFewestChords) return false;
    const Circle circle = CircleThroughEnds(edges);
    if (!(circle.radius > 0)) return false;
    double turn = 0.0;
    for (const ZBR_ZBREPE* const e : edges) {
      const ZBR_PT3 &a = e->GetVertex0()->GetPt(), &b = e->GetVertex1()->GetPt();
      const double chord = a.Distance(b), height = chord * chord / (8.0 * circle.radius);
      const double tolerance = std::max({tolerance_, kOfRadius * circle.radius, kOfChordHeight * height});
      if (!(DistanceTo(circle, a) <= tolerance && DistanceTo(circle, b) <= tolerance)) return false;
      turn += chord / circle.radius;
    }
    return turn > kLeastTurn;
  }

  // Through three of the edges' starts that are far apart.
  static Circle CircleThroughEnds(const std::vector<ZBR_ZBREPE*>& edges) {
    const auto farthest = [&](const auto& measure) {
      const ZBR_PT3* best = nullptr;
      double most = -1.0;
      for (const ZBR_ZBREPE* const e : edges) {
        const ZBR_PT3& p = e->GetVertex0()->GetPt();
        if (const double d = measure(p); d > most) {
          most = d;
          best = &p;
        }
      }
      return best != nullptr ? *best : edges.front()->GetVertex0()->GetPt();
    };
    const ZBR_PT3 a = edges.front()->GetVertex0()->GetPt();
    const ZBR_PT3 b = farthest([&](const ZBR_PT3& p) { return p.Distance(a); });
    const ZBR_PT3 c = farthest([&](const ZBR_PT3& p) { return std::min(p.Distance(a), p.Distance(b)); });
    return CircleThrough(a, b, c);
  }

  Model& model_;
  const double tolerance_;
  const double least_, most_, nearly_;  // cosines of bends: the largest, the smallest, and the one that is nearly a crease's
  std::uint32_t faces_ = 0;
  std::vector<std::uint32_t> face_;  // of triangles, from 1; 0 for those not looked at yet
  std::vector<const ZBR_ZBREPT*> triangles_;
};

}  // namespace

void CompleteRims(Model& model, double creaseDegrees, const std::vector<std::uint32_t>& nearly) {
  if (nearly.empty() || creaseDegrees > kLargestCrease) return;
  RimFinder finder(model, creaseDegrees);
  for (const std::uint32_t edge : nearly) finder.At(edge);
}

}  // namespace zbr::drawing
