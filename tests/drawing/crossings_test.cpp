// Where surfaces pass through themselves: parts that are told not to, and the search as a whole beside all pairs of triangles.
#include <gtest/gtest.h>
#include <zbr-drawing/model.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <random>
#include <tuple>
#include <vector>

#include "drawing/intersections/border_winding.h"
#include "drawing/intersections/crossings.h"
#include "drawing/intersections/sheet_cover.h"
#include "drawing/intersections/star_shaped.h"

namespace {

using namespace zbr::drawing;

using Ring = std::vector<PicturePoint>;

// Points at the same place are the same one, but for those of the last ring if it is to be apart.
bool RingsWindOnce(const std::vector<Ring>& rings, bool isLastApart = false) {
  std::map<std::tuple<bool, double, double>, std::uint32_t> numbers;
  const auto number = [&](std::size_t r, const PicturePoint& p) {
    const auto next = static_cast<std::uint32_t>(numbers.size());
    return numbers.emplace(std::tuple(isLastApart && r + 1 == rings.size(), p.x, p.y), next).first->second;
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

// Rings around a point with points more or less far from it, which cross themselves or not, beside all pairs of edges.
TEST(BorderWinding, OfRingsAtRandom) {
  std::mt19937 engine(11);
  const auto number = [&](double below) { return std::floor(static_cast<double>(engine()) * 0x1p-32 * below); };
  const auto cross = [](const PicturePoint& a, const PicturePoint& b, const PicturePoint& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  };
  int once = 0;
  constexpr int kRings = 400;
  for (int round = 0; round < kRings; ++round) {
    constexpr std::size_t kPoints = 60;
    const double jitter = 0.2 + 0.1 * (round % 10);  // of the angle between points
    Ring ring;
    double area2 = 0.0;
    for (std::size_t i = 0; i < kPoints; ++i) {
      const double turn = 6.2831853 / kPoints * (static_cast<double>(i) + jitter * (number(1000) / 500 - 1)),
                   r = 20000 + number(20000);
      ring.push_back({std::floor(r * std::cos(turn)), std::floor(0.1 * r * std::sin(turn))});
    }
    bool isSimple = true;
    for (std::size_t i = 0; i < kPoints; ++i) {
      const PicturePoint &a = ring[i], &b = ring[(i + 1) % kPoints];
      area2 += a.x * b.y - b.x * a.y;
      for (std::size_t j = i + 2; j < kPoints && (j + 1) % kPoints != i; ++j) {
        const PicturePoint &c = ring[j], &d = ring[(j + 1) % kPoints];
        isSimple &= cross(a, b, c) * cross(a, b, d) > 0 || cross(c, d, a) * cross(c, d, b) > 0;
      }
    }
    EXPECT_EQ(RingsWindOnce({ring}), isSimple && area2 > 0) << round;
    once += isSimple ? 1 : 0;
  }
  EXPECT_TRUE(once > kRings / 10 && once < kRings * 9 / 10) << once;
}

// A surface of points in rows; rows, and points in them, follow each other round and round.
template <class At>
Mesh Wrapped(std::uint32_t rows, std::uint32_t perRow, const At& at) {
  Mesh mesh;
  for (std::uint32_t i = 0; i < rows; ++i) {
    for (std::uint32_t j = 0; j < perRow; ++j) mesh.points.push_back(at(i, j));
  }
  for (std::uint32_t i = 0; i < rows; ++i) {
    for (std::uint32_t j = 0; j < perRow; ++j) {
      const std::uint32_t a = i * perRow + j, b = (i + 1) % rows * perRow + j, right = (j + 1) % perRow - j;
      mesh.triangles.push_back({a, b, b + right});
      mesh.triangles.push_back({a, b + right, a + right});
    }
  }
  return mesh;
}

// A ball of which points are moved, and which goes round some times before it closes.
Mesh Ball(int times, const std::function<double(double turn, double height)>& radius) {
  constexpr std::uint32_t kRows = 24, kPerTurn = 40;
  const auto perRow = static_cast<std::uint32_t>(times) * kPerTurn;
  Mesh mesh;
  for (std::uint32_t i = 1; i < kRows; ++i) {
    for (std::uint32_t j = 0; j < perRow; ++j) {
      const double rise = 3.14159265 * i / kRows, turn = 6.2831853 * j / kPerTurn, r = radius(turn, std::cos(rise));
      mesh.points.emplace_back(r * std::sin(rise) * std::cos(turn), r * std::sin(rise) * std::sin(turn), r * std::cos(rise));
    }
  }
  const auto bottom = static_cast<std::uint32_t>(mesh.points.size()), last = bottom - perRow;
  mesh.points.emplace_back(0, 0, -1);
  mesh.points.emplace_back(0, 0, 1);
  for (std::uint32_t j = 0; j < perRow; ++j) {
    const std::uint32_t k = (j + 1) % perRow;
    mesh.triangles.push_back({bottom + 1, j, k});
    for (std::uint32_t row = 0; row < last; row += perRow) {
      mesh.triangles.push_back({row + j, row + perRow + j, row + perRow + k});
      mesh.triangles.push_back({row + j, row + perRow + k, row + k});
    }
    mesh.triangles.push_back({last + j, bottom, last + k});
  }
  return mesh;
}

bool IsStar(const Mesh& shell) {
  const Model model = MakeModel(shell, 30.0);
  EXPECT_TRUE(model.ShellCount() == 1 && model.facing[0] != Facing::kUnknown);
  const Connectivity mesh = ConnectivityOf(model, 1);
  const std::vector<GridPoint> grid = OnGrid(mesh.points, model.low, model.high);
  return IsStarShaped(grid, 0, mesh.pointBegin[1], {mesh.corners.begin(), mesh.corners.end()});
}

TEST(StarShaped, BallsAndOthers) {
  EXPECT_TRUE(IsStar(Ball(1, [](double, double) { return 1.0; })));
  EXPECT_TRUE(IsStar(Ball(1, [](double turn, double height) { return 1.0 + 0.3 * std::sin(9 * turn) * std::cos(7 * height); })));
  EXPECT_FALSE(IsStar(Ball(2, [](double turn, double) { return 1.0 + 0.3 * std::cos(turn / 2); }))) << "once around the other";
  EXPECT_FALSE(IsStar(Ball(1, [](double turn, double height) { return turn == 0 && std::abs(height) < 0.01 ? -2.0 : 1.0; })))
      << "a point goes through the other side";
  Mesh inwards = Ball(1, [](double turn, double) { return 1.0 + 0.1 * std::sin(5 * turn); });
  for (auto& t : inwards.triangles) std::swap(t[1], t[2]);
  EXPECT_TRUE(IsStar(inwards));
  EXPECT_FALSE(IsStar(Wrapped(60, 30, [](std::uint32_t i, std::uint32_t j) {
    const double u = 6.2831853 * i / 60, v = 6.2831853 * j / 30, r = 2.0 + std::cos(v);
    return ZBR_PT3(r * std::cos(u), r * std::sin(u), std::sin(v));
  }))) << "a torus";
}

// A tube along a knot, whose turns pass through each other if it is thick.
Mesh Knot(double thickness, double noise) {
  constexpr std::uint32_t kRows = 400, kPerRow = 24;
  std::mt19937 engine(3);
  return Wrapped(kRows, kPerRow, [&](std::uint32_t i, std::uint32_t j) {
    const double t = 6.2831853 * i / kRows, s = 6.2831853 * (j + 0.3) / kPerRow, far = 2.0 + std::cos(3 * t);
    const double r = thickness * (1.0 + noise * (static_cast<double>(engine()) * 0x1p-32 - 0.5));
    const ZBR_PT3 outwards(std::cos(2 * t), std::sin(2 * t), 0);
    return ZBR_PT3(0, 0, std::sin(3 * t)) + outwards * (far + r * std::cos(s)) + ZBR_PT3(0, 0, r * std::sin(s));
  });
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

// The interval of a triangle along an axis.
struct Interval {
  double low, high;
  std::size_t triangle;
};

std::size_t CountMeeting(const Connectivity& mesh) {
  std::vector<Interval> x, y;
  for (const Triangle& t : mesh.corners) {
    const ZBR_PT3 &a = mesh.points[t[0]], &b = mesh.points[t[1]], &c = mesh.points[t[2]];
    x.push_back({std::min({a.x(), b.x(), c.x()}), std::max({a.x(), b.x(), c.x()}), x.size()});
    y.push_back({std::min({a.y(), b.y(), c.y()}), std::max({a.y(), b.y(), c.y()}), y.size()});
  }
  std::sort(x.begin(), x.end(), [](const Interval& a, const Interval& b) { return a.low < b.low; });
  std::size_t count = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    for (std::size_t j = i + 1; j < x.size() && x[j].low <= x[i].high; ++j) {
      const std::size_t t = x[i].triangle, u = x[j].triangle;
      if (y[t].low > y[u].high || y[u].low > y[t].high) continue;
      count += Meet(mesh.points, mesh.corners[t], mesh.corners[u]) ? 1 : 0;
    }
  }
  return count;
}

TEST(Crossings, OfALargeSurfaceAreThoseOfAllPairs) {
  std::size_t all = 0;
  for (const Mesh& surface : {Ramp(7, 0.0005), Ramp(7, 0.002), Ramp(7, 0.01), Knot(0.3, 0.2), Knot(0.8, 0.0), Knot(0.9, 0.05)}) {
    const Model model = MakeModel(surface, 30.0);
    ASSERT_EQ(model.ShellCount(), 1U);
    const Connectivity mesh = ConnectivityOf(model, 1);
    const auto found = FindCrossings(model, mesh, 2, [](auto&, std::size_t) {});
    EXPECT_EQ(found.size(), CountMeeting(mesh));
    all += found.size();
  }
  EXPECT_GT(all, 1000U);
}

// Parts that are told not to meet are what makes the search fast. The boxes of as many pairs as three for each triangle meet.
TEST(Crossings, LittleOfASmoothBodyIsInDoubt) {
  const Model model = MakeModel(Knot(0.3, 0.0), 30.0);
  const Connectivity mesh = ConnectivityOf(model, 1);
  const std::vector<GridPoint> grid = OnGrid(mesh.points, model.low, model.high);
  const SheetCover cover(grid, mesh, model.normals, {mesh.corners.begin(), mesh.corners.end()}, 0, 1);
  ASSERT_TRUE(cover.IsMade());
  std::size_t pairs = 0;
  for (const auto& parts : cover.Doubtful()) EXPECT_TRUE(cover.LookInto(parts, [&](std::uint32_t, std::uint32_t) { ++pairs; }));
  EXPECT_LT(pairs, mesh.corners.size() / 8);
}

}  // namespace
