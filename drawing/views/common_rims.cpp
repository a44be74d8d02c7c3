// Idea: seen from the side, chords of two bodies that divide one rim differently lie on one line and hide each other by turns. Each
// body's lines are chained by themselves, and the rim is left in pieces as short as what is nearer of either. As they stand for one
// curve, one body draws it all. Difficulty: half rings that make up a ring have halves of a circle, which are not each other's. So
// a piece changes hands only where the other body has a chord around the same direction from the axis.
#include "drawing/views/common_rims.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "drawing/curves/angle_ranges.h"

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kNoShell = 0xffffffffU;

// From the first chord counterclockwise, in radians.
class Directions {
 public:
  Directions(const Circle& circle, const ZBR_PT3& first) : centre_(circle.centre), x_(first - circle.centre) {
    y_ = circle.axis.OuterProduct(x_);
  }

  double Of(const ZBR_PT3& p) const { return Atan2((p - centre_).InnerProduct(y_), (p - centre_).InnerProduct(x_)); }

  void Add(const ChordSides::Side& side) {
    const double a = Of(side.start), b = Of(side.end), low = std::min(a, b), high = std::max(a, b);
    if (high - low <= kPi) {
      covered_.Add(low, high);
    } else {
      covered_.Add(high, low + kFullTurn);
    }
  }

  // Chords that follow one another leave nothing between them.
  void Join() { covered_.Join(1e-6); }

  bool Has(double direction) const { return covered_.Has(direction); }

 private:
  ZBR_PT3 centre_, x_, y_;
  AngleRanges covered_;
};

class Owners {
 public:
  Owners(const Model& model, const DrawnSegments& drawn, std::vector<DrawnSegment>& segments)
      : model_(model), drawn_(drawn), segments_(segments) {}

  void Settle() {
    FindMixed();
    if (!isMixed_) return;
    ChooseOwners();
    CollectDirections();
    for (auto& [owned, directions] : owned_) directions.Join();
    for (DrawnSegment& segment : segments_) GiveAway(segment);
  }

 private:
  const ChordSides::Side* ChordOf(const DrawnSegment& segment) const {
    const bool isRim = kDrawnClasses[segment.edgeClass] == EdgeClass::kCrease;
    return isRim ? drawn_.ChordOf(segment) : nullptr;
  }

  void FindMixed() {
    owner_.assign(drawn_.KnownCircles()->all.size(), kNoShell);
    mixed_.assign(owner_.size(), false);
    for (const DrawnSegment& segment : segments_) {
      const ChordSides::Side* const chord = ChordOf(segment);
      if (chord == nullptr) continue;
      std::uint32_t& owner = owner_[chord->circle];
      if (owner != kNoShell && owner != segment.shell) mixed_[chord->circle] = isMixed_ = true;
      owner = segment.shell;
    }
  }

  // The earlier of bodies of which as much is drawn.
  void ChooseOwners() {
    std::map<std::pair<std::uint32_t, std::uint32_t>, double> lengths;  // by circle and shell
    for (const DrawnSegment& segment : segments_) {
      const ChordSides::Side* const chord = ChordOf(segment);
      if (chord != nullptr && mixed_[chord->circle])
        lengths[{chord->circle, segment.shell}] += segment.segment.segment.s().Distance(segment.segment.segment.e());
    }
    std::vector<double> most(owner_.size(), -1.0);
    for (const auto& [rim, length] : lengths) {
      if (!(length > most[rim.first])) continue;
      most[rim.first] = length;
      owner_[rim.first] = rim.second;
    }
  }

  void CollectDirections() {
    drawn_.Sides().ForEach([&](std::size_t triangle, const ChordSides::Side& side) {
      if (!mixed_[side.circle] || model_.ShellOf(static_cast<std::uint32_t>(triangle)) != owner_[side.circle]) return;
      const Circle& circle = drawn_.KnownCircles()->all[side.circle];
      owned_.try_emplace(side.circle, circle, side.start).first->second.Add(side);
    });
  }

  void GiveAway(DrawnSegment& segment) const {
    const ChordSides::Side* const chord = ChordOf(segment);
    if (chord == nullptr || !mixed_[chord->circle] || segment.shell == owner_[chord->circle]) return;
    const auto owned = owned_.find(chord->circle);
    if (owned == owned_.end()) return;
    const Circle& circle = drawn_.KnownCircles()->all[chord->circle];
    const DrawnStretch stretch = StretchOfChord(drawn_.GetScene(), circle, *chord, segment.segment.segment);
    if (owned->second.Has(owned->second.Of(circle.centre + (stretch.start + stretch.end) * 0.5)))
      segment.shell = segment.other = owner_[chord->circle];
  }

  const Model& model_;
  const DrawnSegments& drawn_;
  std::vector<DrawnSegment>& segments_;
  std::vector<std::uint32_t> owner_;  // by circle; and whether several bodies draw it
  std::vector<bool> mixed_;
  bool isMixed_ = false;
  std::map<std::uint32_t, Directions> owned_;  // of mixed circles, around which the owner has chords
};

}  // namespace

void GiveRimsToOneBody(const Model& model, const DrawnSegments& drawn, std::vector<DrawnSegment>& segments) {
  if (drawn.ShellCount() < 2 || drawn.KnownCircles() == nullptr || drawn.GetScene().view.perspective) return;
  Owners(model, drawn, segments).Settle();
}

}  // namespace zbr::drawing
