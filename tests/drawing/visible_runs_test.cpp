// Stretches of curves that are worth drawing.

#include "drawing/silhouettes/visible_runs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "tests/drawing/drawn_lines.h"

namespace zbr::drawing {
namespace {

// The place at a distance along the curve.
ZBR_PT PlaceAt(const SeenCurve& curve, double distance) {
  std::size_t k = 0;
  while (k + 2 < curve.along.size() && curve.along[k + 1] < distance) ++k;
  const double part = (distance - curve.along[k]) / (curve.along[k + 1] - curve.along[k]);
  return curve.points[k] + (curve.points[k + 1] - curve.points[k]) * part;
}

// Whatever is seen of a curve, its lines are all of it, seen and hidden by turns, and none is short; what was long enough is what
// it was.
TEST(VisibleRuns, LinesTileTheCurve) {
  constexpr int kSides = 60;
  constexpr double kSize = 5.0, kLeast = 0.01 * kSize;
  std::mt19937 engine(1);
  std::exponential_distribution<double> length(1 / kLeast);
  std::size_t most = 0;
  for (int seed = 0; seed < 2000; ++seed) {
    SeenCurve curve;
    curve.closed = seed % 2 == 0;
    const double turn = curve.closed ? 2 * std::acos(-1.0) : 4.0;
    const auto at = [&](int k) { return ZBR_PT(std::cos(turn * (k % kSides) / kSides), std::sin(turn * (k % kSides) / kSides)); };
    for (int k = 0; k < (curve.closed ? kSides : kSides - 1); ++k) curve.Add(at(k), at(k + 1), 0, {});
    const double whole = curve.along.back(), scale = seed % 7 == 0 ? 20.0 : 3.0;
    for (double from = seed % 3 == 0 ? 0.0 : scale * length(engine); from < whole;) {
      const double to = std::min(from + scale * length(engine), whole);
      curve.visible.push_back({from, to});
      from = to + scale * length(engine);
    }
    const std::vector<Line> lines = LinesOf(curve, kSize);
    std::vector<Line> alike[2];  // not hidden, and hidden
    for (const Line& line : lines) alike[line.hidden ? 1 : 0].push_back(line);
    double end = 0.0;
    for (const SeenCurve::Run& run : curve.visible) {
      const auto isKept = [&](double from, double to, bool isHidden) {
        return to - from < kLeast || DistanceTo(alike[isHidden ? 1 : 0], PlaceAt(curve, (from + to) / 2)) < 1e-9;
      };
      EXPECT_TRUE(isKept(run.from, run.to, false) && isKept(end, run.from, true)) << seed << ' ' << run.from;
      end = run.to;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      sum += LengthOf(lines[i]);
      EXPECT_EQ(lines[i].chain.closed, curve.closed && lines.size() == 1) << seed;
      EXPECT_TRUE(lines.size() == 1 || LengthOf(lines[i]) >= kLeast * (1 - 1e-9)) << seed;
      if (i + 1 == lines.size() && !curve.closed) continue;
      const Line& next = lines[(i + 1) % lines.size()];
      EXPECT_NEAR(lines[i].chain.points.back().Distance(next.chain.points.front()), 0, 1e-9) << seed;
      EXPECT_TRUE(lines.size() == 1 || lines[i].hidden != next.hidden) << seed;
    }
    EXPECT_NEAR(sum, whole, 1e-9) << seed;
    most = std::max(most, lines.size());
  }
  EXPECT_GT(most, 10U);
}

}  // namespace
}  // namespace zbr::drawing
