// Idea: first the places where circles meet lines and each other are computed and made vertices of both; then chords are drawn
// between the vertices. What chords do to each other beyond that is looked for: where two cross that have no vertex there, the
// curves either cross, which is then computed for curves of any kind, or their chords are too coarse and are halved. So in the end
// chords cross as the curves do, and combinations of chords are those of curves.
#include "drawing/contours/chords.h"

#include <zbr-drawing/trigonometry.h>
#include <zbr/region.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <tuple>
#include <utility>

#include "drawing/contours/carriers.h"
#include "drawing/contours/meetings.h"

namespace zbr::drawing {
namespace {

constexpr double kSnap = 2e-12;        // of the extent; what combinations take for one place is about the same
constexpr double kSnapDigits = 4e-15;  // of the largest coordinate
constexpr int kMostRounds = 16;        // of halving: a chord's deviation becomes 1e-9 of what it was
constexpr std::size_t kMostFaults = 200000;

bool IsWholeCurve(const Path& path) {
  return path.closed && path.points.size() == 1 && path.curves.size() == 1;
}

class ChordMaker {
 public:
  ChordMaker(const std::vector<const Path*>& paths, double deviation, double snap)
      : paths_(paths), snap_(snap), carriers_(deviation, snap) {}

  ChordDrawing Run() {
    Collect();
    FindMeetings(lines_, stretches_, carriers_, snap_);
    Draw();
    for (int round = 0; round < kMostRounds && Refine(); ++round) Draw();
    ForgetWholeLines();
    return {std::move(drawn_), carriers_.curves()};
  }

 private:
  // The straight edges of all paths, and the curves, each in the order of the paths.
  void Collect() {
    std::vector<const Curve*> curves;
    for (const Path* const path : paths_) {
      auto curve = path->curves.begin();
      for (std::size_t i = 0; i < path->EdgeCount(); ++i) {
        if (curve != path->curves.end() && curve->at == i) {
          curves.push_back(&*curve++);
        } else {
          lines_.push_back({path->points[i], path->points[(i + 1) % path->points.size()], {}});
        }
      }
    }
    stretches_ = carriers_.Add(curves);
    std::size_t next = 0;
    for (const Path* const path : paths_) {
      for (const Curve& curve : path->curves) Place(stretches_[next++], curve, *path);
    }
  }

  // The ends of the curve: those of the path, unless a gap was closed there.
  void Place(Stretch& stretch, const Curve& curve, const Path& path) {
    stretch.isWhole = stretch.isWhole && IsWholeCurve(path);
    if (stretch.isWhole) return;
    const auto end = [&](const ZBR_PT& drawn, double t) {
      const ZBR_PT p = curve.At(t);
      return p.Distance(drawn) <= snap_ ? drawn : p;
    };
    stretch.from = end(path.points[curve.at], curve.t0);
    stretch.to = end(path.points[(curve.at + 1) % path.points.size()], curve.t1);
    carriers_.AddVertex(stretch.carrier, stretch.t0, stretch.from);
    carriers_.AddVertex(stretch.carrier, stretch.t1, stretch.to);
  }

  void Draw() {
    drawn_.clear();
    std::size_t line = 0, stretch = 0;
    for (const Path* const path : paths_) {
      ChordLine& chords = drawn_.emplace_back();
      auto curve = path->curves.begin();
      for (std::size_t i = 0; i < path->EdgeCount(); ++i) {
        if (curve != path->curves.end() && curve->at == i) {
          DrawCurve(stretches_[stretch++], path->points[i], path->points[(i + 1) % path->points.size()], chords);
          ++curve;
        } else {
          DrawLine(static_cast<std::int32_t>(line), chords);
          ++line;
        }
        for (std::size_t k = chords.edges.size(); k < chords.origins.size(); ++k) {
          chords.edges.push_back(i);
          if (!path->pens.empty()) chords.origins[k].pen = path->pens[i];
        }
      }
      if (!path->closed && !path->points.empty()) chords.points.push_back(path->points.back());
    }
  }

