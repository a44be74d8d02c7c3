// Idea: the wall of a bore ends at rims, some of them circles, others where it meets a round or slanted surface. Seen along the
// axis all of them are one circle, though in space few are. From the chords of circles that are seen face-on the facets between the
// rims are gone through: what of their edges is no chord itself lies on the same circle in the view. Difficulty: walls go on over
// smooth edges only, so that what stands on a wall's outline further off is not taken for it.
#include "drawing/curves/round_walls.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "drawing/model/disjoint_sets.h"
#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

constexpr double kFaceOn = 1e-4;         // sine of the tilt
constexpr double kOfChordHeight = 0.02;  // that far from the cylinder, as a part of the distance between chord and arc
constexpr double kLongest = 0.55;        // chord over radius: some 30 degrees

class Walls {
 public:
  Walls(const Model& model, const Circles& circles, const ZBR_PT3& along, std::vector<bool> isFaceOn)
      : model_(model), circles_(circles), along_(along), isFaceOn_(std::move(isFaceOn)), walls_(circles.all.size()) {
    isRim_.assign(circles.all.size(), false);
    isTaken_.assign(model.TriangleCount(), false);
  }

  void GrowFrom(std::uint32_t triangle, const ChordSides::Side& chord) {
    const Circle& circle = circles_.all[chord.circle];
    const double height = circle.radius - ((chord.start + chord.end) * 0.5).Distance(circle.centre);
    tolerance_ = std::max(PlaneTolerance(model_), kOfChordHeight * height);
    circle_ = chord.circle;
    if (isTaken_[triangle] || !IsOnWall(triangle)) return;
    isTaken_[triangle] = isRim_[circle_] = true;
    open_.assign(1, triangle);
    while (!open_.empty()) {
      const std::uint32_t t = open_.back();
      open_.pop_back();
      for (std::size_t i = 0; i < 3; ++i) Pass(t, i);
    }
  }

  RoundWalls Take() {
    RoundWalls walls;
    if (std::find(isRim_.begin(), isRim_.end(), true) == isRim_.end()) return walls;
    for (std::uint32_t k = 0; k < isRim_.size(); ++k) walls.ofRims.push_back(isRim_[k] ? walls_.Find(k) : RoundWalls::kNone);
    walls.sides = ChordSides(std::move(sides_), model_.TriangleCount());
    return walls;
  }

 private:
  const ZBR_ZBREPT& TriangleAt(std::uint32_t t) const {
    const std::size_t s = model_.ShellOf(t);
    return *model_.Shell(s).GetTriangle(static_cast<int>(t - model_.shellBegin[s]));
  }

  // As the viewer sees it: far along the axis a slight tilt moves a rim off the other one.
  double DistanceFromCentre(const ZBR_PT3& p) const { return along_.OuterProduct(p - circles_.all[circle_].centre).Length(); }

  bool IsOnWall(std::uint32_t t) const {
    for (std::size_t i = 0; i < 3; ++i) {
      const double distance = DistanceFromCentre(VertexOf(TriangleAt(t), i).GetPt());
      if (!(std::abs(distance - circles_.all[circle_].radius) <= tolerance_)) return false;
    }
    return true;
  }

  // Walls of different circles may have a chord in common.
  bool IsSameCircle(std::uint32_t other) const {
    const Circle& circle = circles_.all[other];
    return DistanceFromCentre(circle.centre) <= tolerance_ && std::abs(circle.radius - circles_.all[circle_].radius) <= tolerance_;
  }

  void Pass(std::uint32_t t, std::size_t i) {
    const std::size_t s = model_.ShellOf(t);
    const ZBR_ZBREPT& triangle = TriangleAt(t);
    ZBR_ZBREPE& edge = EdgeOf(triangle, i);
    const std::uint32_t own = circles_.ofEdge[model_.edgeBegin[s] + static_cast<std::size_t>(edge.GetIndex())];
    const ZBR_ZBREPT* const across = model_.Across(s, triangle, edge);
    const auto beyond =
        across == nullptr ? t : static_cast<std::uint32_t>(model_.shellBegin[s]) + static_cast<std::uint32_t>(across->GetIndex());
    if (own != kNoCircle && isFaceOn_[own]) {
      if (!IsSameCircle(own)) return;
      isRim_[own] = true;
      walls_.Unite(own, circle_);
      return;
    }
    Add(t, i);
    if (across == nullptr) return;
    for (std::size_t k = 0; k < 3; ++k) {
      if (&EdgeOf(*across, k) == &edge) Add(beyond, k);
    }
    if (isTaken_[beyond] || model_.Class(s, edge) != EdgeClass::kSmooth || !IsOnWall(beyond)) return;
    isTaken_[beyond] = true;
    open_.push_back(beyond);
  }

  // In the plane of the rim. Along the axis nothing is left.
  void Add(std::uint32_t t, std::size_t i) {
    const Circle& circle = circles_.all[circle_];
    const auto inPlane = [&](const ZBR_PT3& p) { return p - circle.axis * circle.axis.InnerProduct(p - circle.centre); };
    const ZBR_PT3 start = inPlane(VertexOf(TriangleAt(t), i).GetPt()), end = inPlane(VertexOf(TriangleAt(t), (i + 1) % 3).GetPt());
    const double length = start.Distance(end);
    if (length > tolerance_ && length <= kLongest * circle.radius)
      sides_.push_back({3 * t + static_cast<std::uint32_t>(i), circle_, start, end});
  }

  const Model& model_;
  const Circles& circles_;
  const ZBR_PT3 along_;  // to the viewer
  const std::vector<bool> isFaceOn_;
  DisjointSets walls_;  // of circles
  std::vector<bool> isRim_, isTaken_;
  std::vector<std::uint32_t> open_;
  std::vector<ChordSides::Side> sides_;
  std::uint32_t circle_ = kNoCircle;  // whose wall grows
  double tolerance_ = 0.0;
};

}  // namespace

RoundWalls FindRoundWalls(const Model& model, const Circles& circles, const ChordSides& sides, const View& view) {
  if (view.perspective) return {};
  std::vector<bool> isFaceOn;
  for (const Circle& circle : circles.all) isFaceOn.push_back(circle.axis.OuterProduct(view.toViewer).Length() <= kFaceOn);
  if (std::find(isFaceOn.begin(), isFaceOn.end(), true) == isFaceOn.end()) return {};
  Walls walls(model, circles, view.toViewer, isFaceOn);
  sides.ForEach([&](std::size_t triangle, const ChordSides::Side& side) {
    if (isFaceOn[side.circle]) walls.GrowFrom(static_cast<std::uint32_t>(triangle), side);
  });
  return walls.Take();
}

}  // namespace zbr::drawing
