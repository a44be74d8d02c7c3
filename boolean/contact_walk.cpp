// Idea: the walk for loop lists takes contacts, and knows where it is certain of them. What it gives need not be valid, as its
// rings may touch. So the result is searched again: if its rings are simple and keep apart, it is valid, and the exact arrangement,
// which takes several times as long as all of this, isn't needed.
#include "boolean/contact_walk.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "boolean/combination.h"
#include "boolean/counted_rings.h"
#include "boolean/walk_rings.h"
#include "core/constants.h"
#include "core/tolerance_state.h"

namespace zbr {
namespace {

// A frame in which the walk's tolerance suits and far coordinates become near: scaling by a power of two and the shift of an axis
// by a value close to all its coordinates are exact, so that points come back to the bit.
class Frame {
 public:
  explicit Frame(const Box& box) {
    const double side = std::max(box.xmax - box.xmin, box.ymax - box.ymin);
    if (!(side > 0.0)) return;
    exponent_ = WalkExponent(box);
    sideExponent_ = std::ilogb(side) + exponent_;
    in_ = std::ldexp(1.0, exponent_);
    out_ = std::ldexp(1.0, -exponent_);
    shift_ = ZBR_PT(ShiftFor(box.xmin, box.xmax), ShiftFor(box.ymin, box.ymax));
  }

  // Whether the extent is large enough for the margins with which the walk searches.
  bool IsUsable() const {
    constexpr int kLeast = 2;
    constexpr int kMost = 1000;  // powers of two beyond are no ordinary numbers
    return sideExponent_ >= kLeast && std::abs(exponent_) <= kMost;
  }

  ZBR_PT In(const ZBR_PT& p) const { return (p - shift_) * in_; }
  ZBR_PT Out(const ZBR_PT& p) const { return p * out_ + shift_; }

 private:
  // Differences to a value are exact when no coordinate is more than twice or less than half of it (Sterbenz 1974).
  static double ShiftFor(double least, double most) {
    const double middle = least / 2.0 + most / 2.0;
    const double reach = std::max(std::fabs(least), std::fabs(most));
    return most - least < std::fabs(middle) / 2.0 && reach < 2.0 * std::fabs(middle) ? middle : 0.0;
  }

  int exponent_ = 0;
  int sideExponent_ = 0;
  double in_ = 1.0;
  double out_ = 1.0;
  ZBR_PT shift_;
};

// Nested loops, or nothing when nesting leaves out a ring: one without area may still enclose something, as a figure of eight does.
std::optional<LoopList> LoopsIn(std::span<const RingSpan> rings, const Frame& frame) {
  LoopList loops;
  loops.reserve(rings.size());
  for (const RingSpan& ring : rings) {
    auto loop = std::make_shared<ZBR_LOOP>();
    loop->pt().reserve(ring.size());
    for (const ZBR_PT& p : ring) loop->pt().push_back(frame.In(p));
    loops.push_back(std::move(loop));
  }
  zbrMakeLoopTree(loops);
  if (!loops.empty() && WithinTol(loops.front()->area(), t_tolerance.eps)) return std::nullopt;
  std::size_t nested = loops.size();
  for (const auto& loop : loops) nested += loop->children().size();
  return nested == rings.size() ? std::optional(std::move(loops)) : std::nullopt;
}

// Whether the rings are simple and keep apart.
bool AreApart(const LoopList& loops) {
  std::vector<RingSpan> rings;
  for (const Polygon& p : PolygonsOf(loops)) rings.emplace_back((**p.loop).pt());
  return AreSimple(rings, t_tolerance.eps);
}

// What the operations of one pair have in common.
class ContactWalk {
 public:
  ContactWalk(const RegionInput& input, const Frame& frame)
      : frame_(frame), a_(LoopsIn(input.operand(0), frame)), b_(LoopsIn(input.operand(1), frame)) {
    constexpr std::size_t kEdgesPerCrossing = 16;  // where crossings are more frequent, some touch in the result
    if (!a_ || !b_) return;
    combination_.emplace(*a_, *b_, crosses_);
    combination_->FindCrossings();
    isUsable_ = combination_->IsCertain() && crosses_.size() * kEdgesPerCrossing <= CountPoints(input.rings());
  }

  bool isUsable() const { return isUsable_; }
  // Whether one operation ended in doubt; others are in doubt then, too, which need not be by themselves.
  bool isSpent() const { return !combination_->IsCertain(); }

  // False when the result isn't certain, or not valid. After the last one, the memory is wanted for the result.
  bool Combine(ZBR_BOOLEAN_OPE op, bool isLast, ZBR_REGION& result) {
    const std::optional<LoopList> loops = combination_->Walk(op);
    if (isLast) {
      combination_.reset();
      a_.reset();
      b_.reset();
    }
    if (!loops || !AreApart(*loops)) return false;
    const std::vector<Polygon> polygons = PolygonsOf(*loops);
    std::size_t points = 0;
    for (const Polygon& p : polygons) points += (**p.loop).pt().size();
    ZBR_REGION_ACCESS::Restart(result, points, polygons.size(), loops->size());
    for (const auto& outer : *loops) ZBR_REGION_ACCESS::AddPolygon(result, *outer, [&](const ZBR_PT& p) { return frame_.Out(p); });
    return true;
  }

 private:
  const Frame& frame_;
  std::optional<LoopList> a_, b_;
  std::vector<ZBR_CROSS> crosses_;
  std::optional<Combination> combination_;
  bool isUsable_ = false;
};

}  // namespace

void WalkAlongContacts(const RegionInput& input, OpenOperations& open) {
  constexpr std::size_t kLeastEdges = 256;   // of both operands; below, the arrangement takes no time either
  constexpr std::size_t kEdgesPerRing = 32;  // of many small rings that meet some touch in the result
  const Frame frame(input.bounds());
  const std::size_t edges = CountPoints(input.rings());
  if (!frame.IsUsable() || edges < kLeastEdges || edges < kEdgesPerRing * input.rings().size()) return;
  const ToleranceScope tolerance(kBooleanEps);
  std::optional<ContactWalk> walk(std::in_place, input, frame);
  if (!walk->isUsable()) return;
  open.Try([&](ZBR_BOOLEAN_OPE op, bool isLast, ZBR_REGION& result) {
    const bool isFormed = walk->Combine(op, isLast, result);
    if (!isFormed && !isLast && walk->isSpent()) walk.emplace(input, frame);
    return isFormed;
  });
}

}  // namespace zbr
