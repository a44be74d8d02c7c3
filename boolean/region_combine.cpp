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
#include "boolean/open_operations.h"
#include "boolean/rectilinear_sweep.h"
#include "boolean/region_input.h"
#include "boolean/region_walk.h"

namespace zbr {
namespace {

// Whether the walk may be tried: it knows the even-odd rule only, and no sources. A tolerance that the caller gives is meant.
bool IsWalkable(const ZBR_REGION_OPTIONS& options) {
  return options.fill_a == ZBR_FILL_EVEN_ODD && options.fill_b == ZBR_FILL_EVEN_ODD && !options.sources &&
         !(options.tolerance > 0.0);
}

// Appends what the arrangement gives of the open operations.
void Arrange(const RegionInput& input, OpenOperations& open, const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status,
             RegionProgress& progress) {
  if (input.rings().empty()) return;
  const double tolerance = input.ToleranceFor(options);
  const Overlay overlay(input.rings(), input.end(0), tolerance, tolerance);
  status.exact = true;
  double done = 0.0;
  for (const std::size_t k : open.numbers()) {
    constexpr double kShareOfSearch = 0.6;
    const double share = done / static_cast<double>(open.numbers().size());
    if (!progress.GoesOn(kShareOfSearch + (1.0 - kShareOfSearch) * share)) return;
    const auto isInside = [&, op = open.op(k)](Winding w) {
      return IsInResult(op, IsFilled(options.fill_a, w.of[0]), IsFilled(options.fill_b, w.of[1]));
    };
    ZBR_REGION_ACCESS::Append(open.formed(k), overlay.Region(isInside, options.sources), input, options);
    done += 1.0;
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
    if (!isDone && !(IsWalkable(options) && ops.size() == 1 && WalkOne(ops[0], results[0])))
      CombineOpen(ops, results, options, status, progress);
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
  // By walking, without a list of operations: what most calls of a batch come to.
  bool WalkOne(ZBR_BOOLEAN_OPE op, ZBR_REGION& result) {
    if (walk_.Prepare(input_) && walk_.Combine(op, result, true)) return true;
    walk_.Clear();
    return false;
  }

  // All operations, but that a single one isn't walked again.
  void CombineOpen(std::span<const ZBR_BOOLEAN_OPE> ops, ZBR_REGION* results, const ZBR_REGION_OPTIONS& options,
                   ZBR_REGION_STATUS& status, RegionProgress& progress) {
    OpenOperations open(ops);
    if (IsWalkable(options)) {
      if (ops.size() > 1) Walk(input_, open);
      if (!open.empty()) Sweep(open, options, progress);
      if (!open.empty()) WalkAlongContacts(input_, open);
    }
    if (!open.empty()) CombineByParts(open, options, status, progress);
    if (status.code == ZBR_REGION_OK) open.HandOver(results);
  }

  void Walk(const RegionInput& input, OpenOperations& open) {
    if (walk_.Prepare(input)) {
      open.Try([this](ZBR_BOOLEAN_OPE op, bool isLast, ZBR_REGION& result) { return walk_.Combine(op, result, isLast); });
    }
    walk_.Clear();
  }

  // Of operands whose edges are parallel to the axes. Their arrays are not looked at after the first step. Until the progress
  // function ends it.
  void Sweep(OpenOperations& open, const ZBR_REGION_OPTIONS& options, RegionProgress& progress) {
    if (!sweep_.Prepare(input_, input_.ToleranceFor(options))) return sweep_.Clear();
    const auto count = static_cast<double>(open.numbers().size());
    double done = 0.0;
    for (const std::size_t k : open.numbers()) {
      const auto goesOn = [&](double share) { return progress.GoesOn((done + share) / count); };
      if (!sweep_.Combine(open.op(k), open.formed(k), goesOn)) break;
      done += 1.0;
    }
    open.CloseAll();
  }

  // Clusters that can be walked, and the rest through the arrangement. The walk has failed for all of them together.
  void CombineByParts(OpenOperations& open, const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status,
                      RegionProgress& progress) {
    const WalkScale scale(input_.bounds());
    if (!IsWalkable(options) || !scale.isUsable || input_.rings().size() < 2)
      return Arrange(input_, open, options, status, progress);
    const Clusters clusters(input_.Boxes(), ClusterMargin(scale));
    const auto combine = [&] {
      const bool areAlike = WalkClusters(clusters, open);
      if (areAlike) Arrange(part_, open, options, status, progress);
      return areAlike;
    };
    if (combine()) return;
    open.ClearOpen();
    open.OneByOne([&](std::size_t k, std::size_t count) {
      progress.SetPart(k, count);
      combine();
      return status.code == ZBR_REGION_OK;
    });
  }

  // Forms what can be walked, and leaves in part_ what can't. False when that isn't the same for all operations.
  bool WalkClusters(const Clusters& clusters, OpenOperations& open) {
    bool areAlike = true;
    const auto tryWalk = [&](const std::vector<std::uint32_t>& items) {
      if (!areAlike) return true;
      part_.Choose(input_, items);
      OpenOperations walked = open.Anew();
      Walk(part_, walked);
      areAlike = walked.empty() || walked.numbers().size() == open.numbers().size();
      if (!walked.empty()) return false;
      for (const std::size_t k : open.numbers()) ZBR_REGION_ACCESS::Append(open.formed(k), walked.formed(k));
      return true;
    };
    part_.Choose(input_, ClusterSearch(clusters, tryWalk).Run());
    return areAlike;
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
