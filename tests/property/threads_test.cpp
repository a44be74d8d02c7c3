// Several threads at work, each with a tolerance of its own, on their own loops and on shared ones.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <thread>

#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

constexpr int kThreads = 4;

// What `work` gives on this thread must come from every thread under a tolerance of its own, which stays as it was set.
void ExpectFromAllThreads(const std::function<std::string(double eps)>& work) {
  const auto epsOf = [](int thread) { return 1e-5 / (1 + thread % 2); };
  std::string expected[2];
  std::string got[kThreads];
  const auto run = [&](int thread, std::string& out) {
    zbrSetEps(epsOf(thread));
    out = work(epsOf(thread));
    if (!zbr_EpsE(epsOf(thread)) || zbr_EpsE(epsOf(thread) * 1.0000001)) out = "tolerance lost";
  };
  const ZBR_TmpEps guard(1e-5);
  for (int k = 0; k < 2; ++k) run(k, expected[k]);
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) threads.emplace_back(run, k, std::ref(got[k]));
  for (std::thread& thread : threads) thread.join();
  for (int k = 0; k < kThreads; ++k) EXPECT_EQ(got[k], expected[k % 2]) << "thread " << k;
}

std::string ResultText(const LoopList& A, const LoopList& B) {
  std::string text;
  for (const LoopList& loops : RunAll(A, B).loops) text += ToText(loops) + '\n';
  return text;
}

TEST(Threads, OwnAndSharedLoops) {
  Random random(3);
  const OperandPair shared = FamilyNamed("blocks").draw(random);
  const LoopList sharedA = Nest(shared.a);
  const LoopList sharedB = Nest(shared.b);
  const ZBR_LOOP_LOCATOR locator(Nest({Square(0, 0, 4), Square(1, 1, 2)}));
  ExpectFromAllThreads([&](double eps) {
    std::string text;
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
      Random own(seed);
      const OperandPair pair = Families()[seed % 5].draw(own);
      text += ResultText(Nest(pair.a), Nest(pair.b)) + ResultText(sharedA, sharedB);
      for (const double x : {0.5 * eps, 2.0 * eps, 2.0}) text += std::to_string(locator.IsInside({x, 2.0}));
    }
    EXPECT_EQ(text.substr(text.size() - 3), "245");  // on the edge, in the ring, in its hole
    return text;
  });
}

}  // namespace
