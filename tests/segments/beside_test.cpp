// Hidden lines that run beside each other are drawn once: against all pairs.
#include <gtest/gtest.h>
#include <zbr/zbr.h>

#include <algorithm>
#include <utility>

#include "support/random_shapes.h"

namespace {

using Range = std::pair<double, double>;

// Where, along g, the other runs beside it.
Range Beside(const ZBR_SEG& g, const ZBR_SEG& other, double width) {
  const double length = g.s().Distance(g.e());
  const ZBR_PT along = (g.e() - g.s()) / length;
  const auto place = [&](const ZBR_PT& p) {
    const ZBR_PT off = p - g.s();
    return ZBR_PT(along.InnerProduct(off), along.x() * off.y() - along.y() * off.x());
  };
  ZBR_PT a = place(other.s()), b = place(other.e());
  if (a.x() > b.x()) std::swap(a, b);
  const double from = std::max(a.x(), 0.0), to = std::min(b.x(), length);
  const auto height = [&](double x) { return std::fabs(a.y() + (b.y() - a.y()) * ((x - a.x()) / (b.x() - a.x()))); };
  return to > from && height(from) <= width && height(to) <= width ? Range(from, to) : Range(0.0, 0.0);
}

double Uncovered(const std::vector<ZBR_SEG>& segments, std::size_t i, double width) {
  std::vector<Range> ranges;
  for (std::size_t k = 0; k < i; ++k) {
    if (const Range range = Beside(segments[i], segments[k], width); range.second > range.first) ranges.push_back(range);
  }
  std::sort(ranges.begin(), ranges.end());
  double from = 0.0, sum = 0.0;
  for (const auto& [t0, t1] : ranges) {
    sum += std::max(t0 - from, 0.0);
    from = std::max(from, t1);
  }
  return sum + std::max(segments[i].s().Distance(segments[i].e()) - from, 0.0);
}

// Long and short ones in all directions; half of them lie along an earlier one, a little off it.
std::vector<ZBR_SEG> DrawSegments(Random& random, int n, double width) {
  std::vector<ZBR_SEG> segments;
  const auto point = [&] { return ZBR_PT(10.0 * Unit(random), 10.0 * Unit(random)); };
  for (int i = 0; i < n; ++i) {
    const ZBR_PT p = point();
    ZBR_SEG g(p, p + (point() - p) * (Below(random, 2) == 0 ? 1.0 : 0.02));
    if (i > 0 && Below(random, 2) == 0) {
      const ZBR_SEG& on = segments[static_cast<std::size_t>(Below(random, i))];
      const auto near = [&] {
        return on.s() + (on.e() - on.s()) * (3.0 * Unit(random) - 1.0) + (point() - ZBR_PT(5.0, 5.0)) * (0.2 * width);
      };
      g = ZBR_SEG(near(), near());
    }
    segments.push_back(g);
  }
  return segments;
}

ZBR_HL_TRI Triangle(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c, bool draws) {
  ZBR_HL_TRI t;
  t.pt[0] = a;
  t.pt[1] = b;
  t.pt[2] = c;
  for (int i = 0; i < 3; ++i) {
    t.adj[i] = t.adj_edge[i] = -1;
    t.dispj[i] = draws && i == 0;
  }
  return t;
}

// Short ones on few lines, so that what covers one may be far from it in the list and on the plane; many repeat an earlier one, in
// either direction and with either zero.
std::vector<ZBR_SEG> DrawStacks(Random& random, int n, double width) {
  std::vector<ZBR_SEG> segments;
  const auto turned = [&](double d) { return d == 0 && Below(random, 2) == 0 ? -d : d; };
  const auto copy = [&](const ZBR_PT& p) { return ZBR_PT(turned(p.x()), turned(p.y())); };
  for (int i = 0; i < n; ++i) {
    if (i > 0 && Below(random, 3) == 0) {
      const ZBR_SEG& same = segments[static_cast<std::size_t>(Below(random, i))];
      segments.push_back(Below(random, 2) == 0 ? ZBR_SEG(copy(same.s()), copy(same.e())) : ZBR_SEG(copy(same.e()), copy(same.s())));
      continue;
    }
    const double level = static_cast<double>(Below(random, 6)), from = 100.0 * Unit(random), length = 0.5 + Unit(random);
    const double off = Below(random, 2) == 0 ? 0.0 : 0.2 * width * Unit(random);
    const ZBR_PT p(from, level + off), q(from + (Below(random, 50) == 0 ? 30.0 : 0.05) * length, level + off);
    const bool isUpright = level == 5.0;
    segments.emplace_back(isUpright ? ZBR_PT(0.0, p.x()) : p, isUpright ? ZBR_PT(0.0, q.x()) : q);
  }
  return segments;
}

// Draws the segments hidden under one triangle and returns how many of them were shortened.
int CheckAgainstPairs(const std::vector<ZBR_SEG>& segments, double width) {
  std::vector<ZBR_HL_TRI> lines, cover;
  cover.push_back(Triangle({-1e3, -1e3, 1.0}, {1e3, -1e3, 1.0}, {0.0, 1e3, 1.0}, false));
  for (const ZBR_SEG& g : segments) {
    const ZBR_PT3 s(g.s().x(), g.s().y(), 0.0), e(g.e().x(), g.e().y(), 0.0);
    lines.push_back(Triangle(s, e, e, true));
  }
  ZBR_HL_SHELL shells[] = {{lines.data(), static_cast<unsigned>(lines.size())}, {cover.data(), 1}};
  ZBR_HiddenLine::RemoveAll(shells, 2);
  std::vector<ZBR_SEG> out;
  std::vector<ZBR_HL_SOURCE> sources;
  ZBR_HiddenLine::GetHiddenLineObj(shells, out, 3, 2, sources, width);
  std::vector<double> drawn(segments.size(), 0.0);
  for (std::size_t k = 0; k < out.size(); ++k)
    drawn[static_cast<std::size_t>(sources[k].triangle)] += out[k].s().Distance(out[k].e());
  int shortened = 0;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    EXPECT_NEAR(drawn[i], Uncovered(segments, i, width), 1e-3) << width << ' ' << i;
    shortened += drawn[i] < 0.999 * segments[i].s().Distance(segments[i].e()) ? 1 : 0;
  }
  return shortened;
}

TEST(HiddenDrawing, LinesBesideEachOtherAreDrawnOnce) {
  Random random(11);
  for (const double width : {1e-3, 0.02, 0.3}) EXPECT_GT(CheckAgainstPairs(DrawSegments(random, 500, width), width), 100);
}

TEST(HiddenDrawing, StackedLinesAndRepeatsAreDrawnOnce) {
  Random random(12);
  constexpr double kWidth = 1e-3;
  EXPECT_GT(CheckAgainstPairs(DrawStacks(random, 10000, kWidth), kWidth), 3000);
}

}  // namespace
