// Idea: a line that was trimmed at another one, and then written with few digits, ends short of it. Every end at which no other
// path ends looks for the nearest place of all edges. When that is further than rounding, and within the tolerance, a short edge is
// drawn to it, and it becomes a vertex of its edge, so that both share it to the bit. The end itself stays where it is: moved, it
// would turn its edge away from what ends on that.
//
// Difficulty: an end that lies beyond the other line by as much has crossed it, and needs nothing: so the end has to be on the same
// side as the path a little before it. All places are found before any is drawn, so one end's does not depend on another's. Edges
// are looked at in a direction of their own: by coordinates, curves by ascending parameter.
#include "drawing/contours/short_ends.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

#include "drawing/contours/carriers.h"
#include "drawing/contours/meetings.h"
#include "drawing/points.h"

namespace zbr::drawing {
namespace {

constexpr double kMeets = 2e-12;        // of the extent: closer, an end meets the edge as it is
constexpr double kMeetsDigits = 4e-15;  // of the largest coordinate: the same
constexpr double kBefore = 16.0;        // tolerances before the end its side is told: above the tolerance, below any feature

constexpr std::size_t kMostLooks = 10'000'000;  // at ends from edges, for a note: a tenth of a second

struct EdgeId {
  std::size_t path = 0, edge = 0;
};

// A place of an edge, by its parameter: for straight edges from 0 to 1 in the path's direction.
struct Foot {
  EdgeId edge;
  double t = 0.0;
  ZBR_PT at, along;
};

struct End {
  ZBR_PT at, before;  // a little before it on its path
  std::size_t path = 0, edge = 0;
  bool isLast = false;
  double distance = std::numeric_limits<double>::infinity();
  std::vector<Foot> feet;  // the nearest one, on every edge that has it
};

const Curve* CurveOf(const Path& path, std::size_t edge) {
  const auto found = std::lower_bound(path.curves.begin(), path.curves.end(), edge,
                                      [](const Curve& curve, std::size_t at) { return curve.at < at; });
  return found != path.curves.end() && found->at == edge ? &*found : nullptr;
}

class ShortEnds {
 public:
  ShortEnds(std::vector<Path>& paths, double tolerance, double deviation)
      : paths_(paths), tolerance_(tolerance), deviation_(deviation) {
    Extent extent;
    double width = 0.0, height = 0.0;
    for (const Path& path : paths) {
      for (const ZBR_PT& p : path.points) extent.Add(p);
      for (std::size_t k = 1; k < path.points.size(); ++k) {
        const ZBR_PT d = path.points[k] - path.points[k - 1];
        width += std::abs(d.x());
        height += std::abs(d.y());
      }
    }
    isSweptUp_ = height < width;
    if (!extent.empty()) meets_ = std::max(kMeets * extent.Size(), kMeetsDigits * extent.Magnitude());
  }

  // The ends that are near edges; 0 where there is much to look at, as in hatching, of which the count would say nothing.
  std::size_t Count() {
    CollectEnds();
    Measure(kMostLooks);
    if (looks_ >= kMostLooks) return 0;
    return static_cast<std::size_t>(
        std::count_if(ends_.begin(), ends_.end(), [&](const End& end) { return end.distance <= std::max(tolerance_, meets_); }));
  }

  void Run() {
    CollectEnds();
    Measure(std::numeric_limits<std::size_t>::max());
    std::map<std::pair<std::size_t, std::size_t>, std::vector<Foot>> cuts;
    for (End& end : ends_) {
      if (!FallsShort(end)) continue;
      for (const Foot& foot : end.feet) cuts[{foot.edge.path, foot.edge.edge}].push_back(foot);
    }
    // From the last edge to the first: cuts do not change the numbers of those before.
    std::for_each(cuts.rbegin(), cuts.rend(), [&](auto& cut) { CutEdge(cut.first.first, cut.first.second, cut.second); });
    for (const End& end : ends_) {
      if (FallsShort(end)) Draw(end);
    }
  }

 private:
  ZBR_PT From(EdgeId id) const { return paths_[id.path].points[id.edge]; }
  ZBR_PT To(EdgeId id) const { return paths_[id.path].points[(id.edge + 1) % paths_[id.path].points.size()]; }

  void Measure(std::size_t mostLooks) {
    if (ends_.empty()) return;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      for (std::size_t e = 0; e < paths_[i].EdgeCount() && looks_ < mostLooks; ++e) MeasureFrom({i, e});
    }
  }

