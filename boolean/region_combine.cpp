// Combinations of two regions.
//
// Operands in general position, which are simple rings that keep apart and meet those of the other operand in the middle of edges
// only, are walked along their crossings, in a frame where the walk's tolerance suits. All others go through the exact arrangement,
// where they are. So results are valid polygons in either case.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include <zbr/region.h>

#include "boolean/combination.h"
#include "boolean/region_input.h"
#include "core/constants.h"
#include "core/tolerance_state.h"

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

// The results by walking, or nothing when they are not certain.
std::optional<std::vector<ZBR_REGION>> Walk(const RegionInput& input, const ZBR_BOOLEAN_OPE* ops, int count) {
  const Frame frame(input.bounds());
  if (!frame.IsUsable()) return std::nullopt;
  const ToleranceScope tolerance(kBooleanEps);
  const std::optional<LoopList> a = LoopsIn(input.operand(0), frame);
  const std::optional<LoopList> b = LoopsIn(input.operand(1), frame);
  if (!a || !b) return std::nullopt;
  std::vector<ZBR_CROSS> crosses;
  Combination combination(*a, *b, crosses);
  combination.FindCrossings(Certainty::kGeneralPosition);
  std::vector<ZBR_REGION> results(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) {
    const std::optional<LoopList> loops = combination.Walk(ops[k]);
    if (!loops) return std::nullopt;
    for (const auto& outer : *loops) {
      ZBR_REGION_ACCESS::AddPolygon(results[static_cast<std::size_t>(k)], *outer, [&](const ZBR_PT& p) { return frame.Out(p); });
    }
  }
  return results;
}

// Whether the walk may be tried: it knows the even-odd rule only, and no sources. A tolerance that the caller gives is meant.
bool IsWalkable(const ZBR_REGION_OPTIONS& options) {
  return options.fill_a == ZBR_FILL_EVEN_ODD && options.fill_b == ZBR_FILL_EVEN_ODD && !options.sources &&
         !(options.tolerance > 0.0);
}

void Arrange(const RegionInput& input, const ZBR_BOOLEAN_OPE* ops, ZBR_REGION* results, int count,
             const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status, RegionProgress& progress) {
  const double tolerance = input.ToleranceFor(options);
  const Overlay overlay(input.rings(), input.end(0), tolerance, tolerance);
  status.exact = true;
  std::vector<FlatRegion> flat;
  for (int k = 0; k < count; ++k) {
    constexpr double kShareOfSearch = 0.6;
    if (!progress.GoesOn(kShareOfSearch + (1.0 - kShareOfSearch) * k / count)) return;
    const ZBR_BOOLEAN_OPE op = ops[k];
    flat.push_back(overlay.Region(
        [&](Winding w) { return IsInResult(op, IsFilled(options.fill_a, w.of[0]), IsFilled(options.fill_b, w.of[1])); },
        options.sources));
  }
  for (int k = 0; k < count; ++k) ZBR_REGION_ACCESS::Set(results[k], std::move(flat[static_cast<std::size_t>(k)]), input, options);
}

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrCombineRegions(const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, const ZBR_BOOLEAN_OPE* ops,
                                    ZBR_REGION* results, int count, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  if (count <= 0) return status;
  zbr::RegionInput input;
  zbr::RegionProgress progress(options, status);
  bool isDone = !input.Add(a, status) || !input.Add(b, status) || !progress.GoesOn(0.0);
  if (!isDone && zbr::IsWalkable(options)) {
    if (std::optional<std::vector<ZBR_REGION>> walked = zbr::Walk(input, ops, count)) {
      for (int k = 0; k < count; ++k) {
        results[k] = std::move((*walked)[static_cast<std::size_t>(k)]);
        if (options.canonical) ZBR_REGION_ACCESS::Canonicalize(results[k]);
      }
      return status;
    }
  }
  if (!isDone) zbr::Arrange(input, ops, results, count, options, status, progress);
  if (status.code == ZBR_REGION_OK) return status;
  for (int k = 0; k < count; ++k) results[k].Clear();
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
