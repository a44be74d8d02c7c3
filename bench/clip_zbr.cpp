// Our clipping of segments and polylines.

#include <zbr/segments.h>

#include "clip_peer.h"
#include "zbr_loops.h"

namespace bench {
namespace {

class ZbrClip final : public ClipPeer {
 public:
  void Load(const ClipInput& input) override {
    region_ = MakeNested(input.region);
    if (!input.chained) {
      segments_ = input.segments;
      return;
    }
    line_.push_back(input.segments.front().s());
    for (const ZBR_SEG3& s : input.segments) line_.push_back(s.e());
  }
  void Run() override {
    if (line_.empty()) {
      zbrClipSegs(segments_, region_, insideSegments_, nullptr);
    } else {
      zbrClipPolyline(line_, region_, insideLines_, nullptr);
    }
  }
  ClipResult Describe() const override {
    ClipResult result;
    for (const ZBR_SEG3& s : insideSegments_) result.length += s.s().DistanceXY(s.e());
    for (const auto& line : insideLines_) {
      for (std::size_t i = 1; i < line.size(); ++i) result.length += line[i - 1].DistanceXY(line[i]);
    }
    result.pieces = insideSegments_.size() + insideLines_.size();
    return result;
  }
  void Drop() override {
    insideSegments_ = {};
    insideLines_ = {};
  }

 private:
  LoopList region_;
  std::vector<ZBR_SEG3> segments_;
  std::vector<ZBR_PT3> line_;
  std::vector<ZBR_SEG3> insideSegments_;
  std::vector<std::vector<ZBR_PT3>> insideLines_;
};

}  // namespace

std::unique_ptr<ClipPeer> MakeZbrClip() {
  return std::make_unique<ZbrClip>();
}

const std::vector<Entry<ClipPeer>>& ClipPeers() {
  static const std::vector<Entry<ClipPeer>> peers = {
      {"zbr", MakeZbrClip},
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosClip},
#endif
#ifdef BENCH_WITH_CLIPPER
      {"clipper", MakeClipperClip},
#endif
  };
  return peers;
}

std::vector<std::vector<ZBR_PT>> PlanarLines(const ClipInput& input) {
  const auto planar = [](const ZBR_PT3& p) { return ZBR_PT(p.x(), p.y()); };
  std::vector<std::vector<ZBR_PT>> lines;
  for (const ZBR_SEG3& s : input.segments) {
    if (lines.empty() || !input.chained) lines.push_back({planar(s.s())});
    lines.back().push_back(planar(s.e()));
  }
  return lines;
}

}  // namespace bench
