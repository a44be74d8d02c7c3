// Pairs of near segments beside a look at every two of them.
#include "core/slab_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "core/exact_side.h"
#include "support/random_shapes.h"

namespace {

using zbr::SlabSegment;
using Pairs = std::set<std::pair<std::uint32_t, std::uint32_t>>;

double DistanceTo(const ZBR_PT& p, const SlabSegment& s) {
  const ZBR_PT d = s.q - s.p;
  const double t = d.Length2() > 0.0 ? std::clamp((p - s.p).InnerProduct(d) / d.Length2(), 0.0, 1.0) : 0.0;
  return p.Distance(s.p + d * t);
}

double Distance(const SlabSegment& a, const SlabSegment& b) {
  const auto parts = [](const SlabSegment& s, const SlabSegment& o) {
    return zbr::ExactSideOf(s.p, s.q, o.p) * zbr::ExactSideOf(s.p, s.q, o.q) < 0;
  };
  if (parts(a, b) && parts(b, a)) return 0.0;
  return std::min({DistanceTo(a.p, b), DistanceTo(a.q, b), DistanceTo(b.p, a), DistanceTo(b.q, a)});
}

Pairs Found(const std::vector<SlabSegment>& segments, double distance) {
  Pairs found;
  EXPECT_TRUE(zbr::SearchSlabs(segments, distance, [&](std::uint32_t i, std::uint32_t j) {
    EXPECT_LT(i, j);
    found.emplace(i, j);
    return true;
  }));
  return found;
}

// None is missed, and what is clearly apart is not reported. `kind` tells how segments lie: anywhere, on whole numbers, upright or
// steep, along one line, beside each other, around each other.
std::vector<SlabSegment> Draw(int kind, Random& random, double scale) {
  std::vector<SlabSegment> segments;
  const int n = 2 + static_cast<int>(Below(random, 120));
  const auto any = [&](double size) { return size * static_cast<double>(Below(random, 1 << 20)) / (1 << 20); };
  for (int k = 0; k < n; ++k) {
    ZBR_PT p(any(100), any(100));
    ZBR_PT d(any(20) - 10, any(20) - 10);
    if (kind == 1) p = ZBR_PT(std::floor(any(9)), std::floor(any(9))), d = ZBR_PT(std::floor(any(5)) - 2, std::floor(any(5)) - 2);
    if (kind == 2) p = ZBR_PT(std::floor(any(4)), any(100)), d = ZBR_PT(any(2) < 1 ? 0.0 : any(1e-6), d.y());
    if (kind == 3) p = ZBR_PT(p.x(), p.x() * 0.7), d = ZBR_PT(d.x(), d.x() * 0.7);
    if (kind == 4) p = ZBR_PT(-k, k), d = ZBR_PT(70 + any(1), 70);
    if (kind == 5) p = ZBR_PT(std::cos(k), std::sin(k)) * (k / 6), d = ZBR_PT(std::cos(k + 1), std::sin(k + 1)) * (k / 6) - p;
    segments.push_back({p * scale, (p + d) * scale});
  }
  return segments;
}

TEST(SlabSearch, FindsWhatALookAtEveryTwoFinds) {
  long near = 0;
  for (int seed = 0; seed < Scaled(300); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const double scale = seed / 18 % 4 == 0 ? 1e12 : 1.0;
    const double distance = seed / 6 % 3 == 0 ? 0.0 : scale * (seed / 6 % 3 == 1 ? 1e-9 : 0.1);
    const std::vector<SlabSegment> segments = Draw(seed % 6, random, scale);
    const Pairs found = Found(segments, distance);
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (std::uint32_t j = 0; j < segments.size(); ++j) {
      for (std::uint32_t i = 0; i < j; ++i) {
        const double apart = Distance(segments[i], segments[j]);
        near += apart <= distance ? 1 : 0;
        ASSERT_TRUE(apart > distance || found.count({i, j}) > 0) << i << ' ' << j << ' ' << apart;
        if (seed % 6 == 2 && distance < 1e-3 * scale) continue;  // as steep as the distance is small, they count as wider
        ASSERT_TRUE(apart < 64.0 * distance + 1e-9 * scale || found.count({i, j}) == 0) << i << ' ' << j << ' ' << apart;
      }
    }
  }
  EXPECT_GT(near, Scaled(3000));
}

TEST(SlabSearch, EndsWhenTheVisitorSaysSo) {
  const std::vector<SlabSegment> cross = {{{0, 0}, {4, 4}}, {{0, 4}, {4, 0}}, {{0, 2}, {4, 2}}};
  int visits = 0;
  EXPECT_FALSE(zbr::SearchSlabs(cross, 0.0, [&](std::uint32_t, std::uint32_t) { return ++visits < 2; }));
  EXPECT_EQ(visits, 2);
}

}  // namespace
