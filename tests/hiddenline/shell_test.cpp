// Shells, their trees, the driver's other entries, hidden segments, saving, picking.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>
#include <utility>

#include "hiddenline/scenes.h"

namespace {

constexpr double kLowest = std::numeric_limits<double>::lowest();
using Shells = std::vector<ZBR_HL_SHELL>;

// Small triangles in the four corners of a square, n in all, none touching a midline of the box; each higher than the one before.
Drawing Scattered(unsigned n) {
  std::vector<Corners> corners;
  for (unsigned k = 0; k < n; ++k) {
    const double x = k % 2 == 0 ? 0.01 * k : 99.0 - 0.01 * k;
    const double y = k / 2 % 2 == 0 ? 0.02 * k : 99.0 - 0.02 * k;
    corners.push_back({ZBR_PT3(x, y, k), ZBR_PT3(x + 1, y, k), ZBR_PT3(x, y + 1, k)});
  }
  return DrawTriangles(corners);
}

Drawing Scene(std::uint64_t seed) {
  Random random(seed);
  Drawing drawing = Draw({example::BoxesOnPlate(3, false, seed), example::Gear(300), example::LSolid(2.0)}, RandomView(random));
  Disguise(drawing, random);
  return drawing;
}

void Remove(Shells& shells) {
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
}

// Positions filed in the subtree; checks boxes, order and links on the way.
void Collect(const ZBR_HL_SHELL& shell, const ZBR_HL_QUAD& node, std::vector<int>& filed) {
  EXPECT_TRUE(
      std::is_sorted(node.tris.begin(), node.tris.end(), [&](int a, int b) { return shell.tris[a].max_z > shell.tris[b].max_z; }));
  for (const int k : node.tris) {
    const ZBR_HL_TRI& t = shell.tris[k];
    EXPECT_TRUE(t.quad == &node && node.min_x < t.min_x && t.max_x < node.max_x && node.min_y < t.min_y && t.max_y < node.max_y);
  }
  filed.insert(filed.end(), node.tris.begin(), node.tris.end());
  for (const ZBR_HL_QUAD* child : node.child) {
    if (child == nullptr) continue;
    EXPECT_TRUE(child->parent == &node && child->depth == node.depth + 1);
    Collect(shell, *child, filed);
  }
}

TEST(Shell, FilesEveryTriangleOnce) {
  for (const unsigned n : {2U, 200U, 201U, 1500U}) {
    Drawing drawing = Scattered(n);
    auto& tris = drawing.bodies[0];
    tris[n - 1].pt[0].Set(0, 0, 0);
    tris[n - 1].pt[1].Set(100, 100, 0);             // over the midlines: at the root
    tris[1].pt[1] = tris[1].pt[2] = tris[1].pt[0];  // invalid: filed nowhere
    ZBR_HL_SHELL shell = drawing.Shells()[0];
    shell.HiddenLineSelf();
    EXPECT_EQ(std::any_of(shell.root.child, shell.root.child + 4, [](const ZBR_HL_QUAD* c) { return c != nullptr; }), n > 200) << n;
    EXPECT_EQ(tris[n - 1].quad, &shell.root);
    std::vector<int> filed;
    Collect(shell, shell.root, filed);
    std::sort(filed.begin(), filed.end());
    EXPECT_EQ(filed.size(), n - 1);
    EXPECT_TRUE(std::adjacent_find(filed.begin(), filed.end()) == filed.end());
    EXPECT_FALSE(std::binary_search(filed.begin(), filed.end(), 1));
  }
}

TEST(Shell, EmptyAndNumbered) {
  ZBR_HL_SHELL empty;
  empty.GetMaxMin();
  EXPECT_TRUE(empty.max_x == 0.0 && empty.min_z == 0.0 && empty.maxmin_valid);
  const int next = ZBR_HiddenLine::max_shell_index;
  empty.HiddenLineSelf();
  EXPECT_TRUE(empty.done);
  EXPECT_EQ(ZBR_HiddenLine::max_shell_index, next);
  ZBR_HiddenLine::HiddenLine_Shells(nullptr, 0);
  ZBR_HiddenLine::HiddenLineObj(nullptr, nullptr, 0);
  ZBR_HiddenLine::HiddenLineObjByObj(&empty, &empty, 0, 0, true);

  Drawing drawing = Scattered(3);
  auto& tris = drawing.bodies[0];
  for (int k = 0; k < 3; ++k) tris[static_cast<std::size_t>(k)].idx = 30 - 10 * k;
  ZBR_HL_SHELL shells[2] = {{tris.data(), 3}, {tris.data(), 3}};
  shells[0].HiddenLineSelf();
  shells[1].HiddenLineSelf();
  shells[1].HiddenLineSelf();  // done: no new number
  EXPECT_EQ(shells[0].index, next);
  EXPECT_EQ(shells[1].index, next + 1);
  EXPECT_EQ(ZBR_HiddenLine::max_shell_index, next + 2);
  EXPECT_EQ(&shells[1].GetTri(20), &tris[1]);
  EXPECT_EQ(shells[1].GetTriOrder(10), 2);
  EXPECT_EQ(tris[0].shell, &shells[1]);
}

TEST(Shell, CopiesAndRebuilds) {
  Drawing drawing = Scene(1);
  Shells shells = drawing.Shells();
  Remove(shells);
  const std::string expected = StateText(shells);
  EXPECT_NE(expected.find('['), std::string::npos);
  Shells copies = shells;  // trees and all
  const Shells& same = copies;
  copies = same;
  EXPECT_EQ(copies[0].GetTriOrder(copies[0].tris[1].idx), 1);
  shells.clear();
  Shells moved;
  for (Shells* list : {&copies, &moved}) {
    for (ZBR_HL_SHELL& shell : *list) shell.Init();
    Remove(*list);
    if (list == &copies) moved = std::move(copies);
    EXPECT_EQ(StateText(moved), expected);
  }
  for (const ZBR_HL_SHELL& shell : moved) {  // copied and moved trees are whole, and their nodes know their new parents
    std::vector<int> filed;
    Collect(shell, shell.root, filed);
    ZBR_HL_QUAD copied = shell.root;
    for (const ZBR_HL_QUAD* child : copied.child) EXPECT_TRUE(child == nullptr || child->parent == &copied);
    const ZBR_HL_QUAD taken = std::move(copied);
    for (const ZBR_HL_QUAD* child : taken.child) EXPECT_TRUE(child == nullptr || child->parent == &taken);
  }
}

TEST(Shell, MovesTogetherWithItsTree) {
  for (const double sign : {1.0, -1.0}) {
    const ZBR_PT3 d = ZBR_PT3(1024, 2048, 512) * sign;
    Drawing drawing = Draw({example::Torus(1000)}, *zbr::drawing::NamedView("top"));
    Shells shells = drawing.Shells();
    shells[0].HiddenLineSelf();
    const ZBR_HL_TRI& t = drawing.bodies[0][0];
    const ZBR_PT3 c = (t.pt[0] + t.pt[1] + t.pt[2]) * (1.0 / 3);
    double z = kLowest;
    double moved = kLowest;
    EXPECT_TRUE(ZBR_HiddenLine::PickShell(c.x(), c.y(), shells[0], z));
    shells[0].Offset(d);
    EXPECT_TRUE(ZBR_HiddenLine::PickShell(c.x() + d.x(), c.y() + d.y(), shells[0], moved));
    EXPECT_NEAR(moved, z + d.z(), 1e-9);
    // It hides where it is now: small triangles below its new place, and below its former one, asked as a shell and one by one.
    std::vector<Corners> below;
    for (const ZBR_PT3& at : {c + d, c})
      below.push_back({at + ZBR_PT3(0, 0, -1e3), at + ZBR_PT3(1e-3, 0, -1e3), at + ZBR_PT3(0, 1e-3, -1e3)});
    for (const bool oneByOne : {false, true}) {
      Drawing behind = DrawTriangles(below);
      Shells hidden = behind.Shells();
      hidden[0].HiddenLineSelf();
      if (!oneByOne) ZBR_HiddenLine::HiddenLine_ShellByShell(hidden[0], shells[0]);
      for (ZBR_HL_TRI& u : behind.bodies[0]) {
        if (oneByOne) ZBR_HiddenLine::HiddenLine_TriByShell(u, shells[0]);
      }
      EXPECT_FALSE(behind.bodies[0][0].any_edge_visible);
      EXPECT_TRUE(behind.bodies[0][1].any_edge_visible);
    }
  }
}

TEST(Shell, TrianglesSurviveGrowthSortingAndReturn) {
  std::vector<ZBR_HL_TRI> tris;
  for (int k = 0; k < 100; ++k) {
    ZBR_HL_TRI t;
    t.idx = 99 - k;
    t.pt[0].Set(k, 0, 0);
    t.intvl_v[1].emplace_back(ZBR_PT3(), ZBR_PT3(), 0.25, 0.5);
    tris.push_back(std::move(t));
  }
  std::sort(tris.begin(), tris.end(), [](const ZBR_HL_TRI& a, const ZBR_HL_TRI& b) { return a.idx < b.idx; });
  for (int k = 0; k < 100; ++k) {
    const ZBR_HL_TRI& t = tris[static_cast<std::size_t>(k)];
    EXPECT_TRUE(t.idx == k && t.pt[0].x() == 99 - k && t.intvl_v[1].size() == 1 && t.intvl_v[1][0].e.t == 0.5);
  }
  const ZBR_HL_TRI constructed(tris[7]);  // copies nothing, intended
  EXPECT_TRUE(constructed.idx == -1 && constructed.intvl_v[1].empty());
  EXPECT_TRUE(tris[7].Clone().idx == 7 && tris[7].Clone().intvl_v[1].size() == 1);
}

// Boxes that share faces and lines, prepared in every order, by the driver or shell by shell: the same polylines to the bit.
TEST(Driver, OrderOfPreparationChangesNothing) {
  for (std::uint64_t seed = 0; seed < static_cast<std::uint64_t>(Scaled(12)); ++seed) {
    std::string expected;
    std::vector<unsigned> order = {0, 1, 2, 3};
    do {
      Random random(seed);
      std::vector<Mesh> boxes;
      for (int k = 0; k < 4; ++k) {
        const ZBR_PT3 low(Below(random, 3), Below(random, 3), Below(random, 3));
        boxes.push_back(example::Box(low, low + ZBR_PT3(1 + Below(random, 2), 1 + Below(random, 2), 1)));
      }
      Drawing drawing = Draw(boxes, RandomView(random));
      Shells shells = drawing.Shells();
      const bool oneByOne = order[0] % 2 == 1;
      if (oneByOne) ZBR_HiddenLine::Prepare(shells.data(), 4);
      for (const unsigned k : order) shells[k].HiddenLineSelf();
      for (std::size_t k = 0; oneByOne && k < 16; ++k) {
        if (order[k / 4] != k % 4) ZBR_HiddenLine::HiddenLine_ShellByShell(shells[order[k / 4]], shells[k % 4]);
      }
      Remove(shells);
      std::vector<std::vector<ZBR_PT>> lines;
      zbrOptimizeHiddenLine(shells.data(), lines, 4);
      std::string text = StateText(shells) + std::to_string(lines.size());
      for (std::size_t k = 1; k < 4; ++k) EXPECT_LT(shells[k - 1].index, shells[k].index);
      if (expected.empty()) expected = text;
      ASSERT_EQ(text, expected) << "seed " << seed << ", order " << order[0] << order[1] << order[2] << order[3];
    } while (std::next_permutation(order.begin(), order.end()));
  }
}

// Without quadtrees, cut into pieces, in whatever order they run: the same bits. What ends early or fails can be done again.
TEST(Driver, RemovesAllWithAnExecutor) {
  const auto scene = [](Random random) {
    return Draw({example::Torus(9000), example::BoxesOnPlate(5, true, 3), example::Gear(300)}, RandomView(random));
  };
  for (std::uint64_t seed = 0; seed < 4; ++seed) {
    Drawing drawings[] = {scene(Random(seed)), scene(Random(seed))};
    Shells expected = drawings[0].Shells();
    Shells shells = drawings[1].Shells();
    const auto count = static_cast<unsigned>(shells.size());
    const ZBR_TmpEps eps(seed == 0 ? 1e-6 : 1e-5);  // holds on all threads
    Remove(expected);
    ZBR_HL_REMOVAL options;
    int calls = 0;
    options.progress = [&](double done) { return done <= 1.0 && ++calls < 5; };
    EXPECT_FALSE(ZBR_HiddenLine::RemoveAll(shells.data(), count, options));
    options.progress = [](double) -> bool { throw std::bad_alloc(); };
    EXPECT_THROW(ZBR_HiddenLine::RemoveAll(shells.data(), count, options), std::bad_alloc);
    double last = 0.0;
    options.progress = [&](double done) { return std::exchange(last, done) <= done; };
    options.executor = [](std::size_t n, const std::function<void(std::size_t)>& work) {
      std::thread other([&] {
        for (std::size_t i = n; i-- > n / 2;) work(i);
      });
      for (std::size_t i = n / 2; i-- > 0;) work(i);
      other.join();
    };
    EXPECT_TRUE(ZBR_HiddenLine::RemoveAll(shells.data(), count, options));
    EXPECT_EQ(last, 1.0);
    EXPECT_EQ(StateText(shells), StateText(expected));
    EXPECT_TRUE(shells[0].done && !shells[0].quad_built && shells[0].tris[0].quad == nullptr);
    // Walks that would use the quadtree do without it; built afterwards, it is the usual one.
    for (unsigned k = 0; k < shells[0].count; ++k) {
      for (Shells* list : {&shells, &expected}) ZBR_HiddenLine::HiddenLine_TriByShell((*list)[0].tris[k], (*list)[count - 1]);
    }
    EXPECT_EQ(StateText(shells), StateText(expected));
    shells[0].BuildQuad();
    EXPECT_TRUE(shells[0].order == expected[0].order && shells[0].root.tris == expected[0].root.tris);
    std::vector<int> filed;
    Collect(shells[0], shells[0].root, filed);
    EXPECT_EQ(filed.size(), shells[0].count);
  }
}

TEST(Driver, ObjectsAgainstEachOtherAreShellsTogether) {
  for (std::uint64_t seed = 10; seed < 14; ++seed) {
    Drawing apart = Scene(seed);
    Drawing together = Scene(seed);
    Shells shells = together.Shells();
    Remove(shells);
    Shells objects = apart.Shells();
    const auto n = static_cast<unsigned>(objects.size());
    ZBR_HiddenLine::HiddenLine_Shells(objects.data(), n - 1);
    ZBR_HiddenLine::HiddenLineObjByObj(objects.data(), &objects[n - 1], n - 1, 1, true);  // the last one was not processed before
    EXPECT_EQ(StateText(objects), StateText(shells));
  }
}

TEST(Driver, SkippedTrianglesHideNothingAndStaySkipped) {
  Drawing drawing = Scattered(2);
  auto& tris = drawing.bodies[0];
  for (int i = 0; i < 3; ++i) tris[1].pt[i] = tris[0].pt[i] * 3.0 + ZBR_PT3(-1, -1, 5);
  tris[1].skip = true;
  ZBR_HL_SHELL shell = drawing.Shells()[0];
  shell.HiddenLineSelf();
  EXPECT_TRUE(tris[0].any_edge_visible && tris[1].skip);
  tris[1].skip = false;
  shell.Init();
  shell.HiddenLineSelf();
  EXPECT_FALSE(tris[0].any_edge_visible);
}

TEST(Driver, CloserOfTwoObjects) {
  Drawing drawings[] = {Scattered(1), Scattered(1)};
  for (ZBR_PT3& p : drawings[1].bodies[0][0].pt) p.SetZ(p.z() + 3);
  Shells low = drawings[0].Shells();
  Shells high = drawings[1].Shells();
  Remove(low);
  Remove(high);
  const LoopList overlap = ParseRegion("0 0, 1 0, 0 1");
  std::vector<ZBR_CROSS> crosses(1);
  crosses[0].pt = {0.25, 0.25};
  const auto closer = [](const Shells& a, const Shells& b, const auto& where) {
    return ZBR_HiddenLine::CheckCloser(a.data(), b.data(), 1, 1, where);
  };
  EXPECT_EQ(closer(high, low, overlap), 1);
  EXPECT_EQ(closer(low, high, overlap), 2);
  EXPECT_EQ(closer(low, low, overlap), 0);
  EXPECT_EQ(closer(high, low, MakeLoops({{{0, 0}, {0, 1}, {1, 0}}})), 1) << "clockwise: samples lie inside all the same";
  EXPECT_EQ(closer(high, low, crosses), 1);
  EXPECT_EQ(closer(low, high, crosses), 2);
  crosses[0].pt = {5, 5};
  EXPECT_EQ(closer(low, high, crosses), 0);
}

// Two plates at one height that overlap, one of which has a tower elsewhere.
TEST(Driver, OfObjectsThatAreAsCloseTheHigherOneCoversTheOther) {
  const auto corners = [](double x0, double x1, double z) {
    const ZBR_PT3 a(x0, 0, z), b(x1, 0, z), c(x1, 10, z), d(x0, 10, z);
    return std::vector<Corners>{{a, b, c}, {a, c, d}};
  };
  for (const bool isHigher : {false, true}) {
    std::vector<Corners> first = corners(0, 10, 0);
    if (isHigher) first.push_back({ZBR_PT3(1, 1, 0), ZBR_PT3(2, 1, 5), ZBR_PT3(1, 2, 5)});
    std::vector<Corners> second = corners(5, 15, 0);
    second.push_back({ZBR_PT3(12, 1, 0), ZBR_PT3(13, 1, 3), ZBR_PT3(12, 2, 3)});
    Drawing drawings[] = {DrawTriangles(first), DrawTriangles(second)};
    Shells a = drawings[0].Shells(), b = drawings[1].Shells();
    ZBR_HiddenLine::HiddenLineObj(a.data(), nullptr, 1);
    ZBR_HiddenLine::HiddenLineObj(b.data(), nullptr, 1);
    ZBR_HiddenLine::HiddenLineObjByObj(a.data(), b.data(), 1, 1, true);
    EXPECT_NEAR(ZBR_LOOP::get_area(a[0].outline), isHigher ? 100 : 50, 1e-9);
    EXPECT_NEAR(ZBR_LOOP::get_area(b[0].outline), isHigher ? 50 : 100, 1e-9);
  }
}

// Of a roof's border and the floor's border a little beside it, below: one line to the eye.
TEST(HiddenSegments, LinesWithinAWidthCountAsOne) {
  Drawing drawing = DrawTriangles(
      {{ZBR_PT3(0, 0, 1), ZBR_PT3(10, 0, 1), ZBR_PT3(5, 5, 1)}, {ZBR_PT3(0, 0.01, 0), ZBR_PT3(10, 0.01, 0), ZBR_PT3(5, 5, 0)}});
  for (ZBR_HL_TRI& t : drawing.bodies[0]) t.dispj[1] = t.dispj[2] = false;
  ZBR_HL_SHELL shell = drawing.Shells()[0];
  ZBR_HiddenLine::HiddenLineObj(&shell, nullptr, 1);
  std::vector<ZBR_SEG> out;
  std::vector<ZBR_HL_SOURCE> sources;
  ZBR_HiddenLine::GetHiddenLineObj(&shell, out, 3, 1, sources);
  EXPECT_EQ(out.size(), 1U);
  ZBR_HiddenLine::GetHiddenLineObj(&shell, out, 3, 1, sources, 0.009);
  EXPECT_EQ(out.size(), 1U);
  ZBR_HiddenLine::GetHiddenLineObj(&shell, out, 3, 1, sources, 0.011);
  EXPECT_TRUE(out.empty() && sources.empty());
}

// One edge from (0, 0) to (10, 0) with two visible parts, and another triangle's edge over it, visible from 1 to 6.
TEST(HiddenSegments, Modes) {
  const Corners corners = {ZBR_PT3(0, 0, 0), ZBR_PT3(10, 0, 0), ZBR_PT3(0, 10, 0)};
  Drawing drawing = DrawTriangles({corners, corners});
  auto& tris = drawing.bodies[0];
  for (ZBR_HL_TRI& t : tris) t.dispj[1] = t.dispj[2] = false;
  const auto at = [](double t) { return ZBR_PT3(10 * t, 0, 0); };
  const auto see = [&](ZBR_HL_TRI& t, double s, double e) { t.intvl_v[0].emplace_back(at(s), at(e), s, e); };
  see(tris[0], 0.2, 0.5);
  see(tris[0], 0.7, 1.0);
  const Shells shells = drawing.Shells();
  const auto text = [&](int mode) {
    std::vector<ZBR_SEG> out(9);
    std::vector<ZBR_SEG> again;
    std::vector<ZBR_HL_SOURCE> sources;
    ZBR_HiddenLine::GetHiddenLineObj(shells.data(), out, mode, 1, sources);
    ZBR_HiddenLine::GetHiddenLineObj(shells.data(), again, mode, 1);
    EXPECT_TRUE(sources.size() == out.size() && again.size() == out.size());
    std::string all;
    for (std::size_t k = 0; k < out.size(); ++k) {
      all += std::to_string(std::lround(out[k].s().x())) + "-" + std::to_string(std::lround(out[k].e().x())) + " of " +
             std::to_string(sources[k].triangle) + "; ";
    }
    return all;
  };
  tris[1].dispj[0] = false;
  EXPECT_EQ(text(0), "0-2 of 0; 5-7 of 0; ");
  EXPECT_EQ(text(3), "0-2 of 0; 5-7 of 0; ");
  tris[1].dispj[0] = true;
  EXPECT_EQ(text(1), "0-2 of 0; 5-7 of 0; 0-10 of 1; ");
  see(tris[1], 0.5, 0.7);
  EXPECT_EQ(text(1), "0-2 of 0; 5-7 of 0; 0-5 of 1; 7-10 of 1; ");
  EXPECT_EQ(text(2), "0-2 of 0; 0-5 of 1; ");  // 5-7 is a visible stretch of 1, 7-10 one of 0
  EXPECT_EQ(text(3), "0-2 of 0; ");
  tris[1].intvl_v[0].clear();
  see(tris[1], 0.1, 0.6);
  EXPECT_EQ(text(3), "0-1 of 0; 6-7 of 0; ");
  tris[1].intvl_v[0] = tris[0].intvl_v[0];
  EXPECT_EQ(text(0), "0-2 of 0; 5-7 of 0; ");  // each place once
}

TEST(Saving, RestoresTheState) {
  Drawing drawing = Scene(20);
  Shells shells = drawing.Shells();
  for (ZBR_HL_SHELL& shell : shells) shell.HiddenLineSelf();
  const std::string before = StateText(shells);
  std::vector<std::vector<ZBR_HL_TRI_SAVE>> saved(shells.size());
  for (std::size_t k = 0; k < shells.size(); ++k) shells[k].SaveInfo(saved[k], {});
  EXPECT_EQ(saved[0].size(), shells[0].GetAvailableTriNum());
  Remove(shells);
  EXPECT_NE(StateText(shells), before);
  for (std::size_t k = 0; k < shells.size(); ++k) shells[k].RestoreInfo(saved[k]);
  EXPECT_EQ(StateText(shells), before);
  shells[0].RestoreInfo(saved[0]);  // once only: the lists are gone, the flags come again
  EXPECT_EQ(shells[0].GetDispSegNum(), 0U);
  EXPECT_EQ(shells[0].GetAvailableTriNum(), saved[0].size());
  std::vector<ZBR_HL_TRI_SAVE> none;
  shells[0].RestoreInfo(none);
  EXPECT_EQ(shells[0].GetAvailableTriNum(), 0U);
}

// The tree finds what asking each triangle finds, and never less than the triangle that the place was taken from.
TEST(Picking, AgreesWithAllTriangles) {
  for (const SceneFamily& family : SceneFamilies()) {
    for (int seed = 0; seed < Scaled(6); ++seed) {
      Random random(3000 + static_cast<std::uint64_t>(seed));
      const std::vector<Mesh> bodies = family.bodies(random);
      Drawing drawing = Draw(bodies, RandomView(random));
      Shells shells = drawing.Shells();
      const auto count = static_cast<unsigned>(shells.size());
      Remove(shells);
      for (int k = 0; k < 200; ++k) {
        const auto& body = drawing.bodies[static_cast<std::size_t>(Below(random, static_cast<int>(count)))];
        const ZBR_HL_TRI& near = body[static_cast<std::size_t>(Below(random, static_cast<int>(body.size())))];
        const double u = Unit(random);
        ZBR_PT3 p = near.pt[0] + (near.pt[1] - near.pt[0]) * u + (near.pt[2] - near.pt[0]) * ((1.0 - u) * Unit(random));
        if (k % 5 == 0) p = near.pt[k % 3];  // corners and borders too
        const double start = k % 7 == 0 ? p.z() : kLowest;
        double every = start;
        for (const ZBR_HL_SHELL& shell : shells) {
          for (unsigned j = 0; j < shell.count; ++j) shell.tris[j].Pick(p, every);
        }
        double z = start;
        ASSERT_EQ(ZBR_HiddenLine::PickShells(p.x(), p.y(), shells.data(), count, z), every > start);
        ASSERT_EQ(z, every);
        double walked = start;
        for (const ZBR_HL_SHELL& shell : shells) ZBR_HiddenLine::PickChildQuad(ZBR_PT3(p.x(), p.y(), 0), shell, shell.root, walked);
        ASSERT_EQ(walked, every);
        double named = start;
        ZBR_HL_SOURCE hit;
        ASSERT_EQ(ZBR_HiddenLine::PickShells(p.x(), p.y(), shells.data(), count, named, hit), every > start);
        double alone = start;
        if (hit.shell >= 0) shells[static_cast<std::size_t>(hit.shell)].tris[hit.triangle].Pick(p, alone);
        ASSERT_TRUE(alone == every && named == every && hit.edge == -1);
        ASSERT_TRUE(z >= p.z() - 1e-9 || std::abs(near.normal.normal().z()) < 1e-5) << family.name << " seed " << seed;
      }
    }
  }
}

TEST(Picking, OutsideAndAtCrossings) {
  Drawing drawing = Scattered(2);
  auto& tris = drawing.bodies[0];
  tris[1].pt[2] = tris[1].pt[0] + ZBR_PT3(0.5, 0, 7);  // edge-on
  ZBR_HL_SHELL shell = drawing.Shells()[0];
  shell.HiddenLineSelf();
  double z = -7;
  EXPECT_FALSE(ZBR_HiddenLine::PickShell(1e6, 0, shell, z));
  EXPECT_FALSE(ZBR_HiddenLine::PickShell(NAN, 0, shell, z));
  EXPECT_FALSE(ZBR_HiddenLine::PickShell(tris[1].pt[0].x() + 0.25, tris[1].pt[0].y(), shell, z));
  EXPECT_EQ(z, -7);
  std::vector<ZBR_CROSS> crosses(2);
  crosses[0].pt = {-1, -1};
  EXPECT_FALSE(ZBR_HiddenLine::PickShells({crosses[0]}, &shell, 1, z));
  crosses[1].pt = {0.25, 0.25};
  EXPECT_TRUE(ZBR_HiddenLine::PickShells(crosses, &shell, 1, z));
  EXPECT_EQ(z, 0.0);
  for (const ZBR_PT3& p : tris[0].pt) {  // the border belongs to the triangle
    z = -7;
    EXPECT_TRUE(ZBR_HiddenLine::PickShell(p.x(), p.y(), shell, z));
  }
}

}  // namespace
