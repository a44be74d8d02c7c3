// Line work that forks: the cells it bounds, beside those that GEOS finds, and contours whatever the order of the lines.
#include <geos_c.h>
#include <gtest/gtest.h>
#include <zbr-drawing/contours.h>
#include <zbr-drawing/region.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace {

using namespace zbr::drawing;

constexpr double kPi = 3.141592653589793;

Path Line(std::vector<ZBR_PT> points) {
  Path path;
  path.points = std::move(points);
  return path;
}

std::vector<Path> Rectangle() {
  return {Line({{0, 0}, {40, 0}}), Line({{40, 0}, {40, 20}}), Line({{40, 20}, {0, 20}}), Line({{0, 20}, {0, 0}})};
}

// The same lines in another order, some the other way round.
std::vector<Path> Shuffled(std::vector<Path> paths, unsigned seed) {
  std::mt19937 engine(seed);
  std::shuffle(paths.begin(), paths.end(), engine);
  for (Path& path : paths) {
    if (engine() % 2 == 0 && path.curves.empty()) std::reverse(path.points.begin(), path.points.end());
  }
  return paths;
}

Contours ContoursOf(std::vector<Path> paths, LineFaces faces, double join = 0.0) {
  Drawing drawing;
  drawing.joinsEnds = true;
  drawing.paths = std::move(paths);
  return MakeContours(std::move(drawing), {1e-3, join, faces});
}

// One answer for all orders, to the bit.
void ExpectAlways(const std::vector<Path>& paths, double area, std::size_t cells, std::size_t open, double join = 0.0) {
  ZBR_REGION first;
  for (unsigned seed = 0; seed < 50; ++seed) {
    const Contours outer = ContoursOf(Shuffled(paths, seed), LineFaces::kOuter, join);
    const ZBR_REGION region = ValidShape(MakeRegion(outer));
    if (seed == 0) first = region;
    ASSERT_EQ(region, first) << "seed " << seed;
    ASSERT_EQ(outer.open.size(), open) << "seed " << seed;
    const Contours all = ContoursOf(Shuffled(paths, seed), LineFaces::kAll, join);
    ASSERT_EQ(all.rings.empty() ? 0U : static_cast<std::size_t>(all.rings.back().polygon) + 1, cells) << "seed " << seed;
  }
  EXPECT_NEAR(CurvedShape(MakeRegion(ContoursOf(paths, LineFaces::kOuter, join))).Area(), area, std::max(1e-9, join));
}

Path HalfCircle(const ZBR_PT& centre, double radius, double from) {
  Path path;
  Curve arc;
  arc.centre = centre;
  arc.u.Set(radius, 0);
  arc.v.Set(0, radius);
  arc.t0 = from;
  arc.t1 = from + kPi;
  path.points = {arc.At(arc.t0), arc.At(arc.t1)};
  path.curves = {arc};
  return path;
}

TEST(LineWork, NamedCases_AnyOrder) {
  std::vector<Path> paths = Rectangle();
  paths.push_back(Line({{40, 20}, {50, 30}}));
  ExpectAlways(paths, 800, 1, 1);  // a spur

  paths = Rectangle();
  paths.push_back(Line({{0, 0}, {40, 20}}));
  ExpectAlways(paths, 800, 2, 0);  // a diagonal

  paths = Rectangle();
  paths[0] = Line({{0, 0}, {20, 0}});
  paths[2] = Line({{40, 20}, {20, 20}});
  for (const auto& line : {Line({{20, 0}, {40, 0}}), Line({{20, 20}, {0, 20}}), Line({{20, 0}, {20, 20}})}) paths.push_back(line);
  ExpectAlways(paths, 800, 2, 0);  // two cells sharing a wall

  for (Path& path : paths) path.points[0] += ZBR_PT(1e-7, -1e-7) * static_cast<double>(&path - paths.data());
  ExpectAlways(paths, 800, 2, 0, 1e-4);  // the same with ends that only nearly meet

  paths = {Line({{0, 0}, {20, 0}}),         Line({{20, 0}, {40, 0}}),  Line({{40, 20}, {20, 20}}),
           Line({{20, 20}, {0, 20}}),       Line({{20, 0}, {20, 20}}), HalfCircle({40, 10}, 10, -kPi / 2),
           HalfCircle({0, 10}, 10, kPi / 2)};
  ExpectAlways(paths, 800 + 100 * kPi, 2, 0, 1e-9);  // round at both ends

  paths = Rectangle();
  for (const auto& line : {Line({{40, 20}, {50, 20}}), Line({{50, 20}, {60, 20}, {60, 30}, {50, 20}})}) paths.push_back(line);
  ExpectAlways(paths, 850, 2, 1);  // a bridge to a loop
}

