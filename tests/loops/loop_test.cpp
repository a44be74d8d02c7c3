// The loop record: cache, copies, ownership.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/shapes.h"

namespace {

TEST(Loop, SetupDescribesThePointsOnce) {
  ZBR_LOOP loop = *ParseLoop("1 2, 4 2, 4 6, 1 6");
  EXPECT_FALSE(loop.IsSetuped());
  loop.Setup();
  EXPECT_TRUE(loop.IsSetuped());
  EXPECT_EQ(loop.area(), 12.0);
  EXPECT_TRUE(loop.xmin() == 1.0 && loop.xmax() == 4.0 && loop.ymin() == 2.0 && loop.ymax() == 6.0);
  loop.pt()[2].Set(40, 60);
  loop.Setup();
  EXPECT_EQ(loop.xmax(), 4.0) << "a cache that claims to be valid stays";
  loop.Reset();
  loop.Setup();
  EXPECT_EQ(loop.xmax(), 40.0);
  ZBR_LOOP empty;
  empty.Setup();
  EXPECT_TRUE(empty.IsSetuped() && empty.xmax() == 0.0);
  const auto two = ParseLoop("3 4, 5 2");
  two->Setup();
  EXPECT_TRUE(two->area() == 0.0 && two->xmin() == 3.0 && two->ymax() == 4.0);
}

TEST(Loop, ReverseKeepsTheCacheRight) {
  const auto loop = MakeLoop(Square(0, 0, 1));
  loop->Setup();
  loop->reverse();
  EXPECT_EQ(loop->area(), -1.0);
  EXPECT_EQ(ToText({loop}), "0 1, 1 1, 1 0, 0 0");
}

TEST(Loop, OutofIsStrict) {
  ZBR_LOOP a = *MakeLoop(Square(0, 0, 1));
  a.Setup();
  for (const ZBR_PT& at : {ZBR_PT(1.5, 0), ZBR_PT(-1.5, 0), ZBR_PT(0, 1.5), ZBR_PT(0, -1.5)}) {
    ZBR_LOOP b = *MakeLoop(Square(at.x(), at.y(), 1));
    b.Setup();
    EXPECT_TRUE(a.outof(b, 0.4));
    EXPECT_FALSE(a.outof(b, 0.5));
  }
}

TEST(Loop, LinToWrapsOverTheClosingEdge) {
  const auto loop = MakeLoop(Square(1, 1, 1));
  const struct { double t, x, y; } rows[] = {{0, 1, 1}, {2, 2, 2}, {2.5, 1.5, 2}, {3.5, 1, 1.5}, {4, 1, 1}};
  for (const auto& row : rows) EXPECT_TRUE(loop->LinTo(row.t).x() == row.x && loop->LinTo(row.t).y() == row.y) << row.t;
}

// Each of these read beside the points, or went round for ever.
TEST(Loop, ParametersBesideTheBoundaryGiveNaN) {
  const auto loop = MakeLoop(Square(0, 0, 1));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double t : {-0.5, 4.5, 1e9, -1e300, nan}) {
    EXPECT_TRUE(std::isnan(loop->LinTo(t).x()) && std::isnan(loop->LinTo(t).y())) << t;
    EXPECT_TRUE(std::isnan(loop->get_area(t, 1.5)) && std::isnan(loop->get_area(1.5, t))) << t;
    EXPECT_TRUE(std::isnan(loop->get_area({0, 0}, {1, 1}, t, 2)) && std::isnan(loop->get_area({0, 0}, {1, 1}, 2, t))) << t;
  }
  EXPECT_TRUE(std::isnan(ZBR_LOOP().LinTo(0).x()));
  EXPECT_TRUE(loop->get_area(2, 4) == 0.5 && loop->get_area(4, 0) == 1.0);
}

TEST(Loop, OffsetMovesChildrenToo) {
  LoopList region = ParseRegion("0 0, 9 0, 9 9, 0 9; 1 1, 2 1, 2 2, 1 2");
  ZBR_LOOP::Offset(region, {10, -10});
  EXPECT_TRUE(region[0]->xmin() == 10.0 && region[0]->ymax() == -1.0 && region[0]->children()[0]->xmax() == 12.0);
  EXPECT_EQ(ToText(region), "10 -10, 19 -10, 19 -1, 10 -1; 11 -8, 12 -8, 12 -9, 11 -9");
  EXPECT_EQ(NetArea(region), 80.0);
}

TEST(Loop, CopyConstructionSharesChildrenAssignmentAppendsCopies) {
  const LoopList region = ParseRegion("0 0, 9 0, 9 9, 0 9; 1 1, 2 1, 2 2, 1 2; 5 5, 6 5, 6 6, 5 6");
  const auto grandchild = MakeLoop(Square(1.2, 1.2, 0.1));
  region[0]->children()[0]->children().push_back(grandchild);

  const ZBR_LOOP copy(*region[0]);
  EXPECT_EQ(copy.children(), region[0]->children());
  EXPECT_EQ(copy.area(), 81.0);

  ZBR_LOOP target;
  target.children().push_back(MakeLoop(Square(0, 0, 1)));
  target = *region[0];
  ASSERT_EQ(target.children().size(), 3U) << "the child it had stays in front; intended";
  EXPECT_NE(target.children()[1], region[0]->children()[0]);
  EXPECT_NE(target.children()[1]->children().at(0), grandchild);
  EXPECT_EQ(target.level(), 0);
  EXPECT_TRUE(target.IsSetuped());
  ZBR_LOOP& self = target;
  target = self;
  EXPECT_EQ(target.children().size(), 3U);

  ZBR_LOOP member;
  member.CopyMember(*region[0]);
  EXPECT_TRUE(member.children().empty());
  EXPECT_EQ(member.area(), 81.0);
}

TEST(Loop, ListCopies) {
  const LoopList region = ParseRegion("0 0, 9 0, 9 9, 0 9; 1 1, 2 1, 2 2, 1 2");
  LoopList shared = ParseLoops("7 7, 8 7, 8 8");
  ZBR_LOOP::CopyLoopsPtr(shared, region);
  EXPECT_EQ(shared, region);
  LoopList deep = shared;
  ZBR_LOOP::DeepCopyLoops(deep, region);
  ASSERT_EQ(deep.size(), 1U);
  EXPECT_NE(deep[0], region[0]);
  EXPECT_NE(deep[0]->children().at(0), region[0]->children()[0]);
  EXPECT_EQ(ToText(deep), ToText(region));
  ZBR_LOOP::AppendTopLoopDup(deep, *region[0]);
  EXPECT_EQ(deep[1]->level(), -1);
  EXPECT_TRUE(deep[1]->children().empty());
  EXPECT_EQ(deep[1]->area(), 81.0);
  EXPECT_EQ(ZBR_LOOP::get_area(region), 80.0);
}

TEST(Loop, DeepNestingIsReleasedWithoutRecursion) {
  auto top = std::make_shared<ZBR_LOOP>();
  std::weak_ptr<ZBR_LOOP> deepest = top;
  for (int depth = 0; depth < 100000; ++depth) {
    auto child = std::make_shared<ZBR_LOOP>();
    deepest.lock()->children().push_back(child);
    deepest = child;
  }
  std::shared_ptr<ZBR_LOOP> kept = top->children()[0];
  top.reset();
  EXPECT_FALSE(deepest.expired()) << "still held by the child that was kept";
  EXPECT_EQ(kept->children().size(), 1U);
  kept.reset();
  EXPECT_TRUE(deepest.expired());
}

}  // namespace
