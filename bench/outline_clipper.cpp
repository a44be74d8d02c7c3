// The union of triangles by Clipper 6.4: all of them in one sweep, with the rule that counts windings.

#include <polyclipping/clipper.hpp>

#include <stdexcept>

#include "clipper_paths.h"
#include "outline_peer.h"

namespace bench {
namespace {

class ClipperOutline final : public OutlinePeer {
 public:
  void Load(const std::vector<Ring>& triangles) override {
    scale_ = ScaleFor(LargestCoordinate(triangles), 0x1p40);
    clipper_.AddPaths(Scaled(triangles, scale_), ClipperLib::ptSubject, true);
  }
  void Run() override {
    if (!clipper_.Execute(ClipperLib::ctUnion, union_, ClipperLib::pftNonZero)) throw std::runtime_error("Execute failed");
  }
  Summary Describe() const override { return Summarise(union_, scale_); }

 private:
  double scale_ = 1.0;
  ClipperLib::Clipper clipper_;
  ClipperLib::Paths union_;
};

}  // namespace

std::unique_ptr<OutlinePeer> MakeClipperOutline() {
  return std::make_unique<ClipperOutline>();
}

}  // namespace bench
