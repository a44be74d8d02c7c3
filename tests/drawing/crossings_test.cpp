// Where surfaces pass through themselves: parts that are told not to, and the search as a whole beside all pairs of triangles.
#include <gtest/gtest.h>
#include <zbr-drawing/model.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "drawing/intersections/border_winding.h"
#include "drawing/intersections/crossings.h"

namespace {

using namespace zbr::drawing;

using Ring = std::vector<PicturePoint>;

// Points at the same place are the same one, but for those of the last ring if it is to be apart.
bool RingsWindOnce(const std::vector<Ring>& rings, bool isLastApart = false) {
  const auto number = [&](std::size_t r, const PicturePoint& p) {
    return static_cast<std::uint32_t>(p.x * 1000 + p.y + (isLastApart && r + 1 == rings.size() ? 1e6 : 0));
  };
  std::vector<BorderEdge> edges;
  for (std::size_t r = 0; r < rings.size(); ++r) {
    for (std::size_t i = 0; i < rings[r].size(); ++i) {
      const PicturePoint &a = rings[r][i], &b = rings[r][(i + 1) % rings[r].size()];
      edges.push_back({number(r, a), number(r, b), a, b});
    }
  }
  return WindsOnce(edges);
}

Ring Square(double x, double y, double size) {
  return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
}
Ring Reversed(Ring ring) {
  std::reverse(ring.begin(), ring.end());
  return ring;
}

TEST(BorderWinding, OnceOrNot) {
  const Ring big = Square(10, 10, 90), small = Square(40, 40, 20);
  EXPECT_TRUE(RingsWindOnce({big}));
  EXPECT_FALSE(RingsWindOnce({Reversed(big)}));
  EXPECT_TRUE(RingsWindOnce({big, Reversed(small)})) << "a hole";
  EXPECT_FALSE(RingsWindOnce({big, small})) << "covered twice";
  EXPECT_FALSE(RingsWindOnce({big, Reversed(small), Reversed(Square(45, 45, 5))})) << "a hole in a hole";
  EXPECT_TRUE(RingsWindOnce({big, Reversed(small), Square(45, 45, 5)})) << "an island in a hole";
  EXPECT_FALSE(RingsWindOnce({{{0, 0}, {100, 0}, {0, 100}, {100, 100}}})) << "a bow";
  EXPECT_FALSE(RingsWindOnce({{{0, 0}, {90, 0}, {90, 90}, {20, 90}, {20, 20}, {110, 20}, {110, 110}, {0, 110}}})) << "over itself";
  EXPECT_TRUE(RingsWindOnce({Square(0, 0, 10), Square(20, 0, 10)})) << "apart";
  EXPECT_TRUE(RingsWindOnce({Square(0, 0, 10), Square(10, 10, 10)})) << "one point";
  EXPECT_FALSE(RingsWindOnce({Square(0, 0, 10), Square(10, 10, 10)}, true)) << "two points at one place";
  EXPECT_FALSE(RingsWindOnce({Square(0, 0, 10), Square(10, 2, 5)})) << "along an edge";
  EXPECT_FALSE(RingsWindOnce({Square(0, 0, 10), {{0, 0}, {5, 1}, {5, 20}}})) << "from a common point over each other";
}

// A ramp that goes round a few times close above itself, and is too rough not to pass through.
Mesh Ramp(std::uint32_t seed, double rise) {
  constexpr std::uint32_t kAlong = 250, kAcross = 12;
  std::mt19937 engine(seed);
  const auto noise = [&] { return static_cast<double>(engine()) * 0x1p-32 - 0.5; };
  Mesh mesh;
  for (std::uint32_t i = 0; i < kAlong; ++i) {
    const double turn = 0.08 * i;
    for (std::uint32_t j = 0; j < kAcross; ++j) {
      const double r = 1.0 + 0.1 * j + 0.02 * noise();
      mesh.points.emplace_back(r * std::cos(turn), r * std::sin(turn), rise * turn + 0.02 * noise());
    }
  }
  for (std::uint32_t i = 0; i + 1 < kAlong; ++i) {
    for (std::uint32_t j = 0; j + 1 < kAcross; ++j) {
      const std::uint32_t a = i * kAcross + j, b = a + kAcross;
      mesh.triangles.push_back({a, b, b + 1});
      mesh.triangles.push_back({a, b + 1, a + 1});
    }
  }
  return mesh;
}

double Volume(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c, const ZBR_PT3& d) {
  return (b - a).OuterProduct(c - a).InnerProduct(d - a);
}

using Triangle = std::array<std::uint32_t, 3>;

// Pairs of triangles of which an edge of one passes through the other, in general position.
bool Meet(const std::vector<ZBR_PT3>& p, const Triangle& t, const Triangle& u) {
  for (const auto& [by, through] : {std::pair(&t, &u), std::pair(&u, &t)}) {
    const ZBR_PT3 &a = p[(*through)[0]], &b = p[(*through)[1]], &c = p[(*through)[2]];
    for (std::size_t i = 0; i < 3; ++i) {
      const std::uint32_t from = (*by)[i], to = (*by)[(i + 1) % 3];
      const auto isCorner = [&corners = *through](std::uint32_t q) {
        return std::find(corners.begin(), corners.end(), q) != corners.end();
      };
      if (isCorner(from) || isCorner(to) || (Volume(a, b, c, p[from]) > 0) == (Volume(a, b, c, p[to]) > 0)) continue;
      const bool hand = Volume(p[from], p[to], a, b) > 0;
      if (hand == (Volume(p[from], p[to], b, c) > 0) && hand == (Volume(p[from], p[to], c, a) > 0)) return true;
    }
  }
  return false;
}

struct Interval {
  double low, high;
};

std::size_t CountMeeting(const Connectivity& mesh) {
  std::vector<Interval> x, y;
  for (const Triangle& t : mesh.corners) {
    const ZBR_PT3 &a = mesh.points[t[0]], &b = mesh.points[t[1]], &c = mesh.points[t[2]];
    x.push_back({std::min({a.x(), b.x(), c.x()}), std::max({a.x(), b.x(), c.x()})});
    y.push_back({std::min({a.y(), b.y(), c.y()}), std::max({a.y(), b.y(), c.y()})});
  }
  const auto apart = [](const Interval& a, const Interval& b) { return a.low > b.high || b.low > a.high; };
  std::size_t count = 0;
  for (std::size_t t = 0; t < mesh.corners.size(); ++t) {
    for (std::size_t u = t + 1; u < mesh.corners.size(); ++u) {
      if (apart(x[t], x[u]) || apart(y[t], y[u])) continue;
      count += Meet(mesh.points, mesh.corners[t], mesh.corners[u]) ? 1 : 0;
    }
  }
  return count;
}

TEST(Crossings, OfALargeSurfaceAreThoseOfAllPairs) {
  std::size_t all = 0;
  for (const double rise : {0.0005, 0.002, 0.01}) {
    const Model model = MakeModel(Ramp(7, rise), 30.0);
    ASSERT_EQ(model.ShellCount(), 1U);
    const Connectivity mesh = ConnectivityOf(model, 1);
    const auto found = FindCrossings(model, mesh, 2, [](auto&, std::size_t) {});
    EXPECT_EQ(found.size(), CountMeeting(mesh)) << rise;
    all += found.size();
  }
  EXPECT_GT(all, 1000U);
}

}  // namespace
