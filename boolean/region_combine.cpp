// Combinations of two regions.
//
// Operands in general position, which are simple rings that keep apart and meet those of the other operand in the middle of edges
// only, are walked along their crossings, in a frame where the walk's tolerance suits. All others go through the exact arrangement,
// where they are. So results are valid polygons in either case. Where the rings fall into clusters that keep apart, only those
// clusters are arranged that can't be walked.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include <zbr/region.h>

#include "boolean/clusters.h"
#include "boolean/combination.h"
#include "boolean/exact_loops.h"
#include "boolean/region_input.h"
#include "core/constants.h"
#include "core/tolerance_state.h"
#include "loops/edge_index.h"
#include "loops/simplicity.h"

namespace zbr {
namespace {

// A frame in which the extent is 2^12 to 2^13 and far coordinates become near: scaling by a power of two and the shift of an axis
// by a value close to all its coordinates are exact, so that points come back to the bit. Far from the origin crossings are rounded
// to the digits of the coordinates there; then the frame is smaller, so that the walk's tolerance is above that.
class Frame {
 public:
  explicit Frame(const Box& box) {
    constexpr int kExponent = 12;
    constexpr int kDigitsAboveRounding = 3;  // binary
    const double side = std::max(box.xmax - box.xmin, box.ymax - box.ymin);
    const double reach = std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)});
    if (!(side > 0.0)) return;
    const int finest =
        std::ilogb(kBooleanEps) - kDigitsAboveRounding - (std::ilogb(reach) - std::numeric_limits<double>::digits + 1);
    exponent_ = std::min(kExponent - std::ilogb(side), finest);
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
  // Not to change the sign of a zero, nothing is added where there is no shift.
  ZBR_PT Out(const ZBR_PT& p) const {
    const double x = p.x() * out_;
    const double y = p.y() * out_;
    return ZBR_PT(shift_.x() != 0.0 ? x + shift_.x() : x, shift_.y() != 0.0 ? y + shift_.y() : y);
  }
  // The length outside of what is `length` in the frame.
  double OutLength(double length) const { return length * out_; }

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

// Whether the rings' boxes cover what lies between them many times. Nesting rings that lie upon one another takes the square of
// their number then, unless they keep apart.
bool AreCrowded(const LoopList& loops) {
  constexpr double kOften = 8.0;
  const auto areaOf = [](const Box& box) { return (box.xmax - box.xmin) * (box.ymax - box.ymin); };
  Box all;
  double sum = 0.0;
  for (const auto& loop : loops) {
    const Box box = BoxOfRing(loop->pt());
    all.Add(box);
    sum += areaOf(box);
  }
  return sum > kOften * areaOf(all);
}

bool KeepApart(const LoopList& loops) {
  std::vector<IndexedRing> rings;
  for (const auto& loop : loops) {
    const auto n = static_cast<std::uint32_t>(loop->pt().size());
    if (n > 0) rings.push_back({BoxOfRing(loop->pt()), loop->pt().data(), n, 0, n, 0, false});
  }
  EdgeIndex index;
  index.Build(std::move(rings), 0.0, t_tolerance.eps2);
  return SimplicityOf(index, 0.0) == Simplicity::kSimple;
}

// Nested loops, or nothing when they touch or nesting leaves out a ring: one without area may still enclose something, as a figure
// of eight does.
std::optional<LoopList> LoopsIn(std::span<const RingSpan> rings, const Frame& frame) {
  LoopList loops;
  loops.reserve(rings.size());
  for (const RingSpan& ring : rings) {
    auto loop = std::make_shared<ZBR_LOOP>();
    loop->pt().reserve(ring.size());
    for (const ZBR_PT& p : ring) loop->pt().push_back(frame.In(p));
    loops.push_back(std::move(loop));
  }
  if (AreCrowded(loops) && !KeepApart(loops)) return std::nullopt;
  zbrMakeLoopTree(loops);
  if (!loops.empty() && WithinTol(loops.front()->area(), t_tolerance.eps)) return std::nullopt;
  std::size_t nested = loops.size();
  for (const auto& loop : loops) nested += loop->children().size();
  return nested == rings.size() ? std::optional(std::move(loops)) : std::nullopt;
}

// Rings of two operands.
struct Operands {
  std::vector<RingSpan> rings;
  std::size_t second = 0;  // the first ring of the second operand

