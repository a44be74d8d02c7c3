// The union of triangles by GEOS, which unites neighbours first and then what they became.

#include "geos_geometry.h"
#include "outline_peer.h"

namespace bench {
namespace {

class GeosOutline final : public OutlinePeer {
 public:
  void Load(const std::vector<Ring>& triangles) override { triangles_ = MakePolygons(geos_, triangles); }
  void Run() override { union_ = geos_.Own(GEOSUnaryUnion_r(geos_.handle(), triangles_.get())); }
  Summary Describe() const override { return Summarise(geos_, union_.get()); }

 private:
  GeosContext geos_;
  GeosGeometry triangles_;
  GeosGeometry union_;
};

}  // namespace

std::unique_ptr<OutlinePeer> MakeGeosOutline() {
  return std::make_unique<GeosOutline>();
}

}  // namespace bench
