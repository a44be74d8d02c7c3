// Clipping of open paths by Clipper 6.4, all in one sweep.

#include <cmath>
#include <polyclipping/clipper.hpp>
#include <stdexcept>

#include "clip_peer.h"
#include "clipper_paths.h"

namespace bench {
namespace {

class ClipperClip final : public ClipPeer {
 public:
  void Load(const ClipInput& input) override {
    const std::vector<Ring> rings = RingsOf(input.region);
    const auto lines = PlanarLines(input);
    scale_ = ScaleFor(std::max(LargestCoordinate(rings), LargestCoordinate(lines)));
    clipper_.AddPaths(Scaled(lines, scale_), ClipperLib::ptSubject, false);
    clipper_.AddPaths(Scaled(rings, scale_), ClipperLib::ptClip, true);
  }
  void Run() override {
    if (!clipper_.Execute(ClipperLib::ctIntersection, tree_, ClipperLib::pftEvenOdd)) throw std::runtime_error("Execute failed");
  }
  ClipResult Describe() const override {
    ClipResult result;
    for (const ClipperLib::PolyNode* node = tree_.GetFirst(); node != nullptr; node = node->GetNext()) {
      const ClipperLib::Path& path = node->Contour;
      for (std::size_t i = 1; i < path.size(); ++i) {
        const double x = static_cast<double>(path[i].X - path[i - 1].X);
        result.length += std::hypot(x, static_cast<double>(path[i].Y - path[i - 1].Y)) / scale_;
      }
      ++result.pieces;
    }
    return result;
  }
  void Drop() override { tree_.Clear(); }

 private:
  double scale_ = 1.0;
  ClipperLib::Clipper clipper_;
  ClipperLib::PolyTree tree_;
};

}  // namespace

std::unique_ptr<ClipPeer> MakeClipperClip() {
  return std::make_unique<ClipperClip>();
}

}  // namespace bench