  // Only lines that were cut have to be put together again.
  void ForgetWholeLines() {
    for (ChordLine& chords : drawn_) {
      for (EdgeOrigin& origin : chords.origins) {
        if (origin.line >= 0 && lines_[static_cast<std::size_t>(origin.line)].cuts.empty()) origin.line = -1;
      }
    }
  }

  void DrawLine(std::int32_t number, ChordLine& chords) {
    CutLine& line = lines_[static_cast<std::size_t>(number)];
    std::stable_sort(line.cuts.begin(), line.cuts.end(), [](const CurveVertex& a, const CurveVertex& b) {
      return std::tuple(a.t, a.at.x(), a.at.y()) < std::tuple(b.t, b.at.x(), b.at.y());
    });
    chords.points.push_back(line.from);
    chords.origins.push_back({-1, number, 0.0, 0.0});
    for (const CurveVertex& cut : line.cuts) {
      if (cut.at.Distance(chords.points.back()) <= snap_) continue;
      chords.points.push_back(cut.at);
      chords.origins.push_back({-1, number, 0.0, 0.0});
    }
  }

  void DrawCurve(const Stretch& stretch, const ZBR_PT& from, const ZBR_PT& to, ChordLine& chords) {
    const auto carrier = static_cast<std::int32_t>(stretch.carrier);
    const std::vector<CurveVertex> vertices = carriers_.VerticesOf(stretch);
    const auto add = [&](const ZBR_PT& p, double t) {
      chords.points.push_back(p);
      chords.origins.push_back({carrier, -1, t, t});
    };
    const std::size_t first = chords.origins.size();
    if (!stretch.isWhole) {
      if (!AreIdentical(from, stretch.from)) DrawGap(from, chords);
      add(stretch.from, stretch.t0);
    }
    for (const CurveVertex& vertex : vertices) add(vertex.at, vertex.t);
    double end = stretch.t1;
    if (stretch.isWhole && !vertices.empty()) end = vertices.front().t + (stretch.t1 < stretch.t0 ? -kFullTurn : kFullTurn);
    for (std::size_t i = chords.origins.size(); i-- > first;) {
      if (chords.origins[i].curve >= 0) chords.origins[i].t1 = std::exchange(end, chords.origins[i].t0);
    }
    if (!stretch.isWhole && !AreIdentical(to, stretch.to)) DrawGap(stretch.to, chords);
  }

  static void DrawGap(const ZBR_PT& from, ChordLine& chords) {
    chords.points.push_back(from);
    chords.origins.push_back({});
  }

  // Adds vertices where chords cross that have none there. False when there is nothing to add.
  bool Refine() {
    ZBR_REGION rings;
    for (const ChordLine& line : drawn_) rings.AddRing(line.points);
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(rings.view(), faults, kMostFaults);
    bool any = false;
    for (const ZBR_REGION_FAULT& fault : faults) {
      if (fault.kind != ZBR_FAULT_CROSSING && fault.kind != ZBR_FAULT_OVERLAP) continue;
      const Edge a = EdgeAt(fault.ring_a, fault.edge_a), b = EdgeAt(fault.ring_b, fault.edge_b);
      if (a.isMissing || b.isMissing || (a.origin.curve < 0 && b.origin.curve < 0) || AreAlongEachOther(a, b)) continue;
      if (fault.kind == ZBR_FAULT_CROSSING && a.HasEnd(fault.place, snap_) && b.HasEnd(fault.place, snap_)) continue;
      any |= Separate(a, b, fault.place);
    }
    return any;
  }

  struct Edge {
    bool isMissing = false;  // what closes an open path
    EdgeOrigin origin;
    ZBR_PT from, to;