  std::span<const RingSpan> a() const { return std::span(rings).first(second); }
  std::span<const RingSpan> b() const { return std::span(rings).subspan(second); }
};

// The operations of one call on parts of its operands, as walked in one frame.
class RegionWalk {
 public:
  RegionWalk(const Frame& frame, std::span<const ZBR_BOOLEAN_OPE> ops, ZBR_REGION* results)
      : frame_(frame), ops_(ops), results_(results) {}

  // Appends the results. False, with nothing appended, when they are not certain.
  bool Run(const Operands& operands) {
    const ToleranceScope tolerance(kBooleanEps);
    const std::optional<LoopList> a = LoopsIn(operands.a(), frame_);
    const std::optional<LoopList> b = LoopsIn(operands.b(), frame_);
    if (!a || !b) return false;
    std::vector<ZBR_CROSS> crosses;
    Combination combination(*a, *b, crosses);
    combination.FindCrossings(Certainty::kGeneralPosition);
    std::vector<LoopList> walked;
    for (const ZBR_BOOLEAN_OPE op : ops_) {
      std::optional<LoopList> loops = combination.Walk(op);
      if (!loops) return false;
      walked.push_back(std::move(*loops));
    }
    for (std::size_t k = 0; k < ops_.size(); ++k) {
      for (const auto& outer : walked[k]) {
        ZBR_REGION_ACCESS::AddPolygon(results_[k], *outer, [this](const ZBR_PT& p) { return frame_.Out(p); });
      }
    }
    return true;
  }

 private:
  const Frame& frame_;
  std::span<const ZBR_BOOLEAN_OPE> ops_;
  ZBR_REGION* results_;
};

// Whether the walk may be tried: it knows the even-odd rule only, and no sources. A tolerance that the caller gives is meant.
bool IsWalkable(const ZBR_REGION_OPTIONS& options) {
  return options.fill_a == ZBR_FILL_EVEN_ODD && options.fill_b == ZBR_FILL_EVEN_ODD && !options.sources &&
         !(options.tolerance > 0.0);
}

// One call.
class RegionCombination {
 public:
  RegionCombination(const RegionInput& input, std::span<const ZBR_BOOLEAN_OPE> ops, const ZBR_REGION_OPTIONS& options,
                    ZBR_REGION_STATUS& status, RegionProgress& progress)
      : input_(input), ops_(ops), options_(options), status_(status), progress_(progress), results_(ops.size()) {}

  // Empty when the caller stopped it.
  std::vector<ZBR_REGION> Run() {
    const Operands all{input_.rings(), input_.end(0)};
    const Frame frame(input_.bounds());
    if (!IsWalkable(options_) || !frame.IsUsable()) {
      Arrange(all);
    } else if (RegionWalk walk(frame, ops_, results_.data()); !walk.Run(all)) {
      const Clusters clusters(BoxesOf(all.rings), frame.OutLength(kBoxMargin));
      const auto tryWalk = [&](const std::vector<std::uint32_t>& items) { return walk.Run(Chosen(all, items)); };
      Arrange(Chosen(all, ClusterSearch(clusters, tryWalk).Run()));
    }
    if (std::any_of(results_.begin(), results_.end(), ZBR_REGION_ACCESS::IsTooLarge)) status_.code = ZBR_REGION_TOO_LARGE;
    if (status_.code != ZBR_REGION_OK) results_.clear();
    return std::move(results_);
  }

