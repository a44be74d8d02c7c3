// Combinations of two regions.
//
// Operands in general position, which are simple rings that keep apart and meet those of the other operand in the middle of edges
// only, are walked along their crossings. All others go through the exact arrangement. So results are valid polygons in either
// case.
#include <algorithm>

#include <zbr/region.h>

#include "boolean/exact_loops.h"
#include "boolean/region_input.h"
#include "boolean/region_walk.h"

namespace zbr {
namespace {

// All results by walking, unless one of them is not certain; then they hold nothing of use. A result may be the owner of an
// operand's arrays, so that those of several operations are formed before the first is handed over.
bool Walk(RegionWalk& walk, const RegionInput& input, const ZBR_BOOLEAN_OPE* ops, ZBR_REGION* results, int count) {
  if (!walk.Prepare(input)) return false;
  if (count == 1) return walk.Combine(ops[0], results[0]);
  std::vector<ZBR_REGION> formed(static_cast<std::size_t>(count));
  for (int k = 0; k < count; ++k) {
    if (!walk.Combine(ops[k], formed[static_cast<std::size_t>(k)])) return false;
  }
  std::move(formed.begin(), formed.end(), results);
  return true;
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

// What a call for one pair works with, kept for the next pair.
struct PairWork {
  RegionInput input;
  RegionWalk walk;
};

ZBR_REGION_STATUS CombinePair(PairWork& work, const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, const ZBR_BOOLEAN_OPE* ops,
                              ZBR_REGION* results, int count, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  RegionProgress progress(options, status);
  work.input.Clear();
  bool isDone = !work.input.Add(a, status) || !work.input.Add(b, status) || !progress.GoesOn(0.0);
  if (!isDone && IsWalkable(options)) {
    isDone = Walk(work.walk, work.input, ops, results, count);
    for (int k = 0; isDone && options.canonical && k < count; ++k) ZBR_REGION_ACCESS::Canonicalize(results[k]);
  }
  if (!isDone) Arrange(work.input, ops, results, count, options, status, progress);
  if (status.code == ZBR_REGION_OK) return status;
  for (int k = 0; k < count; ++k) results[k].Clear();
  return status;
}

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrCombineRegions(const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, const ZBR_BOOLEAN_OPE* ops,
                                    ZBR_REGION* results, int count, const ZBR_REGION_OPTIONS& options) {
  if (count <= 0) return {};
  zbr::PairWork work;
  return zbr::CombinePair(work, a, b, ops, results, count, options);
}

ZBR_REGION zbrCombineRegions(const ZBR_REGION& a, const ZBR_REGION& b, ZBR_BOOLEAN_OPE op, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION result;
  zbrCombineRegions(a.view(), b.view(), &op, &result, 1, options);
  return result;
}

ZBR_REGION_STATUS zbrCombineRegionPairs(const ZBR_REGION_VIEW* a, const ZBR_REGION_VIEW* b, std::size_t count, ZBR_BOOLEAN_OPE op,
                                        ZBR_REGION* results, const ZBR_REGION_OPTIONS& options) {
  ZBR_REGION_STATUS status;
  zbr::PairWork work;
  for (std::size_t i = 0; i < count; ++i) {
    const ZBR_REGION_STATUS one = zbr::CombinePair(work, a[i], b[i], &op, &results[i], 1, options);
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