    bool HasEnd(const ZBR_PT& p, double snap) const { return p.Distance(from) <= 2 * snap || p.Distance(to) <= 2 * snap; }
    double ParameterAt(const ZBR_PT& p) const {
      const double length2 = (to - from).Length2();
      const double part = length2 > 0 ? (p - from).InnerProduct(to - from) / length2 : 0.0;
      return origin.curve < 0 ? part : origin.t0 + (origin.t1 - origin.t0) * part;
    }
    bool Holds(double t) const {
      constexpr double kSlack = 1e-9;
      const double low = origin.curve < 0 ? 0.0 : std::min(origin.t0, origin.t1);
      const double high = origin.curve < 0 ? 1.0 : std::max(origin.t0, origin.t1);
      return t >= low - kSlack && t <= high + kSlack;
    }
  };

  Edge EdgeAt(std::int32_t ring, std::int32_t edge) const {
    const ChordLine& line = drawn_[static_cast<std::size_t>(ring)];
    const auto e = static_cast<std::size_t>(edge);
    if (e >= line.origins.size()) return {true, {}, {}, {}};
    return {false, line.origins[e], line.points[e], line.points[(e + 1) % line.points.size()]};
  }

  // On one curve: the same chord or chords next to each other. Others cross only where a spline crosses itself.
  bool AreAlongEachOther(const Edge& a, const Edge& b) const {
    if (a.origin.curve != b.origin.curve) return false;
    if (carriers_.IsPeriodic(static_cast<std::uint32_t>(a.origin.curve))) return true;
    const auto [low, high] = std::minmax(a.origin.t0, a.origin.t1);
    return std::max(b.origin.t0, b.origin.t1) >= low && std::min(b.origin.t0, b.origin.t1) <= high;
  }

  // True curves of other kinds than circles may cross here; else the chords are too long.
  bool Separate(const Edge& a, const Edge& b, const ZBR_PT& place) {
    const Edge &first = a.origin.curve >= 0 ? a : b, &second = a.origin.curve >= 0 ? b : a;
    const bool isKnown = IsCircle(first) && (second.origin.curve < 0 || IsCircle(second));
    if (!isKnown && second.origin.curve >= 0) {
      const bool isNewOnFirst = Share(first, second), isNewOnSecond = Share(second, first);
      if (isNewOnFirst || isNewOnSecond) return true;
      if (RunsAlong(first, second)) return false;
    }
    if (!isKnown && AddCrossing(first, second, place)) return true;
    const bool halvedFirst = Halve(first), halvedSecond = Halve(second);
    return halvedFirst || halvedSecond;
  }

  // Ends of b that lie on the curve of a become vertices of it: so chords of curves along each other, as those of a drawing and of
  // what was cut from it before, end in the same places.
  bool Share(const Edge& a, const Edge& b) {
    const auto carrier = static_cast<std::uint32_t>(a.origin.curve);
    bool any = false;
    for (const ZBR_PT& p : {b.from, b.to}) {
      if (a.HasEnd(p, snap_ / 2)) continue;
      const double t = NearestParameter(carriers_.curve(carrier), p, a.ParameterAt(p));
      if (a.Holds(t) && carriers_.curve(carrier).At(t).Distance(p) <= snap_) any |= AddTo(a, t, p);
    }
    return any;
  }

  // Whether both have the same ends, and the middle of one is on the curve of the other.
  bool RunsAlong(const Edge& a, const Edge& b) const {
    if (!b.HasEnd(a.from, snap_) || !b.HasEnd(a.to, snap_)) return false;
    const Curve &curve = carriers_.curve(static_cast<std::uint32_t>(a.origin.curve)),
                &other = carriers_.curve(static_cast<std::uint32_t>(b.origin.curve));
    const ZBR_PT middle = curve.At((a.origin.t0 + a.origin.t1) / 2);
    return other.At(NearestParameter(other, middle, b.ParameterAt(middle))).Distance(middle) <= snap_;
  }

  bool IsCircle(const Edge& edge) const {
    return edge.origin.curve >= 0 && carriers_.IsCircle(static_cast<std::uint32_t>(edge.origin.curve));
  }

