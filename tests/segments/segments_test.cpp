// Removing segments that repeat others.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <zbr/segments.h>
#include <zbr/tolerance.h>

#include "support/random_shapes.h"

namespace {

template <class Segment>
bool Coincide(const Segment& a, const Segment& b) {
  return (a.s() == b.s() && a.e() == b.e()) || (a.s() == b.e() && a.e() == b.s());
}

template <class Segment>
std::vector<Segment> WithoutRepeats(const std::vector<Segment>& segments) {
  std::vector<Segment> kept;
  for (const Segment& s : segments) {
    if (std::none_of(kept.begin(), kept.end(), [&](const Segment& k) { return Coincide(k, s); })) kept.push_back(s);
  }
  return kept;
}

template <class Segment>
std::vector<Segment> Without(const std::vector<Segment>& reference, const std::vector<Segment>& segments) {
  std::vector<Segment> kept;
  for (const Segment& s : segments) {
    if (std::none_of(reference.begin(), reference.end(), [&](const Segment& r) { return Coincide(r, s); })) kept.push_back(s);
  }
  return kept;
}

// Lattice points off by up to about the tolerance, so that ends are sometimes equal, sometimes just not; some far away, some not
// finite.
double Coordinate(Random& random, double eps, double step) {
  if (Below(random, 200) == 0) return Below(random, 2) == 0 ? NAN : std::numeric_limits<double>::infinity();
  return step * Below(random, 3) + eps * 0.6 * (Below(random, 3) - 1) + (Below(random, 9) == 0 ? 1e6 : 0.0);
}
ZBR_SEG Draw(const ZBR_SEG& /*kind*/, Random& random, double eps, double step) {
  const auto c = [&] { return Coordinate(random, eps, step); };
  const ZBR_PT s(c(), c());
  return ZBR_SEG(s, ZBR_PT(c(), c()));
}
ZBR_SEG3 Draw(const ZBR_SEG3& /*kind*/, Random& random, double eps, double step) {
  const auto c = [&] { return Coordinate(random, eps, step); };
  const ZBR_PT3 s(c(), c(), c());
  return ZBR_SEG3(s, ZBR_PT3(c(), c(), c()));
}

template <class Segment>
class SegmentSets : public testing::Test {};
using Kinds = testing::Types<ZBR_SEG, ZBR_SEG3>;
TYPED_TEST_SUITE(SegmentSets, Kinds, );

TYPED_TEST(SegmentSets, AgreeWithTryingAllPairs) {
  std::size_t removed = 0;
  for (int seed = 0; seed < Scaled(60); ++seed) {
    Random random(static_cast<std::uint64_t>(seed));
    const double eps = seed % 5 == 0 ? 0.0 : seed % 2 == 0 ? 1e-5 : 0.3;
    const double step = seed % 3 == 0 ? 0.5 : 1.0;
    const ZBR_TmpEps guard(eps);
    std::vector<TypeParam> lists[2];
    for (auto& list : lists) {
      for (int n = Below(random, 120); n > 0; --n) list.push_back(Draw(TypeParam(), random, eps, step));
    }
    const auto same = [](const std::vector<TypeParam>& a, const std::vector<TypeParam>& b) {
      return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const TypeParam& s, const TypeParam& r) {
        return std::memcmp(static_cast<const void*>(&s), static_cast<const void*>(&r), sizeof s) == 0;
      });
    };
    std::vector<TypeParam> got = lists[0];
    zbrRemoveDupSeg(got);
    ASSERT_TRUE(same(got, WithoutRepeats(lists[0]))) << "seed " << seed;
    removed += lists[0].size() - got.size();
    got = lists[0];
    zbrRemoveSameSeg(lists[1], got);
    ASSERT_TRUE(same(got, Without(lists[1], lists[0]))) << "seed " << seed;
    removed += lists[0].size() - got.size();
    got = lists[0];
    zbrRemoveSameSeg(got, got);
    ASSERT_TRUE(same(got, Without(lists[0], lists[0]))) << "seed " << seed;
  }
  EXPECT_GT(removed, 50U);
}

TEST(SegmentSets3, DifferInHeightAlone) {
  std::vector<ZBR_SEG3> segments = {{{0, 0, 0}, {1, 0, 0}}, {{0, 0, 1}, {1, 0, 1}}, {{1, 0, 1}, {0, 0, 1}}};
  zbrRemoveDupSeg(segments);
  ASSERT_EQ(segments.size(), 2U);
  EXPECT_EQ(segments[1].s().z(), 1.0);
}

}  // namespace
