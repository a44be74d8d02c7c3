// Idea: cylinders in line, or one in the bore of another, have one rim and one silhouette; but divided into different numbers of
// facets they have polygons beside each other, as far apart as chords from their arcs. Drawn with dashes each, they fill each
// other's gaps. A part of a hidden line that is near enough to another body's line for the same curve is left out.
// Difficulty: lines that only cross or touch are near each other there. Chords are of one circle; silhouettes stay near to each
// other for as long as they run side by side, which is much longer than they are apart. Chords of coarse circles are far apart, up
// to where they cross and become each other's crumbs; which of them stand for one arc the directions from the centre tell.
// Invariant: what is left out lies beside a line that stays, not beside one that was left out for a third.
#include "drawing/curves/doubled_curves.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <unordered_map>
#include <utility>

#include "drawing/curves/parts_beside.h"

namespace zbr::drawing {
namespace {

// In scene units: a line's width on a sheet filled by the view.
constexpr double kLineWidth = 0.2;
constexpr double kRounding = 1e-6;    // in the same: of lines that are at one place
constexpr double kLargestTurn = 0.5;  // sine of the angle between chords of one circle that are at one place

// How far the arc's middle is from the chord's.
double HeightOverChord(const Circle& circle, const ChordSides::Side& side) {
  const ZBR_PT3 middle = (side.start + side.end) * 0.5;
  return std::max(circle.radius - middle.Distance(circle.centre), 0.0);
}

// How far apart stretches of one curve may be.
double Reach(double height, double other) {
  return std::min(height + other + kRounding, kLineWidth);
}

// Of a chord of a circle seen around `centre`, the part that stands for the same arc as another chord: from where a direction from
// the centre to one end of that meets it to where the other does. Empty where the circle is seen from its side.
Part PartOfSameArc(const ZBR_PT& centre, const ZBR_SEG& chord, const ZBR_SEG& other) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const ZBR_PT a = chord.s() - centre, b = chord.e() - centre, p = other.s() - centre, q = other.e() - centre;
  const double sense = a.OuterProduct(b) < 0 ? -1.0 : 1.0, turn = sense * p.OuterProduct(q);
  if (!(sense * a.OuterProduct(b) > kRounding * a.Distance(b)) || !(std::abs(turn) > kRounding * p.Distance(q))) return kNoPart;
  // Along the chord; of ends behind the centre, beyond the end of the chord that the other chord goes to from its first end.
  const auto isAhead = [&](const ZBR_PT& end) { return sense * (a - b).OuterProduct(end) > 0; };
  const auto placeOf = [&](const ZBR_PT& end) { return a.OuterProduct(end) / (a - b).OuterProduct(end); };
  if (!isAhead(p) && !isAhead(q)) return kNoPart;
  const double from = isAhead(p) ? placeOf(p) : (turn > 0 ? -kInfinity : kInfinity);
  const double to = isAhead(q) ? placeOf(q) : (turn > 0 ? kInfinity : -kInfinity);
  return {std::max(std::min(from, to), 0.0), std::min(std::max(from, to), 1.0)};
}

// The lines that stay, by square cells; chords also by the cells of their centres.
class Kept {
 public:
  Kept(const Scene& scene, const Circles* circles, double cell) : scene_(scene), circles_(circles), cell_(cell) {}

  void Add(const CurvedStretch& stretch) {
    const auto k = static_cast<std::uint32_t>(stretches_.size());
    stretches_.push_back(stretch);
    ForEachCell(stretch.segment, [&](const Cell& at) {
      std::vector<std::uint32_t>& cell = cells_[KeyOf(at.first, at.second)];
      if (cell.empty() || cell.back() != k) cell.push_back(k);
    });
    if (stretch.circle == kNoCircle) return;
    const RimCell at = RimCellOf(stretch.circle);
    chords_[KeyOf(at.x, at.y, at.radius)].push_back(k);
    if (IsCoarse(stretch)) coarseChords_[KeyOf(at.x, at.y, at.radius)].push_back(k);
  }