// Trimmed lines that were written with few digits end short of a line, an arc and a circle; others end beyond them or exactly
// there.
TEST(LineWork, EndsShortOfTheMiddle_AreLedOn) {
  constexpr double kGap = 1e-5;
  const auto expectCells = [](const std::vector<Path>& paths, std::size_t cells, double area, double join) {
    ZBR_REGION first;
    for (unsigned seed = 0; seed < 50; ++seed) {
      const Contours all = ContoursOf(Shuffled(paths, seed), LineFaces::kAll, join);
      ASSERT_EQ(all.rings.empty() ? 0U : static_cast<std::size_t>(all.rings.back().polygon) + 1, cells) << "seed " << seed;
      const Region region = MakeRegion(all);
      ASSERT_NEAR(CurvedShape(region).Area(), area, 1e-3) << "seed " << seed;
      if (seed == 0) first = ValidShape(region);
      ASSERT_EQ(ValidShape(region), first) << "seed " << seed;
    }
  };
  for (const double gap : {kGap, 1e-9, 0.0, -kGap}) {
    SCOPED_TRACE(gap);
    // A room of three lines on a wall, divided by a line that ends on a wall on either side.
    std::vector<Path> paths = {Line({{-5, 0}, {45, 0}}), Line({{0, gap}, {0, 20}}), Line({{0, 20}, {40, 20}}),
                               Line({{40, 20}, {40, gap}}), Line({{10, gap}, {20, 20 - gap}})};
    expectCells(paths, 2, 800, 1e-4);
    if (gap >= kGap) expectCells(paths, 0, 0, 1e-6);
    // An arc that a line closes, and a whole circle that another line divides.
    Path whole = HalfCircle({0, 0}, 20, 0);
    whole.curves[0].t1 = 2 * kPi;
    whole.points.pop_back();
    whole.closed = true;
    paths = {HalfCircle({60, 0}, 10, -kPi / 2), Line({{60 + gap, -11}, {60 + gap, 11}}),
             Line({{60 + gap, 2}, {60 + std::sqrt(96.0) - gap, 2}}), whole, Line({{gap - 12, 16}, {12 - gap, gap - 16}})};
    expectCells(paths, 4, 450 * kPi, 1e-4);
  }
}

// The edges of closed paths, cut somewhere, each a path of its own.
std::vector<Path> Cut(const std::vector<Path>& rings, std::mt19937& engine) {
  std::vector<Path> cut;
  for (const Path& ring : rings) {
    const std::size_t n = ring.points.size(), turn = engine() % n;
    auto isCut = [&](std::size_t i) { return i % n == turn || (ring.points[i % n].x() + ring.points[i % n].y() > 3); };
    for (std::size_t k = 0; k < n; ++k) {
      const std::size_t i = turn + k;
      if (isCut(i)) cut.push_back(Line({ring.points[i % n]}));
      for (Curve curve : ring.curves) {
        if (curve.at != i % n) continue;
        curve.at = cut.back().points.size() - 1;
        cut.back().curves.push_back(curve);
      }
      cut.back().points.push_back(ring.points[(i + 1) % n]);
    }
  }
  return cut;
}