  // Ends at which no other path ends, by their coordinates.
  void CollectEnds() {
    std::vector<End> all;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      const Path& path = paths_[i];
      if (path.closed || path.points.size() < 2) continue;
      for (const bool isLast : {false, true}) {
        End end;
        end.at = isLast ? path.points.back() : path.points.front();
        end.path = i;
        end.edge = isLast ? path.points.size() - 2 : 0;
        end.isLast = isLast;
        all.push_back(std::move(end));
      }
    }
    std::sort(all.begin(), all.end(), [](const End& a, const End& b) { return IsLess(a.at, b.at); });
    for (std::size_t i = 0; i < all.size(); ++i) {
      if ((i > 0 && AreIdentical(all[i - 1].at, all[i].at)) || (i + 1 < all.size() && AreIdentical(all[i + 1].at, all[i].at)))
        continue;
      all[i].before = Before(all[i]);
      ends_.push_back(all[i]);
    }
    if (isSweptUp_) std::stable_sort(ends_.begin(), ends_.end(), [](const End& a, const End& b) { return a.at.y() < b.at.y(); });
  }

  ZBR_PT Before(const End& end) const {
    const EdgeId id{end.path, end.edge};
    const ZBR_PT other = end.isLast ? From(id) : To(id);
    const Curve* const curve = CurveOf(paths_[end.path], end.edge);
    if (curve == nullptr) {
      const double length = end.at.Distance(other);
      return length > 0 ? end.at + (other - end.at) * std::min(1.0, kBefore * tolerance_ / length) : other;
    }
    const double middle = (curve->t0 + curve->t1) / 2, t = end.isLast ? curve->t1 : curve->t0;
    const double length = curve->At(middle).Distance(end.at);
    return length > 0 ? curve->At(t + (middle - t) * std::min(1.0, kBefore * tolerance_ / length)) : other;
  }

  // Offers all ends near the edge its nearest place.
  void MeasureFrom(EdgeId id) {
    const Curve* const curve = CurveOf(paths_[id.path], id.edge);
    Extent box;
    std::vector<double> ts;
    if (curve != nullptr) {
      ts = ChordParameters(*curve, deviation_);
      ts.insert(ts.begin(), curve->t0);
      ts.push_back(curve->t1);
      std::sort(ts.begin(), ts.end());
      for (const double t : ts) box.Add(curve->At(t));
    }
    box.Add(From(id));
    box.Add(To(id));
    const double reach = tolerance_ + (curve != nullptr ? deviation_ : 0.0);
    const double first = (isSweptUp_ ? box.ymin : box.xmin) - reach, last = (isSweptUp_ ? box.ymax : box.xmax) + reach;
    auto end = std::lower_bound(ends_.begin(), ends_.end(), first, [&](const End& e, double at) { return Along(e) < at; });
    for (; end != ends_.end() && Along(*end) <= last; ++end, ++looks_) {
      const bool isBeside = isSweptUp_ ? end->at.x() < box.xmin - reach || end->at.x() > box.xmax + reach
                                       : end->at.y() < box.ymin - reach || end->at.y() > box.ymax + reach;
      if (isBeside || BelongsTo(*end, id, curve)) continue;
      Offer(*end, curve != nullptr ? NearestOn(*curve, ts, id, end->at) : NearestOn(id, end->at));
    }
  }

  double Along(const End& end) const { return isSweptUp_ ? end.at.y() : end.at.x(); }

  // The end's own edge, or one that begins where that does: a line is not short of what it leaves.
  bool BelongsTo(const End& end, EdgeId id, const Curve* curve) const {
    if (end.path == id.path && end.edge == id.edge) return true;
    const EdgeId own{end.path, end.edge};
    const ZBR_PT start = end.isLast ? From(own) : To(own);
    const bool sharesStart = AreIdentical(start, From(id)) || AreIdentical(start, To(id));
    const bool isStraight = curve == nullptr && CurveOf(paths_[end.path], end.edge) == nullptr;
    return sharesStart && (isStraight || start.Distance(end.at) <= tolerance_);
  }

  Foot NearestOn(EdgeId id, const ZBR_PT& p) const {
    ZBR_PT from = From(id), to = To(id);
    const bool isTurned = IsLess(to, from);
    if (isTurned) std::swap(from, to);
    const double t = NearestPart(p, from, to);
    return AtEnds({id, isTurned ? 1 - t : t, from + (to - from) * t, to - from});
  }

