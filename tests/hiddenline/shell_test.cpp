// Shells, their trees, the driver's other entries, hidden segments, saving, picking, bad input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "hiddenline/scenes.h"

namespace {

// Runs of `lines` short lines of triangles, n in all, no one touching a midline of the box.
std::vector<ZBR_HL_TRI> Scattered(unsigned n) {
  std::vector<ZBR_HL_TRI> tris(n);
  for (unsigned k = 0; k < n; ++k) {
    const double x = k % 2 == 0 ? 0.01 * k : 99.0 - 0.01 * k;
    const double y = k / 2 % 2 == 0 ? 0.02 * k : 99.0 - 0.02 * k;
    tris[k].pt[0].Set(x, y, k);
    tris[k].pt[1].Set(x + 1, y, k);
    tris[k].pt[2].Set(x, y + 1, k);
    std::fill(std::begin(tris[k].dispj), std::end(tris[k].dispj), true);
  }
  return tris;
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
    std::vector<ZBR_HL_TRI> tris = Scattered(n);
    tris[1].pt[1] = tris[1].pt[2] = tris[1].pt[0];  // invalid: filed nowhere
    ZBR_HL_SHELL shell(tris.data(), n);
    shell.HiddenLineSelf();
    EXPECT_EQ(std::any_of(shell.root.child, shell.root.child + 4, [](const ZBR_HL_QUAD* c) { return c != nullptr; }), n > 200) << n;
    std::vector<int> filed;
    Collect(shell, shell.root, filed);
    std::sort(filed.begin(), filed.end());
    EXPECT_EQ(filed.size(), n - 1) << n;
    EXPECT_TRUE(std::adjacent_find(filed.begin(), filed.end()) == filed.end());
    EXPECT_FALSE(std::binary_search(filed.begin(), filed.end(), 1));
  }
  std::vector<ZBR_HL_TRI> tris = Scattered(250);
  tris[249].pt[1].SetX(50.0);  // the midline of the box from 0 to 100
  tris[249].pt[0].SetX(49.0);
  tris[249].pt[2].SetX(49.0);
  tris[0].pt[0].Set(0, 0, 0);
  tris[1].pt[1].Set(100, 100, 0);
  ZBR_HL_SHELL shell(tris.data(), 250);
  shell.HiddenLineSelf();
  EXPECT_EQ(tris[249].quad, &shell.root);
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

