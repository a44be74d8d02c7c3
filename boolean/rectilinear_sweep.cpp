// Idea: where all edges are parallel to the axes, everything they do to each other shows in comparing coordinates: a crossing has
// the x of one edge and the y of the other. So nothing is rounded, and a sweep is certain of touching, overlapping and crossing
// rings alike. Going from left to right, it keeps the horizontal edges that it meets, by the numbers of their y, and which operands
// lie above each. What changes at one x begins and ends with vertical edges: between the lowest and the highest end of these, going
// up, the four quarters around a place say whether the border of the result passes it, and how.
// Coordinates that differ by no more than a tolerance would be one place for other ways of combining; such operands are left to
// them. Where they don't, no ring of a result is as narrow as that.
#include "boolean/rectilinear_sweep.h"

#include <algorithm>
#include <utility>

#include "boolean/exact_loops.h"
#include "core/assert.h"
#include "core/bits.h"
#include "core/planar_inline.h"
#include "core/radix_sort.h"
#include "core/scratch.h"

namespace zbr {
namespace {

constexpr std::uint64_t kSign = std::uint64_t{1} << 63U;

// Unsigned integers in the order of the values; both zeros are one.
std::uint64_t SortableOf(double value) {
  const std::uint64_t bits = BitsOf(value + 0.0);
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

double ValueOf(std::uint64_t sortable) {
  return DoubleOf((sortable & kSign) != 0 ? sortable & ~kSign : ~sortable);
}

RingSpan WithoutRepeatedEnd(RingSpan ring) {
  while (ring.size() > 1 && AreIdentical(ring.front(), ring.back())) ring = ring.first(ring.size() - 1);
  return ring;
}

// Whether horizontal and vertical edges take turns in a ring that doesn't end with its first point.
bool IsRectilinear(RingSpan ring) {
  constexpr std::size_t kLeastCorners = 4;
  if (ring.size() < kLeastCorners || ring.size() % 2 != 0) return false;
  const ZBR_PT* from = &ring.back();
  bool isHorizontal = from->y() == ring.front().y();
  for (const ZBR_PT& to : ring) {
    const bool isOne = isHorizontal ? from->y() == to.y() && from->x() != to.x() : from->x() == to.x() && from->y() != to.y();
    if (!isOne) return false;
    isHorizontal = !isHorizontal;
    from = &to;
  }
  return true;
}

// The values of sorted keys, each once. False when two of them are no farther apart than `least`.
template <class Items, class Key>
bool FindValues(const Items& items, Key key, double least, std::vector<double>& values) {
  values.clear();
  std::uint64_t last = 0;
  for (const auto& item : items) {
    if (!values.empty() && key(item) == last) continue;
    last = key(item);
    const double value = ValueOf(last);
    if (!values.empty() && !(value - values.back() > least)) return false;
    values.push_back(value);
  }
  return true;
}

}  // namespace

bool RectilinearSweep::Prepare(const RegionInput& input, double tolerance) {
  constexpr double kTolerancesApart = 4.0;
  const auto isRectilinear = [](RingSpan ring) { return IsRectilinear(WithoutRepeatedEnd(ring)); };
  if (!std::all_of(input.rings().begin(), input.rings().end(), isRectilinear)) return false;
  // The change at the start of a horizontal edge is that at its end, taken back, whichever way it runs.
  ends_.clear();
  ends_.reserve(CountPoints(input.rings()));
  for (const std::uint8_t side : {std::uint8_t{0}, std::uint8_t{1}}) {
    const auto operand = static_cast<std::uint8_t>(side + 1);
    for (const RingSpan& ring : input.operand(side)) {
      for (const ZBR_PT& p : WithoutRepeatedEnd(ring)) ends_.push_back({SortableOf(p.x()), SortableOf(p.y()), operand});
    }
  }
  const auto x = [](const End& end) { return end.x; };
  const auto y = [](const End& end) { return end.y; };
  RadixSort(ends_, scratch_, y);
  if (!FindValues(ends_, y, kTolerancesApart * tolerance, ys_)) return false;
  std::uint64_t last = 0;
  std::uint64_t rank = 0;
  for (End& end : ends_) {
    if (&end != ends_.data() && end.y != last) ++rank;
    last = std::exchange(end.y, rank);
  }
  RadixSort(ends_, scratch_, x);
  FreeLarge(scratch_);
  return FindValues(ends_, x, kTolerancesApart * tolerance, xs_);
}

void RectilinearSweep::Clear() {
  FreeLarge(ends_);
  FreeLarge(scratch_);
}

bool RectilinearSweep::Combine(ZBR_BOOLEAN_OPE op, ZBR_REGION& result, const std::function<bool(double)>& goesOn) {
  constexpr std::uint32_t kColumnsBetweenAnswers = 16;
  for (unsigned k = 0; k < isInside_.size(); ++k) isInside_[k] = IsInResult(op, (k & 1U) != 0, (k & 2U) != 0);
  lines_.Reset(ys_.size());
  borders_.Reset(ys_.size());
  changes_.assign(ys_.size(), 0);
  above_.assign(ys_.size(), 0);
  begin_.resize(ys_.size());
  rings_.Start(xs_, ys_);
  std::uint32_t x = 0;
  bool isOn = true;
  const auto sweep = [&](std::span<const End> ends) {
    if (x % kColumnsBetweenAnswers == 0) isOn = isOn && goesOn(x / static_cast<double>(xs_.size()));
    if (isOn) SweepColumn(x++, ends);
  };
  ForEachRun(
      ends_, [](const End& end) { return end.x; }, sweep);
  if (isOn) rings_.Write(result);
  return isOn;
}

void RectilinearSweep::SweepColumn(std::uint32_t x, std::span<const End> ends) {
  while (!ends.empty()) ends = ends.subspan(SweepUp(x, ends));
}

// Goes up from the first end as far as vertical edges go on. Returns how many ends are passed.
std::size_t RectilinearSweep::SweepUp(std::uint32_t x, std::span<const End> ends) {
  auto y = static_cast<std::uint32_t>(ends[0].y);
  const std::uint32_t below = lines_.Before(y);
  unsigned left = below == RankSet::kNone ? 0 : above_[below];  // the operands around the place to the left
  unsigned edges = 0;                                           // those whose vertical edges lie between left and right
  std::size_t next = 0;
  for (;;) {
    Quarters inside{isInside_[left], false, isInside_[left ^ edges], false};
    unsigned change = 0;
    for (; next < ends.size() && ends[next].y == y; ++next) change ^= ends[next].operand;
    left ^= changes_[y];
    edges ^= change;
    inside.leftAbove = isInside_[left];
    inside.rightAbove = isInside_[left ^ edges];
    Border(x, y, inside);
    changes_[y] ^= static_cast<std::uint8_t>(change);
    above_[y] = static_cast<std::uint8_t>(left ^ edges);
    if (changes_[y] != 0) {
      lines_.Set(y);
    } else {
      lines_.Clear(y);
    }
    if (edges == 0) return next;
    y = lines_.From(y + 1);
    if (next < ends.size()) y = std::min(y, static_cast<std::uint32_t>(ends[next].y));
    ZBR_ASSERT(y != RankSet::kNone);
  }
}

// Up to four edges of the result meet in a point. Two that run straight on make no corner. With four, the quarters inside lie
// opposite each other, and each has a corner.
void RectilinearSweep::Border(std::uint32_t x, std::uint32_t y, const Quarters& inside) {
  const bool left = inside.leftBelow != inside.leftAbove;
  const bool right = inside.rightBelow != inside.rightAbove;
  const bool below = inside.leftBelow != inside.rightBelow;
  const bool above = inside.leftAbove != inside.rightAbove;
  if (!(left || right) || !(below || above)) return;
  const bool areTwo = left && right;
  const bool isRising = inside.leftBelow;  // of two: they lie in the quarters to the lower left and the upper right
  const bool isConvex =
      areTwo || (right ? (above ? inside.rightAbove : inside.rightBelow) : (above ? inside.leftAbove : inside.leftBelow));
  const bool leavesHorizontally = isConvex == (areTwo ? isRising : right == above);
  const std::uint32_t first = rings_.Add(x, y, leavesHorizontally, false);  // of two, the left one
  const std::uint32_t second = areTwo ? rings_.Add(x, y, leavesHorizontally, true) : first;
  const bool mayBeginHole = right && above && !inside.rightAbove;
  if (mayBeginHole) rings_.NoteBelow(first, begin_[borders_.Before(y)]);
  if (left) rings_.LinkHorizontally(begin_[y], first);
  if (left && !right) borders_.Clear(y);
  if (right && !left) borders_.Set(y);
  if (right) begin_[y] = second;
  if (below) rings_.LinkVertically(rising_, isRising ? first : second);
  if (above) rising_ = isRising ? second : first;
}

}  // namespace zbr