 private:
  static std::vector<Box> BoxesOf(std::span<const RingSpan> rings) {
    std::vector<Box> boxes;
    boxes.reserve(rings.size());
    for (const RingSpan& ring : rings) boxes.push_back(BoxOfRing(ring));
    return boxes;
  }

  // `items` ascend.
  static Operands Chosen(const Operands& all, const std::vector<std::uint32_t>& items) {
    Operands chosen;
    chosen.rings.reserve(items.size());
    for (const std::uint32_t i : items) {
      chosen.second += i < all.second ? 1 : 0;
      chosen.rings.push_back(all.rings[i]);
    }
    return chosen;
  }

  void Arrange(const Operands& operands) {
    if (operands.rings.empty()) return;
    const double tolerance = input_.ToleranceFor(options_);
    const Overlay overlay(operands.rings, operands.second, tolerance, tolerance);
    status_.exact = true;
    for (std::size_t k = 0; k < ops_.size(); ++k) {
      constexpr double kShareOfSearch = 0.6;
      const double share = static_cast<double>(k) / static_cast<double>(ops_.size());
      if (!progress_.GoesOn(kShareOfSearch + (1.0 - kShareOfSearch) * share)) return;
      const ZBR_BOOLEAN_OPE op = ops_[k];
      const auto isInside = [&](Winding w) {
        return IsInResult(op, IsFilled(options_.fill_a, w.of[0]), IsFilled(options_.fill_b, w.of[1]));
      };
      ZBR_REGION_ACCESS::Append(results_[k], overlay.Region(isInside, options_.sources), input_, options_);
    }
  }

  const RegionInput& input_;
  std::span<const ZBR_BOOLEAN_OPE> ops_;
  const ZBR_REGION_OPTIONS& options_;
  ZBR_REGION_STATUS& status_;
  RegionProgress& progress_;
  std::vector<ZBR_REGION> results_;
};

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrCombineRegions(const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, const ZBR_BOOLEAN_OPE* ops,
                                    ZBR_REGION* results, int count, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  if (count <= 0) return status;
  zbr::RegionInput input;
  zbr::RegionProgress progress(options, status);
  const std::span<ZBR_REGION> out(results, static_cast<std::size_t>(count));
  if (!input.Add(a, status) || !input.Add(b, status) || !progress.GoesOn(0.0)) {
    for (ZBR_REGION& result : out) result.Clear();
    return status;
  }
  std::vector<ZBR_REGION> formed =
      zbr::RegionCombination(input, {ops, static_cast<std::size_t>(count)}, options, status, progress).Run();
  formed.resize(out.size());
  for (std::size_t k = 0; k < out.size(); ++k) {
    out[k] = std::move(formed[k]);
    if (options.canonical) ZBR_REGION_ACCESS::Canonicalize(out[k]);
  }
  return status;
}

ZBR_REGION zbrCombineRegions(const ZBR_REGION& a, const ZBR_REGION& b, ZBR_BOOLEAN_OPE op, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION result;
  zbrCombineRegions(a.view(), b.view(), &op, &result, 1, options);
  return result;
}

ZBR_REGION_STATUS zbrCombineRegionPairs(const ZBR_REGION_VIEW* a, const ZBR_REGION_VIEW* b, std::size_t count, ZBR_BOOLEAN_OPE op,
                                        ZBR_REGION* results, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  for (std::size_t i = 0; i < count; ++i) {
    const ZBR_REGION_STATUS one = zbrCombineRegions(a[i], b[i], &op, &results[i], 1, options);
    if (one.code == ZBR_REGION_STOPPED) {
      for (std::size_t k = i; k < count; ++k) results[k].Clear();
      return one;
    }
    const bool exact = status.exact || one.exact;
    if (status.code == ZBR_REGION_OK && one.code != ZBR_REGION_OK) status = one;
    status.exact = exact;
  }
  return status;
}