  Foot NearestOn(const Curve& curve, const std::vector<double>& ts, EdgeId id, const ZBR_PT& p) const {
    double best = std::numeric_limits<double>::infinity(), t = ts.front();
    for (std::size_t k = 0; k + 1 < ts.size(); ++k) {
      const ZBR_PT a = curve.At(ts[k]), b = curve.At(ts[k + 1]);
      const double part = NearestPart(p, a, b), distance = (a + (b - a) * part).Distance(p);
      if (distance >= best) continue;
      best = distance;
      t = ts[k] + (ts[k + 1] - ts[k]) * part;
    }
    const double refined = NearestParameter(curve, p, t);
    if (curve.At(refined).Distance(p) <= curve.At(t).Distance(p)) t = std::clamp(refined, ts.front(), ts.back());
    const double step = (ts.back() - ts.front()) / 1024;  // short, for the direction alone
    return AtEnds({id, t, curve.At(t), curve.At(t + step) - curve.At(t - step)});
  }

  // A place at an end of its edge is that end.
  Foot AtEnds(Foot foot) const {
    for (const ZBR_PT& end : {From(foot.edge), To(foot.edge)}) {
      if (foot.at.Distance(end) <= meets_) foot.at = end;
    }
    return foot;
  }

  static void Offer(End& end, const Foot& foot) {
    const double distance = foot.at.Distance(end.at);
    const bool isNearer = end.feet.empty() || std::tuple(distance, foot.at.x(), foot.at.y()) <
                                                  std::tuple(end.distance, end.feet.front().at.x(), end.feet.front().at.y());
    if (isNearer) end.feet.clear();
    if (!isNearer && !AreIdentical(foot.at, end.feet.front().at)) return;
    end.distance = distance;
    end.feet.push_back(foot);
  }

  // Whether the nearest place is near, not met yet, and the end is on this side of all that have it.
  bool FallsShort(const End& end) const {
    if (!(end.distance > meets_ && end.distance <= tolerance_)) return false;
    return std::none_of(end.feet.begin(), end.feet.end(), [&](const Foot& foot) {
      return foot.along.OuterProduct(end.at - foot.at) * foot.along.OuterProduct(end.before - foot.at) < 0;
    });
  }

  void CutEdge(std::size_t p, std::size_t edge, std::vector<Foot>& feet) {
    Path& path = paths_[p];
    const ZBR_PT from = From({p, edge}), to = To({p, edge});
    const Curve* const found = CurveOf(path, edge);
    const bool isBack = found != nullptr && found->t1 < found->t0;
    std::sort(feet.begin(), feet.end(), [&](const Foot& a, const Foot& b) { return isBack ? b.t < a.t : a.t < b.t; });
    std::erase_if(feet, [&](const Foot& foot) { return AreIdentical(foot.at, from) || AreIdentical(foot.at, to); });
    feet.erase(std::unique(feet.begin(), feet.end(), [](const Foot& a, const Foot& b) { return AreIdentical(a.at, b.at); }),
               feet.end());
    const auto here = static_cast<std::ptrdiff_t>(edge);
    std::vector<ZBR_PT> places;
    for (const Foot& foot : feet) places.push_back(foot.at);
    path.points.insert(path.points.begin() + here + 1, places.begin(), places.end());
    if (!path.pens.empty()) path.pens.insert(path.pens.begin() + here, feet.size(), path.pens[edge]);
    std::vector<Curve> curves;
    for (const Curve& curve : path.curves) {
      curves.push_back(curve);
      if (curve.at > edge) curves.back().at += feet.size();
      if (curve.at != edge) continue;
      for (const Foot& foot : feet) {
        curves.back().t1 = foot.t;
        curves.push_back(curve);
        curves.back().t0 = foot.t;
        curves.back().at = curves[curves.size() - 2].at + 1;
      }
    }
    path.curves = std::move(curves);
  }

  void Draw(const End& end) {
    Path& path = paths_[end.path];
    const ZBR_PT& to = end.feet.front().at;
    if (end.isLast) {
      path.points.push_back(to);
      if (!path.pens.empty()) path.pens.push_back(path.pens.back());
      return;
    }
    path.points.insert(path.points.begin(), to);
    if (!path.pens.empty()) path.pens.insert(path.pens.begin(), path.pens.front());
    for (Curve& curve : path.curves) ++curve.at;
  }

  std::vector<Path>& paths_;
  double tolerance_, deviation_;
  double meets_ = 0.0;
  bool isSweptUp_ = false;  // the direction in which an edge passes fewer ends
  std::vector<End> ends_;   // ascending in that direction
  std::size_t looks_ = 0;   // at ends from edges
};

}  // namespace

void LeadShortEnds(std::vector<Path>& paths, double tolerance, double deviation) {
  if (tolerance > 0) ShortEnds(paths, tolerance, deviation).Run();
}

std::size_t CountEndsOnLines(std::vector<Path> paths, double tolerance, double deviation) {
  return ShortEnds(paths, tolerance, deviation).Count();
}

}  // namespace zbr::drawing
