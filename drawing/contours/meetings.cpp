// Idea: a line meets a circle where it is as far from the centre as the radius, on both sides of the foot of the perpendicular; two
// circles meet on the line through the places that are equally far from both. Both come down to half a chord, sqrt((r - h) (r +
// h)), where the difference r - h tells touching from crossing: what is within the snapping distance of touching touches, in one
// place. Which pairs come near each other is found by a sweep over their boxes.
#include "drawing/contours/meetings.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace zbr::drawing {
namespace {

double Dot(const ZBR_PT& a, const ZBR_PT& b) {
  return a.x() * b.x() + a.y() * b.y();
}

double Cross(const ZBR_PT& a, const ZBR_PT& b) {
  return a.x() * b.y() - a.y() * b.x();
}

struct Places {
  int count = 0;
  ZBR_PT at[2];
};

// Half the chord that a line at this distance from the centre cuts off; negative where it misses the circle.
double HalfChord(double radius, double distance, double snap) {
  const double short_ = radius - distance;
  if (std::abs(short_) <= snap) return 0.0;
  return short_ < 0 ? -1.0 : std::sqrt(short_ * (radius + distance));
}

Places AboutFoot(const ZBR_PT& foot, const ZBR_PT& along, double half) {
  if (half < 0) return {};
  if (half == 0) return {1, {foot, foot}};
  return {2, {foot - along * half, foot + along * half}};
}

Places LineAndCircle(const ZBR_PT& from, const ZBR_PT& to, const ZBR_PT& centre, double radius, double snap) {
  const double length = from.Distance(to);
  if (!(length > 0)) return {};
  const ZBR_PT along = (to - from) * (1.0 / length);
  // From the nearer end: the foot is exact to what its distance from there allows.
  const ZBR_PT& start = from.Distance(centre) < to.Distance(centre) ? from : to;
  const ZBR_PT foot = start + along * Dot(centre - start, along);
  return AboutFoot(foot, along, HalfChord(radius, std::abs(Cross(along, centre - start)), snap));
}

Places TwoCircles(const Curve& a, const Curve& b, double snap) {
  const double r = a.u.x(), s = b.u.x(), distance = a.centre.Distance(b.centre);
  if (!(distance > snap) || distance > r + s + snap || distance < std::abs(r - s) - snap) return {};
  const ZBR_PT towards = (b.centre - a.centre) * (1.0 / distance);
  const double x = (distance + (r - s) * (r + s) / distance) / 2;
  const bool touch = std::abs(r + s - distance) <= snap || std::abs(std::abs(r - s) - distance) <= snap;
  const double half = touch ? 0.0 : HalfChord(r, std::abs(x), 0.0);
  return AboutFoot(a.centre + towards * (touch ? std::copysign(r, x) : x), ZBR_PT(-towards.y(), towards.x()), half);
}

enum class Spot { kOutside, kAtEnd, kWithin };

class Meetings {
 public:
  Meetings(std::vector<CutLine>& lines, const std::vector<Stretch>& stretches, Carriers& carriers, double snap)
      : lines_(lines), stretches_(stretches), carriers_(carriers), snap_(snap) {}

