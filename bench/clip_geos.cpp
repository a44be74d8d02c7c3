// Clipping of lines by GEOS.
//
// Each line goes by itself, and a prepared region tells first which of them the boundary cuts at all. All lines in one call would
// be cut at each other too, and even for parallel ones that took three times as long (10,000 lines over 1000 edges).

#include "clip_peer.h"
#include "geos_geometry.h"

namespace bench {
namespace {

class GeosClip final : public ClipPeer {
 public:
  ~GeosClip() override { GEOSPreparedGeom_destroy_r(geos_.handle(), prepared_); }
  void Load(const ClipInput& input) override {
    region_ = MakeGeometry(geos_, input.region);
    prepared_ = GEOSPrepare_r(geos_.handle(), region_.get());
    for (const auto& line : PlanarLines(input)) lines_.push_back(MakeLine(geos_, line));
  }
  void Run() override {
    for (const GeosGeometry& line : lines_) {
      if (GEOSPreparedContainsProperly_r(geos_.handle(), prepared_, line.get()) == 1) {
        inside_.push_back(geos_.Own(GEOSGeom_clone_r(geos_.handle(), line.get())));
      } else if (GEOSPreparedIntersects_r(geos_.handle(), prepared_, line.get()) == 1) {
        inside_.push_back(geos_.Own(GEOSIntersection_r(geos_.handle(), line.get(), region_.get())));
      }
    }
  }
  ClipResult Describe() const override {
    ClipResult result;
    for (const GeosGeometry& part : inside_) {
      double length = 0.0;
      GEOSLength_r(geos_.handle(), part.get(), &length);
      result.length += length;
      result.pieces += static_cast<std::size_t>(GEOSGetNumGeometries_r(geos_.handle(), part.get()));
    }
    return result;
  }
  void Drop() override { inside_.clear(); }

 private:
  GeosContext geos_;
  GeosGeometry region_;
  const GEOSPreparedGeometry* prepared_ = nullptr;
  std::vector<GeosGeometry> lines_;
  std::vector<GeosGeometry> inside_;
};

}  // namespace

std::unique_ptr<ClipPeer> MakeGeosClip() {
  return std::make_unique<GeosClip>();
}

}  // namespace bench
