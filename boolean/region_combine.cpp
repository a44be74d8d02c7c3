// Combinations of two regions.
//
// Operands in general position, which are simple rings that keep apart and meet those of the other operand in the middle of edges
// only, are walked along their crossings; large ones with few contacts, too, if the result is seen to be valid. All others go
// through the exact arrangement. So results are valid polygons in any case. Where the rings fall into clusters that keep apart,
// only those clusters are arranged that can't be walked.
#include <algorithm>
#include <cmath>

#include <zbr/region.h>

#include "boolean/clusters.h"
#include "boolean/contact_walk.h"
#include "boolean/exact_loops.h"
#include "boolean/rectilinear_sweep.h"
#include "boolean/region_input.h"
#include "boolean/region_walk.h"

namespace zbr {
namespace {

// All results by walking, unless one of them is not certain; then they hold nothing of use. A result may be the owner of an
// operand's arrays, so that those of several operations are formed before the first is handed over.
bool Walk(RegionWalk& walk, const RegionInput& input, std::span<const ZBR_BOOLEAN_OPE> ops, ZBR_REGION* results) {
  if (!walk.Prepare(input)) {
    walk.Clear();
    return false;
  }
  if (ops.size() == 1) return walk.Combine(ops[0], results[0], true);
  std::vector<ZBR_REGION> formed(ops.size());
  for (std::size_t k = 0; k < ops.size(); ++k) {
    if (!walk.Combine(ops[k], formed[k], k + 1 == ops.size())) return false;
  }
  std::move(formed.begin(), formed.end(), results);
  return true;
}

// Whether the walk may be tried: it knows the even-odd rule only, and no sources. A tolerance that the caller gives is meant.
bool IsWalkable(const ZBR_REGION_OPTIONS& options) {
  return options.fill_a == ZBR_FILL_EVEN_ODD && options.fill_b == ZBR_FILL_EVEN_ODD && !options.sources &&
         !(options.tolerance > 0.0);
}

// Appends what the arrangement gives.
void Arrange(const RegionInput& input, std::span<const ZBR_BOOLEAN_OPE> ops, std::vector<ZBR_REGION>& results,
             const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status, RegionProgress& progress) {
  if (input.rings().empty()) return;
  const double tolerance = input.ToleranceFor(options);
  const Overlay overlay(input.rings(), input.end(0), tolerance, tolerance);
  status.exact = true;
  for (std::size_t k = 0; k < ops.size(); ++k) {
    constexpr double kShareOfSearch = 0.6;
    const double share = static_cast<double>(k) / static_cast<double>(ops.size());
    if (!progress.GoesOn(kShareOfSearch + (1.0 - kShareOfSearch) * share)) return;
    const ZBR_BOOLEAN_OPE op = ops[k];
    const auto isInside = [&](Winding w) {
      return IsInResult(op, IsFilled(options.fill_a, w.of[0]), IsFilled(options.fill_b, w.of[1]));
    };
    ZBR_REGION_ACCESS::Append(results[k], overlay.Region(isInside, options.sources), input, options);
  }
}

// Nothing that lies farther apart is near for the walk.
double ClusterMargin(const WalkScale& scale) {
  constexpr double kTolerances = 16.0;
  return kTolerances * scale.eps;
}

// What calls for one pair work with, kept for the next pair.
class PairWork {
 public:
  ZBR_REGION_STATUS Combine(const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, std::span<const ZBR_BOOLEAN_OPE> ops,
                            ZBR_REGION* results, const ZBR_REGION_OPTIONS& options) {
    ZBR_REGION_STATUS status;
    RegionProgress progress(options, status);
    input_.Clear();
    bool isDone = !input_.Add(a, status) || !input_.Add(b, status) || !progress.GoesOn(0.0);
    // The unit of length changes no digit. The walk wants large operands to be ordinary ones, too.
    if (!isDone && IsWalkable(options)) input_.Scale(input_.OrdinaryExponent());
    if (!isDone && !IsWalkable(options)) input_.ScaleUp();
    if (!isDone && IsWalkable(options)) {
      isDone = Walk(walk_, input_, ops, results) || Sweep(ops, results, options, progress) ||
               WalkAlongContacts(input_, ops.data(), results, static_cast<int>(ops.size()));
    }
    if (!isDone) CombineByParts(ops, results, options, status, progress);
    if (std::any_of(results, results + ops.size(), ZBR_REGION_ACCESS::IsTooLarge)) status.code = ZBR_REGION_TOO_LARGE;
    for (std::size_t k = 0; k < ops.size(); ++k) {
      if (status.code != ZBR_REGION_OK) {
        results[k].Clear();
        continue;
      }
      ZBR_REGION_ACCESS::Scale(results[k], input_.ExponentBack());
      if (options.canonical) ZBR_REGION_ACCESS::Canonicalize(results[k]);
    }
    return status;
  }

