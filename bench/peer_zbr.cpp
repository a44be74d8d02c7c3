// Our library.

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include <zbr/zbr.h>

#include "peers.h"
#include "zbr_loops.h"

namespace bench {
namespace {

class ZbrBoolean : public BooleanPeer {
 public:
  void Load(const RegionPair& pair) override {
    a_ = MakeNested(pair.a);
    b_ = MakeNested(pair.b);
  }
  void Run(const std::vector<Op>& ops) override {
    std::vector<ZBR_BOOLEAN_OPE> libraryOps(ops.size());
    std::transform(ops.begin(), ops.end(), libraryOps.begin(), LibraryOp);
    results_.resize(ops.size());
    zbrBooleanLoops(a_, b_, libraryOps.data(), results_.data(), static_cast<int>(ops.size()), crosses_);
  }
  std::vector<Summary> Describe() const override {
    std::vector<Summary> summaries;
    for (const LoopList& result : results_) summaries.push_back(Summarise(result));
    return summaries;
  }
  void Drop() override {
    results_.clear();
    crosses_ = {};
  }

 private:
  LoopList a_;
  LoopList b_;
  std::vector<LoopList> results_;
  std::vector<ZBR_CROSS> crosses_;
};

// The call nests in place, so each run gets fresh copies of the loops.
class ZbrNest : public RingsPeer {
 public:
  void Load(const std::vector<Ring>& rings) override {
    for (const Ring& ring : rings) original_.push_back(MakeLoop(ring));
    Drop();
  }
  void Run() override { zbrMakeLoopTree(loops_); }
  Summary Describe() const override { return Summarise(loops_); }
  void Drop() override { ZBR_LOOP::DeepCopyLoops(loops_, original_); }

 private:
  LoopList original_;
  LoopList loops_;
};

// Points within the tolerance of an edge lie on it and not inside. The peers know no tolerance, so ours is made small enough that
// no random point is that close, yet well above rounding.
constexpr double kPointTolerance = 1e-9;

class ZbrLocator : public LocatePeer {
 public:
  void Load(const Region& region, const std::vector<ZBR_PT>& points) override {
    region_ = MakeNested(region);
    points_ = points;
  }
  void Build() override { locator_ = std::make_unique<ZBR_LOOP_LOCATOR>(region_); }
  void Query(std::size_t first, std::size_t last, char* inside) const override {
    const ZBR_TmpEps tolerance(kPointTolerance);
    for (std::size_t i = first; i < last; ++i) *inside++ = locator_->IsInside(points_[i]) == ZBR_PI_IN ? 1 : 0;
  }

 private:
  LoopList region_;
  std::vector<ZBR_PT> points_;
  std::unique_ptr<ZBR_LOOP_LOCATOR> locator_;
};

// The test of one point against one ring, which has no index.
class ZbrLinear : public LocatePeer {
 public:
  void Load(const Region& region, const std::vector<ZBR_PT>& points) override {
    region_ = MakeNested(region);
    points_ = points;
  }
  void Build() override {}
  void Query(std::size_t first, std::size_t last, char* inside) const override {
    const ZBR_TmpEps tolerance(kPointTolerance);
    std::vector<ZBR_POS_PT_PT> scratch;
    for (std::size_t i = first; i < last; ++i) *inside++ = IsInside(points_[i], scratch) ? 1 : 0;
  }

 private:
  bool IsInside(const ZBR_PT& p, std::vector<ZBR_POS_PT_PT>& scratch) const {
    for (const auto& loop : region_) {
      if (zbrIsInside(p, *loop, scratch) != ZBR_PI_IN) continue;
      const auto holds = [&](const std::shared_ptr<ZBR_LOOP>& hole) { return zbrIsInside(p, *hole, scratch) != ZBR_PI_OUT; };
      if (std::none_of(loop->children().begin(), loop->children().end(), holds)) return true;
    }
    return false;
  }

  LoopList region_;
  std::vector<ZBR_PT> points_;
};

}  // namespace

std::unique_ptr<BooleanPeer> MakeZbrBoolean() {
  return std::make_unique<ZbrBoolean>();
}
std::unique_ptr<RingsPeer> MakeZbrNest() {
  return std::make_unique<ZbrNest>();
}
std::unique_ptr<LocatePeer> MakeZbrLocator() {
  return std::make_unique<ZbrLocator>();
}
std::unique_ptr<LocatePeer> MakeZbrLinear() {
  return std::make_unique<ZbrLinear>();
}

}  // namespace bench
