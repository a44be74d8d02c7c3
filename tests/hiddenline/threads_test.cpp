// Several threads at work: each on shells of its own under a tolerance of its own, and all behind one shell that hides.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

#include "hiddenline/scenes.h"

namespace {

constexpr int kThreads = 4;

double EpsOf(int thread) {
  return 1e-5 / (1 + thread % 2);
}

// The state of a dozen scenes after removal, by themselves and, when there is one, by the occluder. `numbers` receives the shells'.
std::string Processed(int thread, const ZBR_HL_SHELL* occluder, std::vector<int>& numbers) {
  zbrSetEps(EpsOf(thread));
  std::string text;
  for (std::uint64_t seed = 0; seed < 12; ++seed) {
    Drawing drawing = DrawHard(SceneFamilies()[seed % 3], seed);
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
    ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
    for (ZBR_HL_SHELL& shell : shells) {
      numbers.push_back(shell.index);
      if (occluder == nullptr) continue;
      ZBR_HiddenLine::HiddenLine_ShellByShell(shell, *occluder);
      for (unsigned k = 0; k < shell.count; ++k) ZBR_HiddenLine::HiddenLine_TriByShell(shell.tris[k], *occluder);
      double z = -1e300;
      ZBR_HiddenLine::PickShell(shell.tris[0].pt[0].x(), shell.tris[0].pt[0].y(), *occluder, z);
      text += std::to_string(z) + " ";
    }
    text += StateText(shells);
  }
  return zbr_EpsE(EpsOf(thread)) && !zbr_EpsE(EpsOf(thread) * 1.0000001) ? text : "tolerance lost";
}

void ExpectSameFromAllThreads(const ZBR_HL_SHELL* occluder) {
  std::vector<int> numbers[kThreads + 2];
  const ZBR_TmpEps guard(1e-5);
  const std::string expected[] = {Processed(0, occluder, numbers[kThreads]), Processed(1, occluder, numbers[kThreads + 1])};
  std::string got[kThreads];
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) threads.emplace_back([&, k] { got[k] = Processed(k, occluder, numbers[k]); });
  for (std::thread& thread : threads) thread.join();
  for (int k = 0; k < kThreads; ++k) EXPECT_TRUE(got[k] == expected[k % 2]) << "thread " << k;
  std::set<int> distinct;
  std::size_t all = 0;
  for (const std::vector<int>& list : numbers) {
    distinct.insert(list.begin(), list.end());
    all += list.size();
  }
  EXPECT_EQ(distinct.size(), all);  // every shell has a number of its own
}

TEST(HiddenLineThreads, OwnShellsOwnTolerance) {
  ExpectSameFromAllThreads(nullptr);
}

TEST(HiddenLineThreads, BehindOneOccluder) {
  Drawing drawing = Draw({Moved(example::Torus(600), {1, 1, 2})}, *tool::NamedView("iso"));
  std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  shells[0].HiddenLineSelf();
  ExpectSameFromAllThreads(shells.data());
}

}  // namespace