 private:
  // Of operands whose edges are parallel to the axes. Their arrays are not looked at after the first step. True also when the
  // progress function ended it.
  bool Sweep(std::span<const ZBR_BOOLEAN_OPE> ops, ZBR_REGION* results, const ZBR_REGION_OPTIONS& options,
             RegionProgress& progress) {
    if (!sweep_.Prepare(input_, input_.ToleranceFor(options))) {
      sweep_.Clear();
      return false;
    }
    const double count = static_cast<double>(ops.size());
    for (std::size_t k = 0; k < ops.size(); ++k) {
      const auto goesOn = [&](double share) { return progress.GoesOn((static_cast<double>(k) + share) / count); };
      if (!sweep_.Combine(ops[k], results[k], goesOn)) break;
    }
    return true;
  }

  // Clusters that can be walked, and the rest through the arrangement. The walk has failed for all of them together.
  void CombineByParts(std::span<const ZBR_BOOLEAN_OPE> ops, ZBR_REGION* results, const ZBR_REGION_OPTIONS& options,
                      ZBR_REGION_STATUS& status, RegionProgress& progress) {
    std::vector<ZBR_REGION> formed(ops.size());  // a result may own an operand's arrays
    const WalkScale scale(input_.bounds());
    if (!IsWalkable(options) || !scale.isUsable || input_.rings().size() < 2) {
      Arrange(input_, ops, formed, options, status, progress);
    } else {
      const Clusters clusters(input_.Boxes(), ClusterMargin(scale));
      std::vector<ZBR_REGION> walked(ops.size());
      const auto tryWalk = [&](const std::vector<std::uint32_t>& items) {
        part_.Choose(input_, items);
        if (!Walk(walk_, part_, ops, walked.data())) return false;
        for (std::size_t k = 0; k < ops.size(); ++k) ZBR_REGION_ACCESS::Append(formed[k], walked[k]);
        return true;
      };
      part_.Choose(input_, ClusterSearch(clusters, tryWalk).Run());
      Arrange(part_, ops, formed, options, status, progress);
    }
    if (status.code == ZBR_REGION_OK) std::move(formed.begin(), formed.end(), results);
  }

  RegionInput input_;
  RegionInput part_;
  RegionWalk walk_;
  RectilinearSweep sweep_;
};

// The share of one pair as that of all of them.
struct PairsProgress {
  const ZBR_REGION_OPTIONS& options;
  double done;  // pairs
  double each;  // the share of one

  static bool Tell(double share, void* data) {
    const PairsProgress& all = *static_cast<const PairsProgress*>(data);
    return all.options.progress((all.done + share) * all.each, all.options.progress_data);
  }
};

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrCombineRegions(const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, const ZBR_BOOLEAN_OPE* ops,
                                    ZBR_REGION* results, int count, const ZBR_REGION_OPTIONS& options) {
  if (count <= 0) return {};
  return zbr::PairWork().Combine(a, b, {ops, static_cast<std::size_t>(count)}, results, options);
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
  zbr::PairsProgress progress{options, 0.0, 1.0 / static_cast<double>(count)};
  ZBR_REGION_OPTIONS ofPair = options;
  if (options.progress != nullptr) ofPair.progress = zbr::PairsProgress::Tell;
  ofPair.progress_data = &progress;
  for (std::size_t i = 0; i < count; ++i) {
    progress.done = static_cast<double>(i);
    const ZBR_REGION_STATUS one = work.Combine(a[i], b[i], {&op, 1}, &results[i], ofPair);
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
