// Circles of models: found where there are some, and only there; and what views make of them.

#include <zbr-drawing/circles.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

using std::numbers::pi;

using Points = std::vector<ZBR_PT>;

// A prism over what is seen from its middle.
Mesh Prism(const Points& corners, double height) {
  Mesh mesh;
  const auto n = static_cast<std::uint32_t>(corners.size());
  for (const double z : {0.0, height}) {
    for (const ZBR_PT& p : corners) mesh.points.emplace_back(p.x(), p.y(), z);
  }
  for (const double z : {0.0, height}) mesh.points.emplace_back(0, 0, z);
  for (std::uint32_t i = 0; i < n; ++i) {
    const std::uint32_t j = (i + 1) % n;
    for (const auto& t : {std::array{i, j, n + j}, {i, n + j, n + i}, {2 * n, j, i}, {2 * n + 1, n + i, n + j}})
      mesh.triangles.push_back(t);
  }
  return mesh;
}

// Points at `count` equal angles of the curve with the given radii.
template <class Radius>
Points Polar(int count, const Radius& radius) {
  Points points;
  for (int i = 0; i < count; ++i) {
    const double a = 2 * pi * i / count;
    points.emplace_back(radius(a) * std::cos(a), radius(a) * std::sin(a));
  }
  return points;
}

Points RegularPolygon(int sides) {
  return Polar(sides, [](double) { return 5.0; });
}

// What it is on disk after someone has turned and moved it: single precision.
Mesh Turned(Mesh mesh) {
  example::Turn(mesh, {1, 2, 3}, 0.1234);
  for (ZBR_PT3& p : mesh.points) {
    const ZBR_PT3 q = p + ZBR_PT3(40, -70, 20);
    p.Set(static_cast<float>(q.x()), static_cast<float>(q.y()), static_cast<float>(q.z()));
  }
  return mesh;
}

struct Found {
  std::size_t circles = 0;
  std::map<long, double> lengths;  // of edges, by a thousand times the radius
  double worst = 0.0;              // distance of an end of an edge from its circle
};

Found Find(const Mesh& mesh) {
  const Model model = MakeModel(mesh, 30.0);
  const Circles circles = FindCircles(model);
  Found found{circles.all.size(), {}, 0.0};
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    for (int e = 0; e < model.Shell(s).GetEdgeCnt(); ++e) {
      const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(e);
      const std::uint32_t k = circles.ofEdge[model.edgeBegin[s] + static_cast<std::size_t>(e)];
      if (k == kNoCircle) continue;
      const Circle& c = circles.all[k];
      found.lengths[std::lround(c.radius * 1000)] += edge.GetVertex0()->GetPt().Distance(edge.GetVertex1()->GetPt());
      for (const ZBR_ZBREPV* v : {edge.GetVertex0(), edge.GetVertex1()}) {
        const ZBR_PT3 d = v->GetPt() - c.centre;
        const double along = d.InnerProduct(c.axis);
        found.worst = std::max({found.worst, std::fabs(along), std::fabs((d - c.axis * along).Length() - c.radius)});
      }
    }
  }
  return found;
}

Mesh SlottedPlate() {
  using namespace example;
  Solid solid;
  const example::Region plate = Minus(RoundedRectangle(-20, -12, 20, 12, 3, 9), Rectangle(8, -1.2, 15, 1.2));
  solid.Extrude(Axis::kZ, Minus(plate, example::Circle(8, 0, 4, 40)), 0.0, 2.0);
  solid.Drill(Axis::kZ, example::Circle(-10, 0, 2.5, 24), 0, 2);
  return solid.Take();
}

// Chords of n-th parts of a turn of radius r, twice: at the bottom and at the top.
double Chords(double r, int n, double count) {
  return 2 * count * 2 * r * std::sin(pi / n);
}

TEST(Circles, RimsAndFilletsWhateverTheirRounding) {
  const struct {
    const char* name;
    Mesh mesh;
    std::size_t circles;
    std::map<long, double> lengths;
  } cases[] = {
      {"twelve sides", Prism(RegularPolygon(12), 3), 2, {{5000, Chords(5, 12, 12)}}},
      {"cylinder", Prism(RegularPolygon(64), 3), 2, {{5000, Chords(5, 64, 64)}}},
      {"fine cylinder", Prism(RegularPolygon(1000), 3), 2, {{5000, Chords(5, 1000, 1000)}}},
      // The slot takes chords of the bore away; what it leaves is one circle in two places.
      {"slotted plate", SlottedPlate(), 12, {{3000, Chords(3, 36, 36)}, {2500, Chords(2.5, 24, 24)}, {4000, Chords(4, 40, 36)}}},
  };
  for (const auto& c : cases) {
    for (const bool turned : {false, true}) {
      SCOPED_TRACE(std::string(c.name) + (turned ? ", turned" : ""));
      const Found found = Find(turned ? Turned(c.mesh) : c.mesh);
      EXPECT_EQ(found.circles, c.circles);
      EXPECT_EQ(found.lengths.size(), c.lengths.size());
      for (const auto& [radius, length] : c.lengths) {
        EXPECT_NEAR(found.lengths.contains(radius) ? found.lengths.at(radius) : 0.0, length, 1e-5 * length) << radius;
      }
      EXPECT_LT(found.worst, turned ? 2e-5 : 2e-6);
    }
  }
}