// Rings that touch, cross, run along and lie within one another, cut into lines and arcs, bound what they did.
TEST(LineWork, CutRings_BoundWhatTheyDid) {
  std::size_t touching = 0;
  for (unsigned seed = 0; seed < 400; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 engine(seed);
    std::vector<Path> rings;
    for (unsigned i = 0; i < 2 + seed % 5; ++i) {
      const auto upTo = [&](unsigned n) { return static_cast<double>(engine() % n); };
      const double x = upTo(4), y = upTo(4), w = 1 + upTo(2), h = 1 + upTo(2);
      Path& ring = rings.emplace_back(Line({{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}}));
      ring.closed = true;
      if (engine() % 2 == 0) continue;  // else a disc that touches three sides of the box inside, and may touch others
      const Path right = HalfCircle({x + 0.5, y + 0.5}, 0.5, -kPi / 2), left = HalfCircle({x + 0.5, y + 0.5}, 0.5, kPi / 2);
      ring.points = {{x + 0.5, y}, {x + 0.5, y + 1}};
      ring.curves = {right.curves[0], left.curves[0]};
      ring.curves[1].at = 1;
    }
    const double area = CurvedShape(MakeRegion(ContoursOf(rings, LineFaces::kRings))).Area();
    const std::vector<Path> cut = Cut(rings, engine);
    const Contours contours = ContoursOf(Shuffled(cut, seed), LineFaces::kRings, 1e-6);
    EXPECT_NEAR(CurvedShape(MakeRegion(contours)).Area(), area, 1e-9);
    EXPECT_TRUE(contours.forks.empty());
    EXPECT_TRUE(contours.open.empty());
    if (!ContoursOf(cut, LineFaces::kOuter, 1e-6).forks.empty()) ++touching;
  }
  EXPECT_GT(touching, 100U);
}

// Discs that touch within one another leave the point in one direction: no ring is taken for one that crosses another.
TEST(LineWork, CurvesThatTouch_DoNotCross) {
  std::vector<Path> paths = {Line({{0, 0}, {2, 0}, {2, 2}, {-2, 2}, {-2, 0}, {0, 0}})};
  for (const double radius : {1.0, 0.75, 0.7, 0.1}) {
    for (const double from : {-kPi / 2, kPi / 2}) paths.push_back(HalfCircle({0, radius}, radius, from));
  }
  paths[0].points.pop_back();
  paths.push_back(Line({{-2, 0}, {0, 0}}));
  const double area = 8 - kPi * (1 - 0.75 * 0.75 + 0.7 * 0.7 - 0.1 * 0.1);
  ZBR_REGION first;
  for (unsigned seed = 0; seed < 20; ++seed) {
    const Contours contours = ContoursOf(Shuffled(paths, seed), LineFaces::kRings, 1e-6);
    const Region region = MakeRegion(contours);
    EXPECT_EQ(region.rings.ring_count(), 5U);
    EXPECT_TRUE(region.faults.empty());
    EXPECT_NEAR(CurvedShape(region).Area(), area, 1e-9);
    if (seed == 0) first = ValidShape(region);
    EXPECT_EQ(ValidShape(region), first);
  }
}

// A tolerance above the length of lines closes gaps, but swallows none.
TEST(LineWork, ShortLinesUnderAWideTolerance) {
  std::vector<Path> paths;
  constexpr int kSides = 400;
  for (int i = 0; i < kSides; ++i) {
    const auto at = [](int k, double aside) {
      return ZBR_PT(std::cos(k * 0.01570796326794897) + aside, std::sin(k * 0.01570796326794897));
    };
    paths.push_back(Line({at(i, 1e-9 * (i % 3)), at((i + 1) % kSides, 0)}));
  }
  const Contours contours = ContoursOf(Shuffled(paths, 1), LineFaces::kOuter, 0.05);
  ASSERT_EQ(contours.rings.size(), 1U);
  EXPECT_EQ(contours.rings[0].points.size(), static_cast<std::size_t>(kSides));
}

class Polygonizer {
 public:
  Polygonizer() : context_(GEOS_init_r()) {}
  ~Polygonizer() { GEOS_finish_r(context_); }
  Polygonizer(const Polygonizer&) = delete;
  Polygonizer& operator=(const Polygonizer&) = delete;

