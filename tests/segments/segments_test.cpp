// Removing segments that repeat others, beside trying all pairs.
#include <gtest/gtest.h>

#include <cmath>

#include <zbr/segments.h>
#include <zbr/tolerance.h>

namespace {

// Both kinds of segments, given by the ends' x; those in space also by a height.
ZBR_SEG Make(const ZBR_SEG& /*kind*/, double s, double e, double /*height*/ = 0.0) {
  return {ZBR_PT(s, 0), ZBR_PT(e, 0)};
}
ZBR_SEG3 Make(const ZBR_SEG3& /*kind*/, double s, double e, double height = 0.0) {
  return {ZBR_PT3(s, 0, height), ZBR_PT3(e, 0, height)};
}

template <class Segment>
class SegmentSets : public testing::Test {};
using Kinds = testing::Types<ZBR_SEG, ZBR_SEG3>;
TYPED_TEST_SUITE(SegmentSets, Kinds, );

TYPED_TEST(SegmentSets, TheFirstOfEachStaysAndTheReferenceGoes) {
  const auto text = [](const std::vector<TypeParam>& list) {
    std::string out;
    for (const TypeParam& s : list)
      out += std::to_string(std::lround(1e6 * s.s().x())) + "-" + std::to_string(std::lround(1e6 * s.e().x())) + " ";
    return out;
  };
  const TypeParam kind;
  const std::vector<TypeParam> list = {Make(kind, 1, 0),        Make(kind, 0, 1),   Make(kind, 2, 3),   Make(kind, 0.000005, 1),
                                       Make(kind, 0.000012, 1), Make(kind, NAN, 1), Make(kind, NAN, 1), Make(kind, 3, 2.000009)};
  std::vector<TypeParam> unique(list.begin(), list.begin() + 5);
  zbrRemoveDupSeg(unique);
  EXPECT_EQ(text(unique), "1000000-0 2000000-3000000 12-1000000 ");
  std::vector<TypeParam> others(list.begin(), list.begin() + 5);
  zbrRemoveSameSeg({list[7]}, others);
  EXPECT_EQ(text(others), "1000000-0 0-1000000 5-1000000 12-1000000 ");
  std::vector<TypeParam> all = list;
  zbrRemoveDupSeg(all);
  EXPECT_EQ(all.size(), 5U) << "what is not a number is like nothing";
  zbrRemoveSameSeg(all, all);
  EXPECT_EQ(all.size(), 2U);
}

TEST(SegmentSets3, DifferInHeightAlone) {
  std::vector<ZBR_SEG3> segments = {Make(ZBR_SEG3(), 0, 1), Make(ZBR_SEG3(), 0, 1, 1), Make(ZBR_SEG3(), 1, 0, 1)};
  zbrRemoveDupSeg(segments);
  ASSERT_EQ(segments.size(), 2U);
  EXPECT_EQ(segments[1].s().z(), 1.0);
}

}  // namespace