  // The parts of a stretch beside which another shell's line stays, sorted.
  std::vector<Part> PartsBeside(const CurvedStretch& stretch) {
    std::vector<Part> parts;
    ForEachCell(stretch.segment, [&](const Cell& at) {
      for (std::int64_t x = at.first - 1; x <= at.first + 1; ++x) {
        for (std::int64_t y = at.second - 1; y <= at.second + 1; ++y) Collect(cells_, KeyOf(x, y), stretch.shell);
      }
    });
    ForEachFound([&](const CurvedStretch& other) { Take(PartAlong(stretch, other), parts); });
    if (stretch.circle != kNoCircle) {
      CollectChords(stretch);
      ForEachFound([&](const CurvedStretch& other) { Take(PartAround(stretch, other), parts); });
    }
    std::sort(parts.begin(), parts.end(),
              [](const Part& a, const Part& b) { return std::pair(a.from, a.to) < std::pair(b.from, b.to); });
    return parts;
  }

 private:
  using Cell = std::pair<std::int64_t, std::int64_t>;
  using Cells = std::unordered_map<std::uint64_t, std::vector<std::uint32_t>>;
  struct RimCell {
    std::int64_t x, y, radius;
  };
  static std::uint64_t KeyOf(std::int64_t x, std::int64_t y) {
    return static_cast<std::uint64_t>(x) << 32U ^ static_cast<std::uint32_t>(y);
  }
  // Cells of one key only cost time.
  static std::uint64_t KeyOf(std::int64_t x, std::int64_t y, std::int64_t radius) {
    return KeyOf(x, y) ^ static_cast<std::uint64_t>(radius) << 20U;
  }
  static void Take(const Part& part, std::vector<Part>& parts) {
    if (part.from < part.to) parts.push_back(part);
  }

  // Whether it can be farther than a line's width from a chord of the same circle that is no coarser.
  static bool IsCoarse(const CurvedStretch& chord) { return chord.height > 0.5 * kLineWidth; }

  ZBR_PT CentreOf(std::uint32_t circle) const { return scene_.FromModel(circles_->all[circle].centre).xy(); }

  // Circles that are seen as one are in the same cell or in cells next to each other.
  RimCell RimCellOf(std::uint32_t circle) const {
    const auto cellOf = [](double value) { return static_cast<std::int64_t>(std::floor(value / kLineWidth)); };
    const ZBR_PT centre = CentreOf(circle);
    return {cellOf(centre.x()), cellOf(centre.y()), cellOf(circles_->all[circle].radius * scene_.scale)};
  }

  // Cells half a cell apart along the segment: a place in it is no farther than a quarter from where one is looked up.
  template <class Use>
  void ForEachCell(const ZBR_SEG& segment, const Use& use) const {
    const ZBR_PT along = segment.e() - segment.s();
    const double steps = std::max(std::ceil(2.0 * along.Length() / cell_), 1.0);
    for (std::size_t step = 0; static_cast<double>(step) <= steps; ++step) {
      const ZBR_PT p = segment.s() + along * (static_cast<double>(step) / steps);
      use(Cell(std::floor(p.x() / cell_), std::floor(p.y() / cell_)));
    }
  }

  // Where a stretch and another stand for one curve. Places within reach of a segment are convex, so it is one part.
  Part PartAlong(const CurvedStretch& stretch, const CurvedStretch& other) const {
    const double reach = Reach(stretch.height, other.height);
    const ZBR_SEG &s = stretch.segment, &o = other.segment;
    const double length = s.s().Distance(s.e()), otherLength = o.s().Distance(o.e());
    if ((stretch.circle == kNoCircle) != (other.circle == kNoCircle) || !(length > 0 && otherLength > 0)) return kNoPart;
    const Side side(s, o, reach);
    if (stretch.circle == kNoCircle) return side.IsOneLine(length, reach) ? side.near : kNoPart;
    const double turn = std::abs((s.e() - s.s()).OuterProduct(o.e() - o.s()));
    if (turn > kLargestTurn * length * otherLength || !AreSeenAsOne(scene_, *circles_, stretch.circle, other.circle, reach))
      return kNoPart;
    Part part = side.near.from <= side.near.to ? side.near : kNoPart;
    AddDisc(s, o.s(), reach, part);
    AddDisc(s, o.e(), reach, part);
    return part;
  }

  // The same for chords farther apart than lines are wide.
  Part PartAround(const CurvedStretch& stretch, const CurvedStretch& other) const {
    const double reach = Reach(stretch.height, other.height);
    if (!AreSeenAsOne(scene_, *circles_, stretch.circle, other.circle, reach)) return kNoPart;
    const Part part = PartOfSameArc(CentreOf(stretch.circle), stretch.segment, other.segment);
    if (!(part.from < part.to)) return kNoPart;
    const double wider = reach / stretch.segment.s().Distance(stretch.segment.e());
    return {std::max(part.from - wider, 0.0), std::min(part.to + wider, 1.0)};
  }

