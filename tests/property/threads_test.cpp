// Several threads at work, each with a tolerance of its own, on their own loops and on shared ones.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <thread>

#include "support/expect.h"
#include "support/random_shapes.h"

namespace {

constexpr int kThreads = 4;

void RunThreads(const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) threads.emplace_back(work, k);
  for (std::thread& thread : threads) thread.join();
}

double EpsOf(int thread) {
  return std::ldexp(1.0, -8 * (thread + 1));
}

std::string ResultText(const LoopList& A, const LoopList& B) {
  std::string text;
  for (const LoopList& loops : RunAll(A, B).loops) text += ToText(loops) + '\n';
  return text;
}

TEST(Threads, OwnLoopsOwnTolerance) {
  const auto texts = [] {
    std::vector<std::string> out;
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
      Random random(seed);
      const OperandPair pair = Families()[seed % 5].draw(random);
      out.push_back(ResultText(Nest(pair.a), Nest(pair.b)));
    }
    return out;
  };
  const std::vector<std::string> expected = texts();
  std::atomic<int> wrong = 0;
  RunThreads([&](int thread) {
    const double eps = EpsOf(thread);
    zbrSetEps(eps);
    if (texts() != expected) ++wrong;
    if (!zbr_EpsE(eps) || zbr_EpsE(eps * 1.0000001)) ++wrong;
  });
  EXPECT_EQ(wrong, 0);
}

TEST(Threads, SharedLoopsThatAreSetUp) {
  Random random(3);
  const OperandPair pair = FamilyNamed("blocks").draw(random);
  const LoopList A = Nest(pair.a);
  const LoopList B = Nest(pair.b);
  const std::string expected = ResultText(A, B);
  std::atomic<int> wrong = 0;
  RunThreads([&](int) {
    for (int repeat = 0; repeat < 20; ++repeat) {
      if (ResultText(A, B) != expected) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST(Threads, OneLocatorReadsEachThreadsTolerance) {
  const ZBR_LOOP_LOCATOR locator(Nest({Square(0, 0, 4), Square(1, 1, 2)}));
  std::atomic<int> wrong = 0;
  RunThreads([&](int thread) {
    const double eps = EpsOf(thread);
    zbrSetEps(eps);
    for (int repeat = 0; repeat < 1000; ++repeat) {
      if (locator.IsInside({0.5 * eps, 2.0}) != ZBR_PI_ON_EDGE) ++wrong;
      if (locator.IsInside({2.0 * eps, 2.0}) != ZBR_PI_IN) ++wrong;
      if (locator.IsInside({2.0, 2.0}) != ZBR_PI_OUT) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}

}  // namespace