  std::vector<ZBR_HL_TRI> tris = Scattered(3);
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

Drawing Scene(std::uint64_t seed) {
  Random random(seed);
  Drawing drawing = Draw({example::BoxesOnPlate(3, false, seed), example::Gear(300), example::LSolid(2.0)}, RandomView(random));
  Disguise(drawing, random);
  return drawing;
}

void Remove(std::vector<ZBR_HL_SHELL>& shells) {
  ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
}

TEST(Shell, CopiesAndRebuilds) {
  for (std::uint64_t seed = 0; seed < 4; ++seed) {
    Drawing drawing = Scene(seed);
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    Remove(shells);
    const std::string expected = StateText(shells);
    EXPECT_NE(expected.find('['), std::string::npos);
    std::vector<ZBR_HL_SHELL> copies = shells;  // trees and all
    const std::vector<ZBR_HL_SHELL>& same = copies;
    copies = same;
    EXPECT_EQ(copies[0].GetTriOrder(copies[0].tris[1].idx), 1);
    shells.clear();
    for (ZBR_HL_SHELL& shell : copies) shell.Init();
    Remove(copies);
    EXPECT_EQ(StateText(copies), expected);
    std::vector<ZBR_HL_SHELL> moved = std::move(copies);
    for (ZBR_HL_SHELL& shell : moved) shell.Init();
    Remove(moved);
    EXPECT_EQ(StateText(moved), expected);
    // Copied and moved trees are whole, and their nodes know their new parents.
    for (const ZBR_HL_SHELL& shell : moved) {
      std::vector<int> filed;
      Collect(shell, shell.root, filed);
      ZBR_HL_QUAD copied = shell.root;
      for (const ZBR_HL_QUAD* child : copied.child) EXPECT_TRUE(child == nullptr || child->parent == &copied);
      const ZBR_HL_QUAD taken = std::move(copied);
      for (const ZBR_HL_QUAD* child : taken.child) EXPECT_TRUE(child == nullptr || child->parent == &taken);
    }
  }
}

TEST(Shell, MovesTogetherWithItsTree) {
  for (const double sign : {1.0, -1.0}) {
    const ZBR_PT3 d = ZBR_PT3(1024, 2048, 512) * sign;
    Drawing drawing = Draw({example::Torus(1000)}, *tool::NamedView("top"));
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    shells[0].HiddenLineSelf();
    const ZBR_HL_TRI& t = drawing.bodies[0][0];
    const ZBR_PT3 c = (t.pt[0] + t.pt[1] + t.pt[2]) * (1.0 / 3);
    double z = std::numeric_limits<double>::lowest();
    double moved = z;
    EXPECT_TRUE(ZBR_HiddenLine::PickShell(c.x(), c.y(), shells[0], z));
    shells[0].Offset(d);
    EXPECT_TRUE(ZBR_HiddenLine::PickShell(c.x() + d.x(), c.y() + d.y(), shells[0], moved));
    EXPECT_NEAR(moved, z + d.z(), 1e-9);
    // It hides where it is now: one small triangle below its new place, one below its former place, twice the same.
    std::vector<ZBR_HL_TRI> tris = Scattered(4);
    for (int k = 0; k < 12; ++k) {
      tris[static_cast<std::size_t>(k / 3)].pt[k % 3] =
          c + (k / 3 % 2 == 0 ? d : ZBR_PT3()) + ZBR_PT3(k % 3 == 1 ? 1e-3 : 0, k % 3 == 2 ? 1e-3 : 0, -1000 - k / 6);
    }
    ZBR_HL_SHELL behind[] = {{&tris[0], 2}, {&tris[2], 2}};
    for (ZBR_HL_SHELL& shell : behind) shell.HiddenLineSelf();
    ZBR_HiddenLine::HiddenLine_ShellByShell(behind[0], shells[0]);
    for (ZBR_HL_TRI* u : {&tris[2], &tris[3]}) ZBR_HiddenLine::HiddenLine_TriByShell(*u, shells[0]);
    for (const std::size_t k : {0U, 2U}) {
      EXPECT_FALSE(tris[k].any_edge_visible) << k;
      EXPECT_TRUE(tris[k + 1].any_edge_visible) << k;
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
  ZBR_HL_TRI assigned;
  assigned = tris[7];
  EXPECT_TRUE(assigned.idx == 7 && assigned.intvl_v[1].size() == 1);
}

TEST(Driver, ObjectsAgainstEachOtherAreShellsTogether) {
  for (std::uint64_t seed = 10; seed < 14; ++seed) {
    Drawing apart = Scene(seed);
    Drawing together = Scene(seed);
    std::vector<ZBR_HL_SHELL> shells = together.Shells();
    Remove(shells);
    std::vector<ZBR_HL_SHELL> objects = apart.Shells();
    const auto n = static_cast<unsigned>(objects.size());
    ZBR_HiddenLine::HiddenLine_Shells(objects.data(), n - 1);
    ZBR_HiddenLine::HiddenLineObjByObj(objects.data(), &objects[n - 1], n - 1, 1, true);  // the last one was not processed before
    EXPECT_EQ(StateText(objects), StateText(shells));
  }
}

TEST(Driver, SkippedTrianglesHideNothingAndStaySkipped) {
  std::vector<ZBR_HL_TRI> tris = Scattered(2);
  for (int i = 0; i < 3; ++i) tris[1].pt[i] = tris[0].pt[i] * 3.0 + ZBR_PT3(-1, -1, 5);
  tris[1].skip = true;
  ZBR_HL_SHELL shell(tris.data(), 2);
  shell.HiddenLineSelf();
  EXPECT_TRUE(tris[0].any_edge_visible && tris[1].skip);
  tris[1].skip = false;
  shell.Init();
  shell.HiddenLineSelf();
  EXPECT_FALSE(tris[0].any_edge_visible);
}

TEST(Driver, CloserOfTwoObjects) {
  std::vector<ZBR_HL_TRI> low = Scattered(1);
  std::vector<ZBR_HL_TRI> high = Scattered(1);
  for (ZBR_PT3& p : high[0].pt) p.SetZ(p.z() + 3);
  ZBR_HL_SHELL a(low.data(), 1);
  ZBR_HL_SHELL b(high.data(), 1);
  a.HiddenLineSelf();
  b.HiddenLineSelf();
  const LoopList overlap = ParseRegion("0 0, 1 0, 0 1");
  std::vector<ZBR_CROSS> crosses(1);
  crosses[0].pt = {0.25, 0.25};
  EXPECT_EQ(ZBR_HiddenLine::CheckCloser(&b, &a, 1, 1, overlap), 1);
  EXPECT_EQ(ZBR_HiddenLine::CheckCloser(&a, &b, 1, 1, overlap), 2);
  EXPECT_EQ(ZBR_HiddenLine::CheckCloser(&a, &a, 1, 1, overlap), 0);
  EXPECT_EQ(ZBR_HiddenLine::CheckCloser(&b, &a, 1, 1, crosses), 1);
  EXPECT_EQ(ZBR_HiddenLine::CheckCloser(&a, &b, 1, 1, crosses), 2);
  crosses[0].pt = {5, 5};
  EXPECT_EQ(ZBR_HiddenLine::CheckCloser(&a, &b, 1, 1, crosses), 0);
}

// Of a roof's border and the floor's border a little beside it, below: one line to the eye.
TEST(HiddenSegments, LinesWithinAWidthCountAsOne) {
  std::vector<ZBR_HL_TRI> tris(2);
  for (std::size_t k = 0; k < 2; ++k) {
    const double beside = k == 0 ? 0.0 : 0.01;  // the floor's border lies inside the roof
    const double z = k == 0 ? 1.0 : 0.0;
    tris[k].pt[0].Set(0, beside, z);
    tris[k].pt[1].Set(10, beside, z);
    tris[k].pt[2].Set(5, 5, z);
    tris[k].dispj[0] = true;
  }
  ZBR_HL_SHELL shell(tris.data(), 2);
  ZBR_HiddenLine::HiddenLineObj(&shell, nullptr, 1);
  std::vector<ZBR_SEG> out;
  std::vector<ZBR_HL_SOURCE> sources;
  ZBR_HiddenLine::GetHiddenLineObj(&shell, out, 3, 1, sources);
  EXPECT_EQ(out.size(), 1U);
  ZBR_HiddenLine::GetHiddenLineObj(&shell, out, 3, 1, sources, 0.009);
  EXPECT_EQ(out.size(), 1U);
  ZBR_HiddenLine::GetHiddenLineObj(&shell, out, 3, 1, sources, 0.011);
  EXPECT_TRUE(out.empty());
  EXPECT_TRUE(sources.empty());
}

// One edge from (0, 0) to (10, 0) with two visible parts, and another triangle's edge over it, visible from 1 to 6.
TEST(HiddenSegments, Modes) {
  std::vector<ZBR_HL_TRI> tris(2);
  for (ZBR_HL_TRI& t : tris) {
    t.pt[1].Set(10, 0, 0);
    t.pt[2].Set(0, 10, 0);
    t.dispj[0] = true;
  }
  const auto at = [](double t) { return ZBR_PT3(10 * t, 0, 0); };
  const auto see = [&](ZBR_HL_TRI& t, double s, double e) { t.intvl_v[0].emplace_back(at(s), at(e), s, e); };
  see(tris[0], 0.2, 0.5);
  see(tris[0], 0.7, 1.0);
  const ZBR_HL_SHELL shell(tris.data(), 2);
  const auto text = [&](int mode) {
    std::vector<ZBR_SEG> out(9);
    std::vector<ZBR_HL_SOURCE> sources;
    ZBR_HiddenLine::GetHiddenLineObj(&shell, out, mode, 1, sources);
    EXPECT_EQ(sources.size(), out.size());
    std::vector<ZBR_SEG> again;
    ZBR_HiddenLine::GetHiddenLineObj(&shell, again, mode, 1);
    EXPECT_EQ(again.size(), out.size());
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
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
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

// Height of a triangle over p from its areas, or lowest when p is clearly outside it.
double HeightOver(const ZBR_HL_TRI& t, const ZBR_PT& p, bool& nearBorder) {
  double area[3];
  double sum = 0.0;
  for (int i = 0; i < 3; ++i) {
    const ZBR_PT a = t.pt[(i + 1) % 3].xy();
    sum += area[i] = (t.pt[(i + 2) % 3].xy() - a).OuterProduct(p - a);
  }
  double z = 0.0;
  for (int i = 0; i < 3; ++i) {
    nearBorder = nearBorder || std::abs(area[i]) < 1e-3;
    if (area[i] * sum <= 0.0) return std::numeric_limits<double>::lowest();
    z += area[i] / sum * t.pt[i].z();
  }
  return z;
}

TEST(Picking, AgreesWithAllTriangles) {
  long hits = 0;
  for (const SceneFamily& family : SceneFamilies()) {
    for (int seed = 0; seed < Scaled(6); ++seed) {
      Random random(3000 + static_cast<std::uint64_t>(seed));
      const std::vector<Mesh> bodies = family.bodies(random);
      Drawing drawing = Draw(bodies, RandomView(random));
      std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
      const auto count = static_cast<unsigned>(shells.size());
      Remove(shells);
      for (int k = 0; k < 200; ++k) {
        const auto& body = drawing.bodies[static_cast<std::size_t>(Below(random, static_cast<int>(count)))];
        const ZBR_HL_TRI& near = body[static_cast<std::size_t>(Below(random, static_cast<int>(body.size())))];
        ZBR_PT3 p =
            near.pt[0] + (near.pt[1] - near.pt[0]) * Unit(random) + (near.pt[2] - near.pt[0]) * (Unit(random) * Unit(random));
        if (k % 5 == 0) p = near.pt[k % 3];  // corners and borders too
        const double start = k % 7 == 0 ? p.z() : std::numeric_limits<double>::lowest();
        double every = start;
        double brute = start;
        bool nearBorder = false;
        for (const ZBR_HL_SHELL& shell : shells) {
          for (unsigned j = 0; j < shell.count; ++j) {
            shell.tris[j].Pick(p, every);
            if (std::abs(shell.tris[j].normal.normal().z()) > 1e-5)
              brute = std::max(brute, HeightOver(shell.tris[j], p.xy(), nearBorder));
          }
        }
        double z = start;
        ASSERT_EQ(ZBR_HiddenLine::PickShells(p.x(), p.y(), shells.data(), count, z), every > start);
        ASSERT_EQ(z, every);
        ASSERT_TRUE(nearBorder || std::abs(z - brute) <= 1e-9 * (1.0 + std::abs(brute)));
        hits += z > start ? 1 : 0;
      }
    }
  }
  EXPECT_GT(hits, 3000);
}

TEST(Picking, OutsideAndAtCrossings) {
  std::vector<ZBR_HL_TRI> tris = Scattered(2);
  tris[1].pt[2] = tris[1].pt[0] + ZBR_PT3(0.5, 0, 7);  // edge-on
  ZBR_HL_SHELL shell(tris.data(), 2);
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

// Triangles that are not finite draw and hide nothing: the others are as if they were not there. Those with very large coordinates
// take part or not, as far as one can compute with them; what is drawn has numbers for coordinates.
TEST(BadInput, DoesNoHarm) {
  const double bad[] = {NAN, INFINITY, -INFINITY, 1e100, -1e200, std::numeric_limits<double>::max()};
  for (int seed = 0; seed < Scaled(60); ++seed) {
    const bool huge = seed % 2 == 1;
    Random random(static_cast<std::uint64_t>(seed));
    const std::vector<Mesh> bodies = SceneFamilies()[static_cast<std::size_t>(seed) / 2 % SceneFamilies().size()].bodies(random);
    const View view = RandomView(random);
    Drawing poisoned = Draw(bodies, view);
    Drawing clean = Draw(bodies, view);
    ForgetNeighbours(poisoned);
    ForgetNeighbours(clean);
    for (std::size_t b = 0; b < clean.bodies.size(); ++b) {
      for (std::size_t k = clean.bodies[b].size(); k-- > 0;) {
        if (Below(random, 5) != 0) continue;
        ZBR_PT3& p = poisoned.bodies[b][k].pt[Below(random, 3)];
        const double c = bad[Below(random, 3) + (huge ? 3 : 0)];
        const int axis = Below(random, 3);
        p.Set(axis == 0 ? c : p.x(), axis == 1 ? c : p.y(), axis == 2 ? c : p.z());
        clean.bodies[b].erase(clean.bodies[b].begin() + static_cast<std::ptrdiff_t>(k));
      }
    }
    std::vector<ZBR_HL_SHELL> shells = poisoned.Shells();
    std::vector<ZBR_HL_SHELL> cleanShells = clean.Shells();
    Remove(shells);
    Remove(cleanShells);
    for (std::size_t b = 0; b < shells.size() && !huge; ++b) {
      EXPECT_EQ(shells[b].GetDispSegNum(), cleanShells[b].GetDispSegNum()) << "seed " << seed;
      EXPECT_TRUE(std::isfinite(shells[b].max_x - shells[b].min_x) && std::isfinite(shells[b].max_z - shells[b].min_y))
          << "seed " << seed;
    }
    std::vector<std::vector<ZBR_PT>> lines;
    std::vector<ZBR_SEG> hidden;
    zbrOptimizeHiddenLine(shells.data(), lines, static_cast<unsigned>(shells.size()));
    ZBR_HiddenLine::GetHiddenLineObj(shells.data(), hidden, 3, static_cast<unsigned>(shells.size()));
    for (const auto& line : lines) {
      for (const ZBR_PT& p : line) ASSERT_TRUE(std::isfinite(p.x()) && std::isfinite(p.y())) << "seed " << seed;
    }
    double z = 0.0;
    ZBR_HiddenLine::PickShells(1.0, 1.0, shells.data(), static_cast<unsigned>(shells.size()), z);
    EXPECT_FALSE(std::isnan(z));
  }
}

}  // namespace
