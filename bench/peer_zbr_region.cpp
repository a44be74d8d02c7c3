// Our library, on regions as flat arrays.

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

#include <zbr/region.h>

#include "peers.h"
#include "zbr_loops.h"

namespace bench {
namespace {

void Append(const Region& region, ZBR_REGION& out) {
  for (const Polygon& polygon : region) {
    out.AddRing(polygon.outer);
    for (const Ring& hole : polygon.holes) out.AddRing(hole, false);
  }
}

ZBR_REGION MakeRegion(const Region& region) {
  ZBR_REGION made;
  Append(region, made);
  return made;
}

// Areas are computed again from the points.
Summary Summarise(const ZBR_REGION& region) {
  Summary summary;
  for (std::size_t r = 0; r < region.ring_count(); ++r) {
    summary.Add(
        Area(Ring(region.points().begin() + region.ring_offsets()[r], region.points().begin() + region.ring_offsets()[r + 1])));
  }
  return summary;
}

void Require(const ZBR_REGION_STATUS& status) {
  if (status.code != ZBR_REGION_OK) throw std::runtime_error("the region is refused");
}

// The walk along the crossings knows the even-odd rule only. By the non-zero rule the same regions, whose rings are turned as they
// should be, go through the exact arrangement.
ZBR_REGION_OPTIONS OptionsFor(bool exact) {
  ZBR_REGION_OPTIONS options;
  if (exact) options.fill_a = options.fill_b = ZBR_FILL_NON_ZERO;
  return options;
}

class ZbrRegion : public BooleanPeer {
 public:
  explicit ZbrRegion(bool exact) : options_(OptionsFor(exact)) {}

  void Load(const RegionPair& pair) override {
    a_ = MakeRegion(pair.a);
    b_ = MakeRegion(pair.b);
  }
  void Run(const std::vector<Op>& ops) override {
    std::vector<ZBR_BOOLEAN_OPE> libraryOps(ops.size());
    std::transform(ops.begin(), ops.end(), libraryOps.begin(), LibraryOp);
    results_.resize(ops.size());
    Require(zbrCombineRegions(a_.view(), b_.view(), libraryOps.data(), results_.data(), static_cast<int>(ops.size()), options_));
  }
  std::vector<Summary> Describe() const override {
    std::vector<Summary> summaries;
    for (const ZBR_REGION& result : results_) summaries.push_back(Summarise(result));
    return summaries;
  }
  void Drop() override { results_.clear(); }

 private:
  ZBR_REGION_OPTIONS options_;
  ZBR_REGION a_;
  ZBR_REGION b_;
  std::vector<ZBR_REGION> results_;
};

std::vector<ZBR_REGION_VIEW> ViewsOf(const std::vector<ZBR_REGION>& regions) {
  std::vector<ZBR_REGION_VIEW> views(regions.size());
  std::transform(regions.begin(), regions.end(), views.begin(), [](const ZBR_REGION& region) { return region.view(); });
  return views;
}

class ZbrPairs : public PairsPeer {
 public:
  explicit ZbrPairs(bool atOnce) : atOnce_(atOnce) {}

  void Load(const std::vector<RegionPair>& pairs) override {
    for (const RegionPair& pair : pairs) {
      a_.push_back(MakeRegion(pair.a));
      b_.push_back(MakeRegion(pair.b));
    }
    viewsA_ = ViewsOf(a_);
    viewsB_ = ViewsOf(b_);
  }
  void Run(Op op) override {
    const ZBR_BOOLEAN_OPE libraryOp = LibraryOp(op);
    results_.resize(a_.size());
    if (atOnce_) {
      Require(zbrCombineRegionPairs(viewsA_.data(), viewsB_.data(), a_.size(), libraryOp, results_.data()));
      return;
    }
    for (std::size_t i = 0; i < a_.size(); ++i) Require(zbrCombineRegions(viewsA_[i], viewsB_[i], &libraryOp, &results_[i], 1));
  }
  Summary Describe() const override {
    Summary summary;
    for (const ZBR_REGION& result : results_) summary += Summarise(result);
    return summary;
  }
  void Drop() override { results_.clear(); }

 private:
  bool atOnce_;
  std::vector<ZBR_REGION> a_;
  std::vector<ZBR_REGION> b_;
  std::vector<ZBR_REGION_VIEW> viewsA_;
  std::vector<ZBR_REGION_VIEW> viewsB_;
  std::vector<ZBR_REGION> results_;
};

class ZbrUnion : public RingsPeer {
 public:
  void Load(const std::vector<Ring>& rings) override {
    for (const Ring& ring : rings) regions_.push_back(MakeRegion({{ring, {}}}));
    views_ = ViewsOf(regions_);
  }
  void Run() override { Require(zbrCoverRegions(views_.data(), views_.size(), 1, result_)); }
  Summary Describe() const override { return Summarise(result_); }
  void Drop() override { result_ = {}; }

 private:
  std::vector<ZBR_REGION> regions_;
  std::vector<ZBR_REGION_VIEW> views_;
  ZBR_REGION result_;
};

}  // namespace

std::unique_ptr<BooleanPeer> MakeZbrRegion() {
  return std::make_unique<ZbrRegion>(false);
}
std::unique_ptr<BooleanPeer> MakeZbrExact() {
  return std::make_unique<ZbrRegion>(true);
}
std::unique_ptr<PairsPeer> MakeZbrPairs() {
  return std::make_unique<ZbrPairs>(true);
}
std::unique_ptr<PairsPeer> MakeZbrSinglePairs() {
  return std::make_unique<ZbrPairs>(false);
}
std::unique_ptr<RingsPeer> MakeZbrUnion() {
  return std::make_unique<ZbrUnion>();
}

}  // namespace bench
