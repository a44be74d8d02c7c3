// Faults of rings, each with its place.
//
// The rings are copied without the points that repeat the one before, since an edge without length has no sides, and scaled by a
// power of two, which changes no digit: coordinates are of ordinary size then, and their squares neither vanish nor overflow.
// Rings that are simple and keep apart, or touch, exactly have no fault however near they come to themselves; elsewhere faults are
// told with a tolerance, so that stretches that would be shared but for rounding are one fault and not many.
#include <algorithm>
#include <cmath>
#include <span>
#include <tuple>

#include <zbr/region.h>

#include "boolean/region_input.h"
#include "core/planar_inline.h"
#include "core/rings.h"
#include "core/tolerance_state.h"
#include "loops/contacts.h"
#include "loops/exact_simplicity.h"
#include "loops/simplicity.h"

namespace zbr {
namespace {

using Faults = std::vector<ZBR_REGION_FAULT>;

ZBR_PT Scaled(const ZBR_PT& p, int exponent) {
  return ZBR_PT(std::ldexp(p.x(), exponent), std::ldexp(p.y(), exponent));
}

// A ring as it is searched: which of its points are kept.
struct CleanRing {
  std::int32_t ring = 0;
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> origin;
};

class RegionCheck {
 public:
  RegionCheck(const Box& bounds, double tolerance, Faults& faults) : faults_(faults) {
    const double size = std::max({std::fabs(bounds.xmin), std::fabs(bounds.xmax), std::fabs(bounds.ymin), std::fabs(bounds.ymax)});
    constexpr int kExponent = 12;
    if (size > 0.0) exponent_ = kExponent - std::ilogb(size);
    eps_ = std::ldexp(tolerance, exponent_);
  }

  void AddRing(std::int32_t ring, RingSpan points) {
    const ToleranceScope scope(eps_);
    CleanRing clean = Cleaned(ring, points);
    if (clean.points.size() < 3 || IsNarrow(clean.points))
      faults_.push_back({ZBR_FAULT_NO_AREA, points.empty() ? ZBR_PT() : points[0], ring, -1, -1, -1});
    if (clean.points.size() >= 3) rings_.push_back(std::move(clean));
  }

  void FindMeetings(std::size_t most) {
    const ToleranceScope scope(eps_);
    std::vector<IndexedRing> indexed;
    std::vector<RingSpan> spans;
    for (const CleanRing& ring : rings_) {
      spans.emplace_back(ring.points);
      const auto n = static_cast<std::uint32_t>(ring.points.size());
      indexed.push_back(
          {BoxOfRing(ring.points), ring.points.data(), n, 0, n, static_cast<std::uint32_t>(&ring - rings_.data()), false});
    }
    EdgeIndex index;
    index.Build(std::move(indexed), eps_, t_tolerance.eps2);
    if (SimplicityOf(index, eps_) == Simplicity::kSimple || ExactSimplicityOf(spans) != ExactSimplicity::kFaulty) return;
    std::vector<RingContact> contacts;
    FindRingContacts(index, most, contacts);
    for (const RingContact& c : contacts) {
      const CleanRing &a = rings_[c.ringA], &b = rings_[c.ringB];
      faults_.push_back({KindOf(c.kind), Scaled(c.at, -exponent_), a.ring, a.origin[c.edgeA], b.ring, b.origin[c.edgeB]});
    }
  }

 private:
  CleanRing Cleaned(std::int32_t ring, RingSpan points) {
    CleanRing clean{ring, {}, {}};
    const auto repeats = [&](std::size_t edge) {
      faults_.push_back({ZBR_FAULT_REPEATED_POINT, points[edge], ring, static_cast<std::int32_t>(edge), -1, -1});
    };
    for (std::size_t i = 0; i < points.size(); ++i) {
      const ZBR_PT p = Scaled(points[i], exponent_);
      if (clean.points.empty() || p != clean.points.back()) {
        clean.points.push_back(p);
        clean.origin.push_back(static_cast<std::int32_t>(i));
        continue;
      }
      if (i + 1 < points.size() || !AreIdentical(points[i], points[0])) repeats(i - 1);
      clean.origin.back() = static_cast<std::int32_t>(i);  // the edge with a length starts at the last of the repeated points
    }
    while (clean.points.size() > 1 && clean.points.back() == clean.points.front()) {
      const auto last = static_cast<std::size_t>(clean.origin.back());
      if (last + 1 < points.size() || !AreIdentical(points[last], points[0])) repeats(last);
      clean.points.pop_back();
      clean.origin.pop_back();
    }
    return clean;
  }

  // The area of a narrow ring is its width times half the way around it.
  bool IsNarrow(const std::vector<ZBR_PT>& points) const { return std::fabs(TwiceArea(points)) <= eps_ * Perimeter(points); }

  static ZBR_REGION_FAULT_KIND KindOf(RingContactKind kind) {
    switch (kind) {
      case RingContactKind::kOverlap:
        return ZBR_FAULT_OVERLAP;
      case RingContactKind::kFold:
        return ZBR_FAULT_FOLD;
      case RingContactKind::kCrossing:
        break;
    }
    return ZBR_FAULT_CROSSING;
  }

  Faults& faults_;
  int exponent_ = 0;
  double eps_ = 0.0;
  std::vector<CleanRing> rings_;
};

bool ComesBefore(const ZBR_REGION_FAULT& a, const ZBR_REGION_FAULT& b) {
  const auto key = [](const ZBR_REGION_FAULT& f) { return std::tuple(f.ring_a, f.ring_b, f.kind, f.edge_a, f.edge_b); };
  return key(a) < key(b);
}

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrCheckRegion(const ZBR_REGION_VIEW& rings, std::vector<ZBR_REGION_FAULT>& faults, std::size_t most) {
  faults.clear();
  ZBR_REGION_STATUS status;
  if (!zbr::HaveUsableOffsets(rings)) {
    status.code = ZBR_REGION_BAD_OFFSETS;
    status.operand = 0;
    return status;
  }
  zbr::RegionInput input;  // with an operand for each ring that is finite
  std::vector<std::int32_t> finite;
  for (std::size_t r = 0; r < rings.ring_count; ++r) {
    const auto first = static_cast<std::size_t>(rings.ring_offsets[r]);
    const std::int32_t ends[] = {0, rings.ring_offsets[r + 1] - rings.ring_offsets[r]};
    const double* const xy = rings.xy + 2 * first;
    const auto ring = static_cast<std::int32_t>(r);
    ZBR_REGION_STATUS one;
    if (input.Add({xy, static_cast<std::size_t>(ends[1]), ends, 1, nullptr, 0}, one)) {
      finite.push_back(ring);
    } else if (one.code == ZBR_REGION_NOT_FINITE) {
      const double* const at = xy + 2 * static_cast<std::size_t>(one.point);
      faults.push_back({ZBR_FAULT_NOT_FINITE, ZBR_PT(at[0], at[1]), ring, one.point, -1, -1});
    } else {
      faults.clear();
      return one;
    }
  }
  zbr::RegionCheck check(input.bounds(), input.Rounding(), faults);
  for (std::size_t i = 0; i < finite.size(); ++i) check.AddRing(finite[i], input.operand(i)[0]);
  check.FindMeetings(most);
  std::stable_sort(faults.begin(), faults.end(), zbr::ComesBefore);
  return status;
}
