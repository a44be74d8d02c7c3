// Equality to the last bit between what the library and what trying all pairs give.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "literal/boolean.h"
#include "support/expect.h"
#include "support/random_shapes.h"

inline bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}
inline bool SameBits(const ZBR_PT& a, const ZBR_PT& b) {
  return SameBits(a.x(), b.x()) && SameBits(a.y(), b.y());
}

inline bool SameBits(const ZBR_CROSS_AB& a, const ZBR_CROSS_AB& b) {
  return a.loop.value == b.loop.value && SameBits(a.pos, b.pos) && a.seq == b.seq && a.order == b.order;
}

inline testing::AssertionResult SameCrosses(const std::vector<ZBR_CROSS>& got, const std::vector<ZBR_CROSS>& expected) {
  if (got.size() != expected.size()) return testing::AssertionFailure() << got.size() << " crossings, not " << expected.size();
  for (std::size_t i = 0; i < got.size(); ++i) {
    const ZBR_CROSS& g = got[i];
    const ZBR_CROSS& e = expected[i];
    if (!SameBits(g.pt, e.pt) || g.dir != e.dir || !SameBits(g.a, e.a) || !SameBits(g.b, e.b) || g.valid != e.valid ||
        g.done != e.done || g.index != e.index) {
      return testing::AssertionFailure() << "crossing " << i << ": " << g.a.pos << ':' << g.b.pos << " dir " << g.dir << " seq "
                                         << g.a.seq << ',' << g.b.seq << " order " << g.a.order << ',' << g.b.order << " done "
                                         << g.done << ", not " << e.a.pos << ':' << e.b.pos << " dir " << e.dir << " seq "
                                         << e.a.seq << ',' << e.b.seq << " order " << e.a.order << ',' << e.b.order << " done "
                                         << e.done;
    }
  }
  return testing::AssertionSuccess();
}

// Points, order, children, levels, areas and boxes.
inline testing::AssertionResult SameLoops(const LoopList& got, const literal::Loops& expected) {
  if (got.size() != expected.size()) return testing::AssertionFailure() << got.size() << " loops, not " << expected.size();
  for (std::size_t i = 0; i < got.size(); ++i) {
    const ZBR_LOOP& g = *got[i];
    const literal::Loop& e = *expected[i];
    const bool samePoints = std::equal(g.pt().begin(), g.pt().end(), e.pt.begin(), e.pt.end(),
                                       [](const ZBR_PT& p, const ZBR_PT& q) { return SameBits(p, q); });
    if (!samePoints) return testing::AssertionFailure() << "points of loop " << i << ": " << ToText(got);
    if (g.level() != e.level) return testing::AssertionFailure() << "level of loop " << i << ": " << g.level();
    if (!SameBits(g.area(), e.area)) return testing::AssertionFailure() << "area of loop " << i << ": " << g.area();
    if (g.xmin() != e.xmin || g.xmax() != e.xmax || g.ymin() != e.ymin || g.ymax() != e.ymax) {
      return testing::AssertionFailure() << "box of loop " << i;
    }
    if (auto children = SameLoops(g.children(), e.children); !children) return children << ", below loop " << i;
  }
  return testing::AssertionSuccess();
}
