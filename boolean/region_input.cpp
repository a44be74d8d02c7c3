#include "boolean/region_input.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace zbr {
namespace {

// Beyond, squares of lengths overflow or come near it.
constexpr double kLargest = 1e150;
// The tolerance when none is asked for, relative to the larger side: noise of numbers printed with a dozen digits is joined,
// anything that was drawn is kept.
constexpr double kRelativeTolerance = 1e-12;

static_assert(sizeof(ZBR_PT) == 2 * sizeof(double) && std::is_standard_layout_v<ZBR_PT>, "pairs of doubles are read as points");

bool Ascends(const std::int32_t* offsets, std::size_t count, std::size_t limit) {
  if (count == 0) return true;
  if (offsets == nullptr || offsets[0] < 0) return false;
  return std::is_sorted(offsets, offsets + count + 1) && static_cast<std::size_t>(offsets[count]) <= limit;
}

bool IsUsable(const ZBR_PT& p) {
  return std::fabs(p.x()) <= kLargest && std::fabs(p.y()) <= kLargest;  // false for NaN
}

}  // namespace

bool HaveUsableOffsets(const ZBR_REGION_VIEW& view) {
  return Ascends(view.ring_offsets, view.ring_count, view.point_count) && (view.xy != nullptr || view.point_count == 0) &&
         (view.polygon_offsets == nullptr || Ascends(view.polygon_offsets, view.polygon_count, view.ring_count));
}

void RegionInput::Clear() {
  rings_.clear();
  ends_.clear();
  bounds_ = Box();
  points_ = 0;
  exponent_ = 0;
}

int RegionInput::OrdinaryExponent() const {
  constexpr int kOrdinary = 128;
  const double side = std::max(bounds_.xmax - bounds_.xmin, bounds_.ymax - bounds_.ymin);
  if (!(side > 0.0 && side < std::numeric_limits<double>::infinity())) return 0;
  const double reach =
      std::max({std::fabs(bounds_.xmin), std::fabs(bounds_.xmax), std::fabs(bounds_.ymin), std::fabs(bounds_.ymax)});
  const int exponent = -std::ilogb(side);
  return std::abs(exponent) > kOrdinary && std::ilogb(reach) + exponent <= kOrdinary ? exponent : 0;
}

void RegionInput::Scale(int exponent) {
  if (exponent == 0) return;
  exponent_ = exponent;
  scaled_.clear();
  scaled_.reserve(points_);
  const auto scale = [exponent](Box& box) {
    const ZBR_PT least = Scaled(ZBR_PT(box.xmin, box.ymin), exponent);
    const ZBR_PT most = Scaled(ZBR_PT(box.xmax, box.ymax), exponent);
    box = {least.x(), least.y(), most.x(), most.y()};
  };
  for (RingSpan& ring : rings_) {
    const std::size_t first = scaled_.size();
    for (const ZBR_PT& p : ring) scaled_.push_back(Scaled(p, exponent));
    ring = RingSpan(scaled_).subspan(first);
  }
  scale(bounds_);
}

std::vector<Box> RegionInput::Boxes() const {
  std::vector<Box> boxes;
  boxes.reserve(rings_.size());
  for (const RingSpan& ring : rings_) boxes.push_back(BoxOfRing(ring));
  return boxes;
}

void RegionInput::Choose(const RegionInput& all, std::span<const std::uint32_t> rings) {
  Clear();
  bounds_ = all.bounds_;
  exponent_ = all.exponent_;
  std::size_t first = 0;  // ring of the second operand
  for (const std::uint32_t r : rings) {
    first += r < all.end(0) ? 1 : 0;
    rings_.push_back(all.rings_[r]);
    points_ += all.rings_[r].size();
  }
  ends_ = {first, rings_.size()};
}

bool RegionInput::Add(const ZBR_REGION_VIEW& view, ZBR_REGION_STATUS& status) {
  status.operand = static_cast<std::int32_t>(ends_.size());
  constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  const bool isTooLarge = view.point_count > kMost - points_ || view.ring_count > kMost;
  points_ += isTooLarge ? 0 : view.point_count;
  if (isTooLarge) {
    status.code = ZBR_REGION_TOO_LARGE;
    return false;
  }
  if (!HaveUsableOffsets(view)) {
    status.code = ZBR_REGION_BAD_OFFSETS;
    return false;
  }
  const auto* points = reinterpret_cast<const ZBR_PT*>(view.xy);
  if (rings_.empty()) {  // of many operands each would be another move
    rings_.reserve(view.ring_count);
  }
  for (std::size_t r = 0; r < view.ring_count; ++r) {
    status.ring = static_cast<std::int32_t>(r);
    const auto first = static_cast<std::size_t>(view.ring_offsets[r]);
    if (!AddRing({points + first, static_cast<std::size_t>(view.ring_offsets[r + 1]) - first}, status)) return false;
  }
  ends_.push_back(rings_.size());
  status.operand = -1;
  status.ring = -1;
  return true;
}

bool RegionInput::AddRing(RingSpan ring, ZBR_REGION_STATUS& status) {
  Box box;
  bool areUsable = true;
  for (const ZBR_PT& p : ring) {
    areUsable &= IsUsable(p);
    box.Add(p);
  }
  if (!areUsable) {
    status.code = ZBR_REGION_NOT_FINITE;
    status.point = static_cast<std::int32_t>(std::find_if_not(ring.begin(), ring.end(), IsUsable) - ring.begin());
    return false;
  }
  bounds_.Add(box);
  rings_.push_back(ring);
  return true;
}

double RegionInput::ToleranceFor(const ZBR_REGION_OPTIONS& options) const {
  if (!HasExtent()) return 0.0;
  const double side = std::max(bounds_.xmax - bounds_.xmin, bounds_.ymax - bounds_.ymin);
  const double asked = std::ldexp(options.tolerance, exponent_);
  return OverlayTolerance(bounds_, options.tolerance > 0.0 ? std::min(asked, kLargest) : kRelativeTolerance * side);
}

}  // namespace zbr
