// Rings exactly simple, touching or faulty: random ones on a small lattice, near the origin and far, against looking at all pairs.
#include "loops/exact_simplicity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "support/random_shapes.h"

namespace {

using zbr::ExactSimplicity;

double Cross(const ZBR_PT& a, const ZBR_PT& b) {
  return a.OuterProduct(b);
}

// How a boundary passes a place: by directions of its arms.
struct Passage {
  ZBR_PT at, arms[2];
  bool isWithin;  // an edge
};

bool LieBetween(const Passage& p, const ZBR_PT& d) {
  const double turn = Cross(p.arms[0], p.arms[1]);
  const bool after = Cross(p.arms[0], d) > 0, before = Cross(d, p.arms[1]) > 0;
  return turn > 0 || (turn == 0 && p.arms[0].InnerProduct(p.arms[1]) > 0) ? after && before : after || before;
}

ExactSimplicity OfTwo(const Passage& p, const Passage& q) {
  for (const ZBR_PT& d : p.arms) {
    for (const ZBR_PT& e : q.arms) {
      if (Cross(d, e) == 0 && d.InnerProduct(e) > 0) return ExactSimplicity::kFaulty;
    }
  }
  if (LieBetween(p, q.arms[0]) != LieBetween(p, q.arms[1])) return ExactSimplicity::kFaulty;
  return p.isWithin || q.isWithin ? ExactSimplicity::kTouching : ExactSimplicity::kSimple;
}

// Every place where a vertex lies, and what passes it there; then edges that cross between their ends.
ExactSimplicity ByAllPairs(const std::vector<std::vector<ZBR_PT>>& rings) {
  std::vector<Passage> passages;
  std::vector<std::array<ZBR_PT, 2>> edges;
  for (const auto& ring : rings) {
    for (std::size_t i = 0, n = ring.size(); i < n; ++i) {
      const ZBR_PT &prev = ring[(i + n - 1) % n], &at = ring[i], &next = ring[(i + 1) % n];
      passages.push_back({at, {prev - at, next - at}, false});
      edges.push_back({at, next});
      if (Cross(prev - at, next - at) == 0 && (prev - at).InnerProduct(next - at) > 0) return ExactSimplicity::kFaulty;
    }
  }
  const std::size_t vertices = passages.size();
  for (const auto& [a, b] : edges) {
    for (std::size_t v = 0; v < vertices; ++v) {
      const ZBR_PT at = passages[v].at;
      if (Cross(b - a, at - a) == 0 && (a - at).InnerProduct(b - at) < 0) passages.push_back({at, {a - at, b - at}, true});
    }
  }
  ExactSimplicity worst = ExactSimplicity::kSimple;
  for (const Passage& p : passages) {
    for (const Passage& q : passages) {
      if (&p < &q && p.at.Distance(q.at) == 0 && !(p.isWithin && q.isWithin && p.arms[0] == q.arms[0] && p.arms[1] == q.arms[1]))
        worst = std::max(worst, OfTwo(p, q));
    }
  }
  for (const auto& [a, b] : edges) {
    for (const auto& [c, d] : edges) {
      if (Cross(b - a, c - a) * Cross(b - a, d - a) < 0 && Cross(d - c, a - c) * Cross(d - c, b - c) < 0)
        return ExactSimplicity::kFaulty;
    }
  }
  return worst;
}

TEST(ExactSimplicity, RandomRingsAgainstAllPairs) {
  Random random(11);
  int count[3] = {};
  for (int k = 0; k < Scaled(40000); ++k) {
    std::vector<std::vector<ZBR_PT>> rings(1 + static_cast<std::size_t>(Below(random, 3)));
    const int size = 3 + Below(random, 6);
    for (auto& ring : rings) {
      const ZBR_PT corner(Below(random, size), Below(random, size));
      for (int n = 3 + Below(random, 4); n > 0; --n) {
        const ZBR_PT p = corner + ZBR_PT(Below(random, 4), Below(random, 4));
        if (ring.empty() || p != ring.back()) ring.push_back(p);
      }
      while (ring.size() > 1 && ring.back() == ring.front()) ring.pop_back();
    }
    std::erase_if(rings, [](const auto& ring) { return ring.size() < 3; });
    const ExactSimplicity expected = ByAllPairs(rings);
    const double offset = k % 2 == 0 ? 0.0 : std::ldexp(1.0, 52);
    for (auto& ring : rings) {
      for (ZBR_PT& p : ring) p += ZBR_PT(offset, -offset);
    }
    ASSERT_EQ(zbr::ExactSimplicityOf(std::vector<zbr::RingSpan>(rings.begin(), rings.end())), expected) << k;
    ++count[static_cast<int>(expected)];
  }
  EXPECT_GT(*std::min_element(count, count + 3), Scaled(200));  // each is met often
}

}  // namespace