TEST(Circles, NoneOnPolygonsAndOtherCurves) {
  const auto ellipse = [](double a) { return 15 / std::sqrt(9 * std::cos(a) * std::cos(a) + 25 * std::sin(a) * std::sin(a)); };
  const auto wave = [](double a) { return 5 + 0.5 * std::sin(3 * a); };
  Mesh helix;
  for (int i = 0; i <= 400; ++i) {
    for (const double r : {5.0, 6.0}) helix.points.emplace_back(r * std::cos(0.1 * i), r * std::sin(0.1 * i), 0.02 * i);
  }
  for (std::uint32_t i = 0; i < 800; i += 2) AddPolygon(helix, {i, i + 1, i + 3, i + 2});
  for (const int n : {24, 64, 360, 2000}) {
    for (const bool turned : {false, true}) {
      SCOPED_TRACE(std::to_string(n) + (turned ? ", turned" : ""));
      const auto use = [&](const Mesh& mesh) { return turned ? Turned(mesh) : mesh; };
      EXPECT_EQ(Find(use(Prism(Polar(n, ellipse), 3))).circles, 0U);
      EXPECT_EQ(Find(use(Prism(Polar(n, wave), 3))).circles, 0U);
      EXPECT_EQ(Find(use(Prism(RegularPolygon(n / 5 < 12 ? n / 5 : 6), 3))).circles, 0U);
      EXPECT_EQ(Find(use(helix)).circles, 0U);
    }
  }
}

// A shaft with two flats, whose ends lie on its rim. Where every corner is a crease, a prism is meant.
TEST(Circles, FlatsAndCornersStayStraight) {
  Points shaft = RegularPolygon(72);
  shaft.erase(shaft.begin() + 40, shaft.begin() + 43);
  shaft.erase(shaft.begin() + 4, shaft.begin() + 7);
  const Found found = Find(Prism(shaft, 3));
  EXPECT_EQ(found.circles, 2U);
  EXPECT_NEAR(found.lengths.at(5000), Chords(5, 72, 64), 1e-9);
  // Three long chords in a row are a coarser part of an arc.
  Points coarse = RegularPolygon(72);
  coarse.resize(55);
  for (const int k : {26, 23, 20}) coarse.erase(coarse.begin() + k, coarse.begin() + k + 2);
  EXPECT_NEAR(Find(Prism(coarse, 3)).lengths.at(5000), Chords(5, 72, 45) + Chords(5, 24, 3), 1e-9);
  EXPECT_EQ(FindCircles(MakeModel(Prism(RegularPolygon(24), 3), 10.0)).all.size(), 0U);
  // In whole rims, too, which start at their longest chord.
  for (const int longest : {20, 26}) {
    Points whole = RegularPolygon(72);
    whole.erase(whole.begin() + longest, whole.begin() + longest + 1);
    for (const int k : {25, 22, 19}) whole.erase(whole.begin() + k, whole.begin() + k + 2);
    EXPECT_NEAR(Find(Prism(whole, 3)).lengths.at(5000), Chords(5, 72, 62) + Chords(5, 24, 2) + Chords(5, 18, 1), 1e-9) << longest;
  }
}

// A regular polygon whose corners are arcs of radius 2 in so many chords; the points between the ends of the arcs may be off them.
Points Rounded(int sides, int chords, double off = 0.0) {
  Points points;
  for (int corner = 0; corner < sides; ++corner) {
    const double a = 2 * pi * corner / sides;
    for (int k = 0; k <= chords; ++k) {
      const double b = a + 2 * pi / sides * (1.0 * k / chords - 0.5), r = k == 0 || k == chords ? 2.0 : 2.0 + off;
      points.emplace_back(10 * std::cos(a) + r * std::cos(b), 10 * std::sin(a) + r * std::sin(b));
    }
  }
  return points;
}

