// Boost.Geometry.

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/multi_polygon.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <cmath>
#include <memory>
#include <vector>

#include "peers.h"

namespace bench {
namespace {

namespace bg = boost::geometry;

using BoostPoint = bg::model::d2::point_xy<double>;
using BoostPolygon = bg::model::polygon<BoostPoint>;
using BoostRegion = bg::model::multi_polygon<BoostPolygon>;

template <class BoostRing>
void Copy(const Ring& ring, BoostRing& out) {
  for (const ZBR_PT& p : ring) out.emplace_back(p.x(), p.y());
}

// Rings clockwise and closed by a repeated point, the model's own convention: correct() sees to both.
BoostRegion MakeRegion(const Region& region) {
  BoostRegion result;
  result.resize(region.size());
  for (std::size_t i = 0; i < region.size(); ++i) {
    Copy(region[i].outer, result[i].outer());
    result[i].inners().resize(region[i].holes.size());
    for (std::size_t k = 0; k < region[i].holes.size(); ++k) Copy(region[i].holes[k], result[i].inners()[k]);
  }
  bg::correct(result);
  return result;
}

void Combine(Op op, const BoostRegion& a, const BoostRegion& b, BoostRegion& result) {
  switch (op) {
    case Op::kUnion:
      bg::union_(a, b, result);
      return;
    case Op::kIntersection:
      bg::intersection(a, b, result);
      return;
    case Op::kAMinusB:
      bg::difference(a, b, result);
      return;
    case Op::kBMinusA:
      bg::difference(b, a, result);
      return;
    case Op::kXor:
      bg::sym_difference(a, b, result);
      return;
  }
}

Summary Summarise(const BoostRegion& region) {
  Summary summary;
  for (const BoostPolygon& polygon : region) {
    summary.Add(std::abs(bg::area(polygon.outer())));
    for (const auto& hole : polygon.inners()) summary.Add(-std::abs(bg::area(hole)));
  }
  return summary;
}

class BoostBoolean : public BooleanPeer {
 public:
  void Load(const RegionPair& pair) override {
    a_ = MakeRegion(pair.a);
    b_ = MakeRegion(pair.b);
  }
  void Run(const std::vector<Op>& ops) override {
    for (const Op op : ops) Combine(op, a_, b_, results_.emplace_back());
  }
  std::vector<Summary> Describe() const override {
    std::vector<Summary> summaries;
    for (const BoostRegion& result : results_) summaries.push_back(Summarise(result));
    return summaries;
  }
  void Drop() override { results_.clear(); }

 private:
  BoostRegion a_;
  BoostRegion b_;
  std::vector<BoostRegion> results_;
};

class BoostPairs : public PairsPeer {
 public:
  void Load(const std::vector<RegionPair>& pairs) override {
    for (const RegionPair& pair : pairs) pairs_.push_back({MakeRegion(pair.a), MakeRegion(pair.b)});
  }
  void Run(Op op) override {
    results_.resize(pairs_.size());
    for (std::size_t i = 0; i < pairs_.size(); ++i) Combine(op, pairs_[i].a, pairs_[i].b, results_[i]);
  }
  Summary Describe() const override {
    Summary summary;
    for (const BoostRegion& result : results_) summary += Summarise(result);
    return summary;
  }
  void Drop() override { results_.clear(); }

 private:
  struct BoostPair {
    BoostRegion a;
    BoostRegion b;
  };
  std::vector<BoostPair> pairs_;
  std::vector<BoostRegion> results_;
};

// within() walks all edges for each point: there is no index to build.
class BoostLinear : public LocatePeer {
 public:
  void Load(const Region& region, const std::vector<ZBR_PT>& points) override {
    region_ = MakeRegion(region);
    Copy(points, points_);
  }
  void Build() override {}
  void Query(std::size_t first, std::size_t last, char* inside) const override {
    for (std::size_t i = first; i < last; ++i) *inside++ = bg::within(points_[i], region_) ? 1 : 0;
  }

 private:
  BoostRegion region_;
  std::vector<BoostPoint> points_;
};

}  // namespace

std::unique_ptr<BooleanPeer> MakeBoostBoolean() {
  return std::make_unique<BoostBoolean>();
}
std::unique_ptr<PairsPeer> MakeBoostPairs() {
  return std::make_unique<BoostPairs>();
}
std::unique_ptr<LocatePeer> MakeBoostLinear() {
  return std::make_unique<BoostLinear>();
}

}  // namespace bench