  bool AddCrossing(const Edge& a, const Edge& b, const ZBR_PT& place) {
    const auto carrier = static_cast<std::uint32_t>(a.origin.curve);
    const Curve& curve = carriers_.curve(carrier);
    double t = a.ParameterAt(place), s = b.ParameterAt(place);
    ZBR_PT at;
    if (b.origin.curve >= 0) {
      const auto other = static_cast<std::uint32_t>(b.origin.curve);
      if (!FindCrossing(curve, carriers_.curve(other), t, s, at) || !a.Holds(t) || !b.Holds(s)) return false;
      const bool isNewOnA = AddTo(a, t, at), isNewOnB = AddTo(b, s, at);
      return isNewOnA || isNewOnB;
    }
    if (!FindCrossing(curve, CutLine{b.from, b.to, {}}, t, s, at) || !a.Holds(t) || !b.Holds(s)) return false;
    const bool isNew = AddTo(a, t, at);
    if (b.HasEnd(at, snap_)) return isNew;
    return CutAt(b, at) || isNew;
  }

  bool AddTo(const Edge& edge, double t, const ZBR_PT& at) {
    if (edge.HasEnd(at, snap_ / 2)) return false;
    carriers_.AddVertex(static_cast<std::uint32_t>(edge.origin.curve), t, at);
    return true;
  }

  bool CutAt(const Edge& edge, const ZBR_PT& at) {
    if (edge.origin.line < 0) return false;  // what closes a gap
    CutLine& line = lines_[static_cast<std::size_t>(edge.origin.line)];
    const ZBR_PT d = line.to - line.from;
    line.cuts.push_back({(at - line.from).InnerProduct(d) / d.Length2(), at, false});
    return true;
  }

  bool Halve(const Edge& edge) {
    constexpr double kShortest = 16;  // snaps
    const double length = edge.from.Distance(edge.to);
    if (edge.origin.curve < 0 || length < kShortest * snap_) return false;
    const auto carrier = static_cast<std::uint32_t>(edge.origin.curve);
    const double t = (edge.origin.t0 + edge.origin.t1) / 2;
    const ZBR_PT middle = carriers_.curve(carrier).At(t);
    // A chord that is all but the curve gains nothing, and on a nearly flat ellipse there are many.
    if (std::abs((edge.to - edge.from).OuterProduct(middle - edge.from)) <= snap_ / 2 * length) return false;
    if (!halved_.insert({carrier, t}).second) return false;
    carriers_.AddVertex(carrier, t, middle);
    return true;
  }

  const std::vector<const Path*>& paths_;
  double snap_;
  Carriers carriers_;
  std::vector<CutLine> lines_;
  std::vector<Stretch> stretches_;
  std::vector<ChordLine> drawn_;
  std::set<std::pair<std::uint32_t, double>> halved_;
};

}  // namespace

ChordDrawing MakeChords(const std::vector<const Path*>& paths, double deviation) {
  ChordDrawing drawing;
  Extent extent;
  bool hasCurves = false;
  for (const Path* const path : paths) {
    for (const ZBR_PT& p : path->points) extent.Add(p);
    for (const Curve& curve : path->curves) {
      if (curve.spline != nullptr) {
        for (const ZBR_PT& p : curve.spline->control) extent.Add(p);
        continue;
      }
      for (const ZBR_PT& axis : {curve.u, curve.v}) {
        extent.Add(curve.centre + axis);
        extent.Add(curve.centre - axis);
      }
    }
    hasCurves = hasCurves || !path->curves.empty();
  }
  if (hasCurves) return ChordMaker(paths, deviation, std::max(kSnap * extent.Size(), kSnapDigits * extent.Magnitude())).Run();
  for (const Path* const path : paths) {
    ChordLine& line = drawing.lines.emplace_back(ChordLine{path->points, {}, {}});
    for (const std::int32_t pen : path->pens) line.origins.push_back({-1, -1, 0.0, 0.0, pen});
  }
  return drawing;
}

}  // namespace zbr::drawing