// Two or three chords are an arc where the lines beside them are its tangents, and no chamfer in as many steps.
TEST(Circles, CoarseRoundings) {
  for (const auto& [sides, chords] : {std::pair{4, 3}, {6, 2}, {6, 3}, {8, 2}}) {
    SCOPED_TRACE(std::to_string(sides) + " corners of " + std::to_string(chords) + " chords");
    for (const bool turned : {false, true}) {
      const auto find = [&](const Points& points) { return Find(turned ? Turned(Prism(points, 3)) : Prism(points, 3)); };
      Found found = find(Rounded(sides, chords));
      EXPECT_EQ(found.circles, 2U * static_cast<unsigned>(sides));
      EXPECT_NEAR(found.lengths[2000], Chords(2, sides * chords, sides * chords), 1e-4);
      EXPECT_EQ(find(Rounded(sides, chords, 0.05)).circles + find(Rounded(sides, chords, -0.05)).circles, 0U);
      EXPECT_EQ(find(Rounded(sides, 1)).circles, 0U);
    }
  }
  EXPECT_EQ(FindCircles(MakeModel(Prism(Rounded(6, 2), 3), 20.0)).all.size(), 0U) << "corners that are drawn are meant";
  // Between a fine arc of radius 10, to which they are tangent, and lines that meet.
  Points drop;
  const auto add = [&](double x, double y, double r, int degrees) {
    drop.emplace_back(x + r * std::cos(degrees * pi / 180), y + r * std::sin(degrees * pi / 180));
  };
  const double x = 8 * std::cos(5 * pi / 18), y = 8 * std::sin(5 * pi / 18);
  for (int degrees = -50; degrees < 50; degrees += 5) add(0, 0, 10, degrees);
  for (const int degrees : {50, 80, 110, 140}) add(x, y, 2, degrees);
  drop.emplace_back(drop.back().x() - drop.back().y() / std::tan(5 * pi / 18), 0);
  for (const int degrees : {220, 250, 280}) add(x, -y, 2, degrees);
  EXPECT_NEAR(Find(Prism(drop, 3)).lengths[2000], Chords(2, 12, 6), 1e-9);
}

// A rim with notches: three chords between two of them are of the circle that the others prove. Alone they prove none.
TEST(Circles, FewChordsOfOneThatIsKnown) {
  const auto notched = [](bool isKnown) {
    return Polar(72, [=](double a) {
      const auto i = static_cast<int>(std::lround(a * 72 / (2 * pi)));
      return i == 41 || i == 42 || i == 47 || i == 48 ? 4.0 : isKnown || (i > 42 && i < 47) ? 5.0 : i % 2 == 0 ? 4.6 : 4.7;
    });
  };
  for (const bool turned : {false, true}) {
    const Mesh known = Prism(notched(true), 3), unknown = Prism(notched(false), 3);
    const Found found = Find(turned ? Turned(known) : known);
    EXPECT_EQ(found.circles, 2U);
    EXPECT_NEAR(found.lengths.at(5000), Chords(5, 72, 40 + 3 + 23), 1e-4);
    EXPECT_EQ(Find(turned ? Turned(unknown) : unknown).circles, 0U);
  }
}

// In each view, runs lie along their chains, go on where they end, and share the record of their circle to the bit; together they
// have the length of the circles' drawn edges. Whole circles are closed.
TEST(Circles, RunsOfViews) {
  const Mesh mesh = SlottedPlate();
  const Model model = MakeModel(mesh, 30.0);
  for (const ZBR_PT3& direction : {ZBR_PT3(0, 0, -1), ZBR_PT3(-1, 1, -1), ZBR_PT3(0.3, 0.9, -0.41), ZBR_PT3(0, 1, 0)}) {
    const ViewLines view = DrawViews(model, {{"look", LookAlong(direction, {0.1, 1, 0.2})}}, {}).front();
    double onRuns = 0.0, curved = 0.0, whole = 0.0;
    std::map<std::uint32_t, CircleRun> first;
    for (const Line& line : view.lines) {
      std::size_t next = 0;
      for (const CircleRun& run : line.chain.curves) {
        ASSERT_TRUE(run.at >= next && run.at < run.last && run.last < line.chain.points.size());
        next = run.last;
        const CircleRun& same = first.emplace(run.circle, run).first->second;
        EXPECT_TRUE(same.centre == run.centre && same.u.x() == run.u.x() && same.u.y() == run.u.y() && same.v.x() == run.v.x());
        const double chordHeight = 2.5 * (1 - std::cos(pi / 24));  // of the coarsest circle
        EXPECT_LT(run.At(run.t0).Distance(line.chain.points[run.at]), chordHeight);
        EXPECT_LT(run.At(run.t1).Distance(line.chain.points[run.last]), chordHeight);
        double length = 0.0, along = 0.0;
        for (std::size_t i = run.at; i < run.last; ++i) length += line.chain.points[i].Distance(line.chain.points[i + 1]);
        constexpr int kParts = 1000;
        for (int i = 0; i < kParts; ++i) {
          const auto t = [&](int k) { return run.t0 + (run.t1 - run.t0) * k / kParts; };
          along += run.At(t(i)).Distance(run.At(t(i + 1)));
        }
        EXPECT_NEAR(along, length, 0.01 * length + 1e-3);
        onRuns += length;
        if (line.chain.closed && line.chain.curves.size() == 1 && run.last - run.at + 1 == line.chain.points.size()) {
          EXPECT_DOUBLE_EQ(std::fabs(run.t1 - run.t0), 2 * pi);
          const ZBR_PT& quarter = line.chain.points[run.at + (run.last - run.at) / 4];  // the way that the points go round
          EXPECT_LT(run.At(run.t0 + (run.t1 - run.t0) / 4).Distance(quarter), 0.7);
          whole += 1;
        }
      }
    }
    for (const Line& line : view.lines) {  // what is short is part of a curve here, or of the slot
      for (std::size_t i = 1; i < line.chain.points.size(); ++i) {
        const double d = line.chain.points[i].Distance(line.chain.points[i - 1]);
        if (d < 0.7) curved += d;
      }
    }
    const bool edgeOn = direction.z() == 0;
    EXPECT_EQ(first.empty(), edgeOn);
    if (edgeOn) continue;
    EXPECT_GE(onRuns, 0.98 * curved);
    EXPECT_GE(whole, 1);
  }
}