  void Run() {
    std::vector<Item> items;
    for (std::uint32_t i = 0; i < lines_.size(); ++i) items.push_back({BoxOf(lines_[i]), i, false});
    for (std::uint32_t i = 0; i < stretches_.size(); ++i) {
      if (carriers_.IsCircle(stretches_[i].carrier)) items.push_back({BoxOf(stretches_[i]), i, true});
    }
    SweepAlongLonger(items);
    std::sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
      return std::tie(a.box.xmin, a.isArc, a.index) < std::tie(b.box.xmin, b.isArc, b.index);
    });
    std::vector<const Item*> lines, arcs;  // that the sweep is in
    for (const Item& item : items) {
      Meet(item, arcs);
      if (item.isArc) Meet(item, lines);
      (item.isArc ? arcs : lines).push_back(&item);
    }
  }

 private:
  struct Item {
    Extent box;
    std::uint32_t index;
    bool isArc;
  };

  // Boxes are swept in the direction in which fewer are met at a time.
  static void SweepAlongLonger(std::vector<Item>& items) {
    Extent all;
    double width = 0.0, height = 0.0;
    for (const Item& item : items) {
      all.Add(item.box);
      width += item.box.xmax - item.box.xmin;
      height += item.box.ymax - item.box.ymin;
    }
    if (all.empty() || width * (all.ymax - all.ymin) <= height * (all.xmax - all.xmin)) return;
    for (Item& item : items) {
      std::swap(item.box.xmin, item.box.ymin);
      std::swap(item.box.xmax, item.box.ymax);
    }
  }

  void Meet(const Item& item, std::vector<const Item*>& active) {
    std::erase_if(active, [&](const Item* other) { return other->box.xmax < item.box.xmin - snap_; });
    for (const Item* const other : active) {
      if (other->box.ymax < item.box.ymin - snap_ || item.box.ymax < other->box.ymin - snap_) continue;
      if (!item.isArc) {
        MeetLine(lines_[item.index], stretches_[other->index]);
      } else if (!other->isArc) {
        MeetLine(lines_[other->index], stretches_[item.index]);
      } else {
        MeetArc(stretches_[item.index], stretches_[other->index]);
      }
    }
  }

  static Extent BoxOf(const CutLine& line) {
    Extent box;
    box.Add(line.from);
    box.Add(line.to);
    return box;
  }

  Extent BoxOf(const Stretch& stretch) const {
    constexpr double kQuarter = kFullTurn / 4;
    const Curve& circle = carriers_.curve(stretch.carrier);
    Extent box;
    if (!stretch.isWhole) {
      box.Add(stretch.from);
      box.Add(stretch.to);
    }
    const double low = std::min(stretch.t0, stretch.t1), high = std::max(stretch.t0, stretch.t1);
    for (double k = std::ceil(low / kQuarter); k * kQuarter <= high; ++k) box.Add(circle.At(k * kQuarter));
    return box;
  }

  // Where a place of the line or of the circle lies on the edge or the arc. At an end it becomes that end.
  Spot Place(const CutLine& line, ZBR_PT& p, double& t) const {
    for (const ZBR_PT& end : {line.from, line.to}) {
      if (p.Distance(end) > snap_) continue;
      p = end;
      return Spot::kAtEnd;
    }
    const ZBR_PT d = line.to - line.from;
    t = Dot(p - line.from, d) / Dot(d, d);
    return t > 0 && t < 1 ? Spot::kWithin : Spot::kOutside;
  }

  Spot Place(const Stretch& stretch, ZBR_PT& p, double& t) const {
    t = carriers_.ParameterOf(stretch.carrier, p);
    if (stretch.isWhole) return Spot::kWithin;
    for (const ZBR_PT& end : {stretch.from, stretch.to}) {
      if (p.Distance(end) > snap_) continue;
      p = end;
      return Spot::kAtEnd;
    }
    const double unwrapped = stretch.Unwrapped(t, true);
    return unwrapped < std::max(stretch.t0, stretch.t1) ? Spot::kWithin : Spot::kOutside;
  }

  void MeetLine(CutLine& line, const Stretch& stretch) {
    const Curve& circle = carriers_.curve(stretch.carrier);
    const Places places = LineAndCircle(line.from, line.to, circle.centre, circle.u.x(), snap_);
    for (int i = 0; i < places.count; ++i) {
      ZBR_PT p = places.at[i];
      double t = 0.0, angle = 0.0;
      const Spot onLine = Place(line, p, t);
      const Spot onArc = onLine == Spot::kOutside ? Spot::kOutside : Place(stretch, p, angle);
      if (onArc == Spot::kOutside) continue;
      if (onLine == Spot::kWithin) line.cuts.push_back({t, p});
      if (onArc == Spot::kWithin) carriers_.AddVertex(stretch.carrier, angle, p);
    }
  }

  void MeetArc(const Stretch& a, const Stretch& b) {
    if (a.carrier == b.carrier) return;
    // Always the same one first, whichever the sweep met first, and so the same bits.
    const bool inOrder = a.carrier < b.carrier;
    const Stretch &first = inOrder ? a : b, &second = inOrder ? b : a;
    const Places places = TwoCircles(carriers_.curve(first.carrier), carriers_.curve(second.carrier), snap_);
    for (int i = 0; i < places.count; ++i) {
      ZBR_PT p = places.at[i];
      double t = 0.0, s = 0.0;
      const Spot onFirst = Place(first, p, t);
      const Spot onSecond = onFirst == Spot::kOutside ? Spot::kOutside : Place(second, p, s);
      if (onSecond == Spot::kOutside) continue;
      if (onFirst == Spot::kWithin) carriers_.AddVertex(first.carrier, t, p);
      if (onSecond == Spot::kWithin) carriers_.AddVertex(second.carrier, s, p);
    }
  }

  std::vector<CutLine>& lines_;
  const std::vector<Stretch>& stretches_;
  Carriers& carriers_;
  double snap_;
};