  // Areas of all cells, ascending.
  std::vector<double> Cells(const ZBR_REGION& lines) const {
    std::vector<GEOSGeometry*> parts;
    for (std::size_t r = 0; r < lines.ring_count(); ++r) {
      const auto first = static_cast<std::size_t>(lines.ring_offsets()[r]),
                 end = static_cast<std::size_t>(lines.ring_offsets()[r + 1]);
      GEOSCoordSequence* const sequence = GEOSCoordSeq_create_r(context_, static_cast<unsigned>(end - first), 2);
      for (std::size_t i = first; i < end; ++i)
        GEOSCoordSeq_setXY_r(context_, sequence, static_cast<unsigned>(i - first), lines.points()[i].x(), lines.points()[i].y());
      parts.push_back(GEOSGeom_createLineString_r(context_, sequence));
    }
    GEOSGeometry* const all =
        GEOSGeom_createCollection_r(context_, GEOS_MULTILINESTRING, parts.data(), static_cast<unsigned>(parts.size()));
    GEOSGeometry* const noded = GEOSUnaryUnion_r(context_, all);
    GEOSGeometry* const cells = GEOSPolygonize_r(context_, &noded, 1);
    std::vector<double> areas;
    for (int i = 0; i < GEOSGetNumGeometries_r(context_, cells); ++i) {
      areas.emplace_back();
      GEOSArea_r(context_, GEOSGetGeometryN_r(context_, cells, i), &areas.back());
    }
    for (GEOSGeometry* const g : {all, noded, cells}) GEOSGeom_destroy_r(context_, g);
    std::sort(areas.begin(), areas.end());
    return areas;
  }

 private:
  GEOSContextHandle_t context_;
};

std::vector<double> AreasOf(const ZBR_REGION& cells) {
  std::vector<double> areas;
  for (std::size_t p = 0; p < cells.polygon_count(); ++p) {
    ZBR_REGION cell;
    for (auto r = cells.polygon_offsets()[p]; r < cells.polygon_offsets()[p + 1]; ++r) {
      const auto first = static_cast<std::size_t>(cells.ring_offsets()[static_cast<std::size_t>(r)]);
      const auto end = static_cast<std::size_t>(cells.ring_offsets()[static_cast<std::size_t>(r) + 1]);
      cell.AddRing(cells.points().data() + first, end - first);
    }
    areas.push_back(cell.area());
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(cell.view(), faults);
    EXPECT_TRUE(faults.empty()) << "cell " << p;
  }
  std::sort(areas.begin(), areas.end());
  return areas;
}

// Lines on a coarse grid, so that they meet in ends, cross, overlap, leave islands and dead ends.
TEST(LineWork, Cells_AreThoseOfGeos) {
  const Polygonizer geos;
  std::size_t cells = 0, holes = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 engine(seed);
    const int side = 4 + static_cast<int>(seed % 9);
    const auto coordinate = [&] { return static_cast<double>(static_cast<int>(engine()) % side); };
    ZBR_REGION lines;
    for (unsigned i = 0; i < 5 + seed % 30; ++i) {
      std::vector<ZBR_PT> points = {{coordinate(), coordinate()}};
      for (unsigned k = 0; k < 1 + engine() % 3; ++k)
        points.push_back(points.back() + ZBR_PT(static_cast<int>(engine() % 3) - 1, static_cast<int>(engine() % 3) - 1));
      if (engine() % 4 == 0) points.push_back(points.front());
      if (engine() % 6 == 0) {  // an island within a cell of the grid
        const ZBR_PT p = points[0] + ZBR_PT(0.5, 0.125);
        points = {p, p + ZBR_PT(0.125, 0), p + ZBR_PT(0, 0.125), p};
      }
      lines.AddRing(points);
    }
    ZBR_REGION found;
    ZBR_REGION_OPTIONS options;
    options.canonical = true;
    ASSERT_EQ(zbrTraceFaces(lines.view(), found, options).code, ZBR_REGION_OK);
    const std::vector<double> areas = AreasOf(found), expected = geos.Cells(lines);
    ASSERT_EQ(areas.size(), expected.size());
    for (std::size_t i = 0; i < areas.size(); ++i) ASSERT_NEAR(areas[i], expected[i], 1e-9);
    cells += areas.size();
    holes += found.ring_count() - found.polygon_count();
  }
  EXPECT_GT(cells, 1000U);
  EXPECT_GT(holes, 10U);
}

}  // namespace