Mesh Raised(Mesh mesh, double by) {
  for (ZBR_PT3& p : mesh.points) p += ZBR_PT3(0, 0, by);
  return mesh;
}

// Both as shells of their own, though they may have points in common.
Mesh Together(const Mesh& a, const Mesh& b) {
  Mesh both = a;
  example::Append(both, b);
  both.shells.assign(both.triangles.size(), 0);
  std::fill(both.shells.begin() + static_cast<std::ptrdiff_t>(a.triangles.size()), both.shells.end(), 1U);
  return both;
}

ViewLines Seen(const Mesh& mesh, const ZBR_PT3& direction) {
  DrawingOptions options;
  options.hidden = HiddenLines::kNone;
  options.intersections = false;
  return DrawViews(MakeModel(mesh, 30.0), {{"look", LookAlong(direction, {0.1, 1, 0.2})}}, options).front();
}

// A block on another, as they are and both rounded. While they are in contact, the seam adds to what both in one piece show as much
// as two rims add to it that are apart.
TEST(LinesInCommon, OneBodyDrawsTheSeam) {
  for (const auto& [sides, isRounded] : {std::pair{4, false}, {4, true}, {48, false}, {48, true}}) {
    const Mesh block = Prism(RegularPolygon(sides), 3);
    const auto length = [rounded = isRounded](const Mesh& mesh, const ZBR_PT3& d) {
      return Seen(rounded ? Turned(mesh) : mesh, d).VisibleLength();
    };
    for (const ZBR_PT3& d : {ZBR_PT3(1, 2, -3), ZBR_PT3(-3, 1, -1), ZBR_PT3(1, -1, 1)}) {
      const double whole = length(Prism(RegularPolygon(sides), 6), d);
      const double close = length(Together(block, Raised(block, isRounded ? 3 + 5e-6 : 3)), d);
      const double apart = length(Together(block, Raised(block, 3.004)), d);
      EXPECT_GT(close - whole, 5) << sides;
      EXPECT_NEAR(apart - close, close - whole, 0.05) << sides;
    }
  }
}

// Pins of 48 sides, and of 15 on one half and 45 on the other, in a bore of 60, flush: their rims are the bore's, though all chords
// are beside each other. A loose one's is not.
TEST(LinesInCommon, OneBodyDrawsTheRim) {
  example::Solid plate;
  plate.Extrude(example::Axis::kZ, example::Minus(example::Circle(0, 0, 20, 60), example::Circle(0, 0, 10, 60)), 0.0, 4.0);
  const Mesh tube = plate.Take();
  Points uneven;
  for (int degrees = 3; degrees < 363; degrees += degrees < 183 ? 12 : 4)
    uneven.emplace_back(10 * std::cos(degrees * pi / 180), 10 * std::sin(degrees * pi / 180));
  for (const auto& [pin, turns] :
       {std::pair{Polar(48, [](double) { return 10.0; }), 1}, {Polar(48, [](double) { return 9.999; }), 2}, {uneven, 1}}) {
    const ViewLines view = Seen(Together(tube, Prism(pin, 4)), {0, 0, -1});
    double turn = 0.0;
    for (const Line& line : view.lines) {
      for (const CircleRun& run : line.chain.curves) turn += run.u.Length() < 15 ? std::fabs(run.t1 - run.t0) : 0.0;
    }
    EXPECT_NEAR(turn, turns * 2 * pi, 1e-3);
  }
}

}  // namespace
}  // namespace zbr::drawing
