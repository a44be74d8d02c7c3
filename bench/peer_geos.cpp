// GEOS, through its C interface.

#include <geos_c.h>

#include <memory>
#include <vector>

#include "geos_geometry.h"
#include "peers.h"

namespace bench {
namespace {

GEOSGeometry* Combine(const GeosContext& geos, Op op, const GEOSGeometry* a, const GEOSGeometry* b) {
  switch (op) {
    case Op::kUnion:
      return GEOSUnion_r(geos.handle(), a, b);
    case Op::kIntersection:
      return GEOSIntersection_r(geos.handle(), a, b);
    case Op::kAMinusB:
      return GEOSDifference_r(geos.handle(), a, b);
    case Op::kBMinusA:
      return GEOSDifference_r(geos.handle(), b, a);
    case Op::kXor:
      return GEOSSymDifference_r(geos.handle(), a, b);
  }
  return nullptr;
}

class GeosBoolean : public BooleanPeer {
 public:
  void Load(const RegionPair& pair) override {
    a_ = MakeGeometry(geos_, pair.a);
    b_ = MakeGeometry(geos_, pair.b);
  }
  void Run(const std::vector<Op>& ops) override {
    for (const Op op : ops) results_.push_back(geos_.Own(Combine(geos_, op, a_.get(), b_.get())));
  }
  std::vector<Summary> Describe() const override {
    std::vector<Summary> summaries;
    for (const GeosGeometry& result : results_) summaries.push_back(Summarise(geos_, result.get()));
    return summaries;
  }
  void Drop() override { results_.clear(); }

 private:
  GeosContext geos_;
  GeosGeometry a_;
  GeosGeometry b_;
  std::vector<GeosGeometry> results_;
};

class GeosPairs : public PairsPeer {
 public:
  void Load(const std::vector<RegionPair>& pairs) override {
    for (const RegionPair& pair : pairs) {
      a_.push_back(MakeGeometry(geos_, pair.a));
      b_.push_back(MakeGeometry(geos_, pair.b));
    }
  }
  void Run(Op op) override {
    for (std::size_t i = 0; i < a_.size(); ++i) results_.push_back(geos_.Own(Combine(geos_, op, a_[i].get(), b_[i].get())));
  }
  Summary Describe() const override {
    Summary summary;
    for (const GeosGeometry& result : results_) summary += Summarise(geos_, result.get());
    return summary;
  }
  void Drop() override { results_.clear(); }

 private:
  GeosContext geos_;
  std::vector<GeosGeometry> a_;
  std::vector<GeosGeometry> b_;
  std::vector<GeosGeometry> results_;
};

class GeosUnion : public RingsPeer {
 public:
  void Load(const std::vector<Ring>& rings) override { polygons_ = MakePolygons(geos_, rings); }
  void Run() override { result_ = geos_.Own(GEOSUnaryUnion_r(geos_.handle(), polygons_.get())); }
  Summary Describe() const override { return Summarise(geos_, result_.get()); }
  void Drop() override { result_.reset(); }

 private:
  GeosContext geos_;
  GeosGeometry polygons_;
  GeosGeometry result_;
};

// Nesting of rings that do not cross: the areal geometry that their lines bound.
class GeosNest : public RingsPeer {
 public:
  void Load(const std::vector<Ring>& rings) override { lines_ = MakeLines(geos_, rings); }
  void Run() override { result_ = geos_.Own(GEOSBuildArea_r(geos_.handle(), lines_.get())); }
  Summary Describe() const override { return Summarise(geos_, result_.get()); }
  void Drop() override { result_.reset(); }

 private:
  GeosContext geos_;
  GeosGeometry lines_;
  GeosGeometry result_;
};

// A prepared geometry builds its index at the first question, so Build asks one. The points are made beforehand.
class GeosPrepared : public LocatePeer {
 public:
  ~GeosPrepared() override { GEOSPreparedGeom_destroy_r(geos_.handle(), prepared_); }
  void Load(const Region& region, const std::vector<ZBR_PT>& points) override {
    region_ = MakeGeometry(geos_, region);
    for (const ZBR_PT& p : points) points_.push_back(geos_.Own(GEOSGeom_createPointFromXY_r(geos_.handle(), p.x(), p.y())));
  }
  void Build() override {
    GEOSPreparedGeom_destroy_r(geos_.handle(), prepared_);
    prepared_ = GEOSPrepare_r(geos_.handle(), region_.get());
    char inside = 0;
    Query(0, 1, &inside);
  }
  void Query(std::size_t first, std::size_t last, char* inside) const override {
    for (std::size_t i = first; i < last; ++i) {
      *inside++ = GEOSPreparedContains_r(geos_.handle(), prepared_, points_[i].get()) == 1 ? 1 : 0;
    }
  }

 private:
  GeosContext geos_;
  GeosGeometry region_;
  std::vector<GeosGeometry> points_;
  const GEOSPreparedGeometry* prepared_ = nullptr;
};

}  // namespace

std::unique_ptr<BooleanPeer> MakeGeosBoolean() {
  return std::make_unique<GeosBoolean>();
}
std::unique_ptr<PairsPeer> MakeGeosPairs() {
  return std::make_unique<GeosPairs>();
}
std::unique_ptr<RingsPeer> MakeGeosUnion() {
  return std::make_unique<GeosUnion>();
}
std::unique_ptr<RingsPeer> MakeGeosNest() {
  return std::make_unique<GeosNest>();
}
std::unique_ptr<LocatePeer> MakeGeosPrepared() {
  return std::make_unique<GeosPrepared>();
}

}  // namespace bench