  // Other shells' chords of what may be the same circle, where one of the two is coarse.
  void CollectChords(const CurvedStretch& stretch) {
    const Cells& chords = IsCoarse(stretch) ? chords_ : coarseChords_;
    if (chords.empty()) return;
    const RimCell at = RimCellOf(stretch.circle);
    for (std::int64_t x = at.x - 1; x <= at.x + 1; ++x) {
      for (std::int64_t y = at.y - 1; y <= at.y + 1; ++y) {
        for (std::int64_t radius = at.radius - 1; radius <= at.radius + 1; ++radius)
          Collect(chords, KeyOf(x, y, radius), stretch.shell);
      }
    }
  }

  // Each once, in their order; none is left in the list.
  template <class Use>
  void ForEachFound(const Use& use) {
    std::sort(found_.begin(), found_.end());
    found_.erase(std::unique(found_.begin(), found_.end()), found_.end());
    for (const std::uint32_t k : found_) use(stretches_[k]);
    found_.clear();
  }

  // Of the other shells.
  void Collect(const Cells& cells, std::uint64_t key, std::uint32_t shell) {
    const auto cell = cells.find(key);
    if (cell == cells.end()) return;
    std::copy_if(cell->second.begin(), cell->second.end(), std::back_inserter(found_),
                 [&](std::uint32_t k) { return stretches_[k].shell != shell; });
  }

  const Scene& scene_;
  const Circles* circles_;
  double cell_;
  std::vector<CurvedStretch> stretches_;
  Cells cells_, chords_, coarseChords_;
  std::vector<std::uint32_t> found_;
};

// Cells as long as the mean line are in number as the lines are; what is within reach is in the next cell at the farthest.
double CellFor(const std::vector<CurvedStretch>& visible, const std::vector<CurvedStretch>& hidden) {
  double length = 0.0, height = 0.0;
  for (const auto* stretches : {&visible, &hidden}) {
    for (const CurvedStretch& stretch : *stretches) {
      length += stretch.segment.s().Distance(stretch.segment.e());
      height = std::max(height, stretch.height);
    }
  }
  const auto count = static_cast<double>(std::max<std::size_t>(visible.size() + hidden.size(), 1));
  return std::max(2.0 * Reach(height, height), length / count);
}

}  // namespace

bool AreSeenAsOne(const Scene& scene, const Circles& circles, std::uint32_t a, std::uint32_t b, double reach) {
  if (a == b) return true;
  const Circle &c = circles.all[a], &d = circles.all[b];
  const double tolerance = reach / scene.scale;
  return std::abs(c.radius - d.radius) <= tolerance && c.axis.OuterProduct(d.axis).Length() * c.radius <= tolerance &&
         scene.view.In(c.centre - d.centre).xy().Length() <= tolerance;
}

bool IsCurvedChord(const Scene& scene, const Circles& circles, const ChordSides::Side& side, CurvedStretch& stretch) {
  const double height = HeightOverChord(circles.all[side.circle], side);
  stretch.circle = side.circle;
  stretch.height = height * scene.scale;
  return height > 0;
}

std::vector<PartOfStretch> WithoutDoubles(const Scene& scene, const Circles* circles, const std::vector<CurvedStretch>& visible,
                                          const std::vector<CurvedStretch>& hidden) {
  Kept kept(scene, circles, CellFor(visible, hidden));
  for (const CurvedStretch& stretch : visible) kept.Add(stretch);
  std::vector<PartOfStretch> left;
  for (std::size_t k = 0; k < hidden.size(); ++k) {
    const std::size_t before = left.size();
    double from = 0.0;
    for (const Part& part : kept.PartsBeside(hidden[k])) {
      if (part.from > from) left.push_back({k, from, part.from});
      from = std::max(from, part.to);
    }
    if (from < 1.0) left.push_back({k, from, 1.0});
    for (std::size_t i = before; i < left.size(); ++i) {
      CurvedStretch stretch = hidden[k];
      stretch.segment = left[i].Of(stretch.segment);
      kept.Add(stretch);
    }
  }
  return left;
}

}  // namespace zbr::drawing