// Newton's method on a(t) - b(s), with derivatives from differences.
template <class A, class B>
bool FindZero(const A& a, const B& b, double& t, double& s, ZBR_PT& at) {
  constexpr int kRounds = 30;
  constexpr double kStep = 1e-6, kFarthest = 0.3, kDone = 1e-15;
  const double t0 = t, s0 = s;
  for (int round = 0; round < kRounds; ++round) {
    const ZBR_PT d = a(t) - b(s);
    const ZBR_PT da = (a(t + kStep) - a(t - kStep)) * (0.5 / kStep), db = (b(s + kStep) - b(s - kStep)) * (0.5 / kStep);
    const double det = Cross(da, db);
    if (!(std::abs(det) > 0)) return false;
    const double dt = -Cross(d, db) / det, ds = -Cross(d, da) / det;
    t += dt;
    s += ds;
    if (!(std::abs(t - t0) < kFarthest && std::abs(s - s0) < kFarthest)) return false;
    if (std::abs(dt) <= kDone * (1 + std::abs(t)) && std::abs(ds) <= kDone * (1 + std::abs(s))) break;
  }
  at = a(t);
  const double size = std::abs(at.x()) + std::abs(at.y());
  constexpr double kMeets = 1e-13;
  return a(t).Distance(b(s)) <= kMeets * size;
}

}  // namespace

void FindMeetings(std::vector<CutLine>& lines, const std::vector<Stretch>& stretches, Carriers& carriers, double snap) {
  Meetings(lines, stretches, carriers, snap).Run();
}

bool FindCrossing(const Curve& a, const Curve& b, double& t, double& s, ZBR_PT& at) {
  return FindZero([&](double x) { return a.At(x); }, [&](double x) { return b.At(x); }, t, s, at);
}

bool FindCrossing(const Curve& a, const CutLine& line, double& t, double& s, ZBR_PT& at) {
  return FindZero([&](double x) { return a.At(x); }, [&](double x) { return line.from + (line.to - line.from) * x; }, t, s, at);
}

double NearestParameter(const Curve& curve, const ZBR_PT& p, double t) {
  constexpr int kRounds = 8;
  constexpr double kStep = 1e-6, kDone = 1e-15;
  for (int round = 0; round < kRounds; ++round) {
    const ZBR_PT along = (curve.At(t + kStep) - curve.At(t - kStep)) * (0.5 / kStep);
    const double length2 = Dot(along, along);
    if (!(length2 > 0)) break;
    const double step = Dot(p - curve.At(t), along) / length2;
    t += step;
    if (!(std::abs(step) > kDone * (1 + std::abs(t)))) break;
  }
  return t;
}

}  // namespace zbr::drawing
