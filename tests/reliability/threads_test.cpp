// Several threads at work on shared input that is only read, each with a tolerance of its own; objects processed side by side that
// then hide each other; tolerance guards that exceptions unwind.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "hiddenline/scenes.h"
#include "reliability/digest.h"
#include "support/expect.h"

namespace {

constexpr int kThreads = 4;

double EpsOf(int thread) {
  return 1e-5 / (1 + thread % 2);
}

// What work(thread) gives under each thread's tolerance, one thread after the other and all at once, must be the same.
void ExpectSameAtOnce(const std::function<std::uint64_t(int)>& work) {
  const auto run = [&](int thread) {
    const ZBR_TmpEps tolerance(EpsOf(thread));
    const std::uint64_t digest = work(thread);
    return zbr_EpsE(EpsOf(thread)) && !zbr_EpsE(EpsOf(thread) * 1.0000001) ? digest : 0;
  };
  std::uint64_t expected[kThreads];
  std::uint64_t got[kThreads] = {};
  for (int k = 0; k < kThreads; ++k) expected[k] = run(k);
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) threads.emplace_back([&, k] { got[k] = run(k); });
  for (std::thread& thread : threads) thread.join();
  for (int k = 0; k < kThreads; ++k) {
    EXPECT_NE(expected[k], 0U);
    EXPECT_EQ(got[k], expected[k]) << "thread " << k;
  }
}

// What each thread computes alone, and with what all share: results, what is clipped by them, and answers of the locator, which
// read the tolerance.
TEST(SharedInput, RegionsAndALocator) {
  Random random(3);
  const OperandPair pair = FamilyNamed("blocks").draw(random);
  const LoopList a = Nest(pair.a);
  const LoopList b = Nest(pair.b);
  const ZBR_LOOP_LOCATOR locator(Nest({Square(0, 0, 4), Square(1, 1, 2)}));
  ExpectSameAtOnce([&](int thread) {
    Digest digest;
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
      Random own(seed);
      const OperandPair alone = Families()[seed % 5].draw(own);
      for (const LoopList& loops : RunAll(Nest(alone.a), Nest(alone.b)).loops) digest.Add(loops);
      for (const LoopList& loops : RunAll(a, b).loops) digest.Add(loops);
      std::vector<std::vector<ZBR_PT3>> inside, outside;
      zbrClipPolyline({{-1, -1, 0}, {9, 7, 1}, {9, 0.1 * static_cast<double>(seed), 0}, {-1, 3, 2}}, a, inside, &outside);
      digest.Add(inside, outside, zbrCombineRegions(RegionOf(alone.a), RegionOf(pair.b), ZBR_BOOL_XOR).points());
    }
    const double eps = EpsOf(thread);
    const ZBR_POLY_INSIDE expected[] = {ZBR_PI_ON_EDGE, ZBR_PI_IN, ZBR_PI_OUT};  // the last in the hole
    const double places[] = {0.5 * eps, 2.0 * eps, 2.0};
    for (int k = 0; k < 3; ++k) {
      if (locator.IsInside({places[k], 2.0}) != expected[k]) return std::uint64_t{0};
    }
    return digest.value();
  });
}

// Each thread's objects are its own; what they are drawn behind, and whose outline covers theirs, is read by all.
TEST(SharedInput, ObjectsBehindOneObject) {
  Drawing drawing = Draw({Moved(example::Torus(600), {1, 1, 2})}, *zbr::drawing::NamedView("iso"));
  std::vector<ZBR_HL_SHELL> front = drawing.Shells();
  ZBR_HiddenLine::HiddenLineObj(front.data(), nullptr, 1);
  ExpectSameAtOnce([&](int) {
    Digest digest;
    for (std::uint64_t seed = 0; seed < 8; ++seed) {
      Drawing own = DrawHard(SceneFamilies()[seed % 3], seed);
      std::vector<ZBR_HL_SHELL> shells = own.Shells();
      const auto count = static_cast<unsigned>(shells.size());
      ZBR_HiddenLine::HiddenLineObj(shells.data(), nullptr, count);
      ZBR_HiddenLine::HiddenLineObjByObj(shells.data(), front.data(), count, 1, false);
      const ZBR_HL_TRI& t = shells[0].tris[0];
      std::vector<ZBR_HL_INTERVAL> parts = {ZBR_HL_INTERVAL(t.pt[0], t.pt[1], 0.0, 1.0)};
      ZBR_HiddenLine::OutLine_TriByShell(t, 0, front[0], parts);
      digest.Add(shells, shells[0].outline, parts);
    }
    return digest.value();
  });
}

// The shells of one scene: prepared by a thread each, then hidden by a thread each behind all others.
TEST(SharedInput, ShellsOfOneSceneHideEachOther) {
  const auto draw = [] {
    return Draw({example::Gear(900), Moved(example::Torus(600), {0, 1, 1}), example::USolid(1.0)}, *zbr::drawing::NamedView("iso"));
  };
  Drawing alone = draw();
  std::vector<ZBR_HL_SHELL> expected = alone.Shells();
  ZBR_HiddenLine::HiddenLine_Shells(expected.data(), static_cast<unsigned>(expected.size()));

  Drawing drawing = draw();
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  const auto forEach = [&](const std::function<void(ZBR_HL_SHELL&)>& work) {
    std::vector<std::thread> threads;
    for (ZBR_HL_SHELL& shell : shells) threads.emplace_back([&] { work(shell); });
    for (std::thread& thread : threads) thread.join();
  };
  forEach([](ZBR_HL_SHELL& shell) { shell.HiddenLineSelf(); });
  forEach([&](ZBR_HL_SHELL& shell) {
    for (const ZBR_HL_SHELL& other : shells) {
      if (&other != &shell) ZBR_HiddenLine::HiddenLine_ShellByShell(shell, other);
    }
  });
  EXPECT_EQ(StateText(shells), StateText(expected));
}

// A shell so large that its preparation is shared out, too, goes to as many threads as the caller likes. Lines without width, which
// no tree holds, are part of it.
TEST(SharedInput, OneShellInPieces) {
  const auto draw = [](unsigned threads) {
    Drawing drawing = Draw({example::Gear(40000)}, *zbr::drawing::NamedView("dimetric"));
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    for (unsigned k = 0; k < 5; ++k) {
      ZBR_HL_TRI& line = shells[0].tris[1000 * k];
      line.pt[2] = line.pt[1];
      line.dispj[0] = true;
    }
    if (threads == 0) {
      ZBR_HiddenLine::HiddenLine_Shells(shells.data(), 1);
      return StateText(shells);
    }
    ZBR_HL_REMOVAL options;
    options.executor = [threads](std::size_t n, const std::function<void(std::size_t)>& work) {
      std::atomic<std::size_t> next{0};
      std::vector<std::thread> all;
      for (unsigned k = 0; k < threads; ++k) {
        all.emplace_back([&] {
          for (std::size_t i = next++; i < n; i = next++) work(i);
        });
      }
      for (std::thread& thread : all) thread.join();
    };
    EXPECT_TRUE(ZBR_HiddenLine::RemoveAll(shells.data(), 1, options));
    return StateText(shells);
  };
  const std::string expected = draw(0);
  for (const unsigned threads : {1U, 2U, 4U}) EXPECT_TRUE(draw(threads) == expected) << threads << " threads";
}

}  // namespace
