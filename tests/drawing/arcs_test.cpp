// Arcs through combinations: random drawings of lines, arcs and circles, with their areas computed slab by slab from the true
// curves.
#include <gtest/gtest.h>
#include <zbr-drawing/contours.h>
#include <zbr-drawing/region.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

namespace {

using namespace zbr::drawing;

constexpr double kPi = 3.141592653589793;
constexpr double kSize = 100.0;  // of the drawings

Curve Circle(const ZBR_PT& centre, double radius, double t0, double t1) {
  Curve circle;
  circle.centre = centre;
  circle.u.Set(radius, 0);
  circle.v.Set(0, radius);
  circle.t0 = t0;
  circle.t1 = t1;
  return circle;
}

Path WholeCircle(const ZBR_PT& centre, double radius) {
  Path path;
  path.curves = {Circle(centre, radius, 0, 2 * kPi)};
  path.points = {path.curves[0].At(0)};
  path.closed = true;
  return path;
}

// The edge from point i on becomes an arc of this angle, counter-clockwise where it is positive.
void Bend(Path& path, std::size_t i, double angle) {
  const ZBR_PT a = path.points[i], b = path.points[(i + 1) % path.points.size()], d = b - a;
  const ZBR_PT centre = (a + b) * 0.5 + ZBR_PT(-d.y(), d.x()) * (0.5 / std::tan(angle / 2));
  const double start = std::atan2(a.y() - centre.y(), a.x() - centre.x());
  Curve arc = Circle(centre, a.Distance(centre), start, start + angle);
  arc.at = i;
  path.curves.push_back(arc);
}

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  double Between(double a, double b) { return std::uniform_real_distribution<double>(a, b)(engine_); }
  ZBR_PT Point() { return ZBR_PT(Between(0, kSize), Between(0, kSize)); }

  Path Contour() {
    if (Between(0, 1) < 0.4) return WholeCircle(Point(), Between(2, 30));
    Path path;
    path.closed = true;
    for (int i = static_cast<int>(Between(3, 7)); i-- > 0;) path.points.push_back(Point());
    for (std::size_t i = 0; i < path.points.size(); ++i) {
      if (Between(0, 1) < 0.6) Bend(path, i, Between(0.1, 4.5) * (Between(0, 1) < 0.5 ? -1 : 1));
    }
    return path;
  }
  Drawing Contours(int count) {
    Drawing drawing;
    while (count-- > 0) drawing.paths.push_back(Contour());
    return drawing;
  }

 private:
  std::mt19937 engine_;
};

// A piece of a boundary over an interval of x, with the area below it.
struct Strand {
  int operand;
  double low, high;   // x
  ZBR_PT a, b;        // of a line
  ZBR_PT centre;      // of an arc
  double radius = 0;  // 0: a line
  double sign = 1;    // upper or lower half of the circle

  double At(double x) const {
    if (radius == 0) return a.y() + (b.y() - a.y()) * ((x - a.x()) / (b.x() - a.x()));
    const double d = x - centre.x();
    return centre.y() + sign * std::sqrt(std::max(0.0, (radius - d) * (radius + d)));
  }
  double AreaBelow(double x0, double x1) const {
    if (radius == 0) return (x1 - x0) * At((x0 + x1) / 2);
    const auto integral = [&](double x) {
      const double d = std::clamp((x - centre.x()) / radius, -1.0, 1.0);
      return radius * radius / 2 * (std::asin(d) + d * std::sqrt((1 - d) * (1 + d)));
    };
    return centre.y() * (x1 - x0) + sign * (integral(x1) - integral(x0));
  }
};

void AddStrands(const Path& path, int operand, std::vector<Strand>& strands) {
  auto curve = path.curves.begin();
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    const ZBR_PT a = path.points[i], b = path.points[(i + 1) % path.points.size()];
    if (curve == path.curves.end() || curve->at != i) {
      strands.push_back({operand, std::min(a.x(), b.x()), std::max(a.x(), b.x()), a, b, {}});
      continue;
    }
    const double t0 = std::min(curve->t0, curve->t1), t1 = std::max(curve->t0, curve->t1);
    for (double from = t0; from < t1;) {  // halves of the circle, cut where it is vertical
      const double to = std::min(t1, kPi * (std::floor(from / kPi + 1e-12) + 1));
      const double x0 = curve->At(from).x(), x1 = curve->At(to).x();
      const double sign = std::sin((from + to) / 2) > 0 ? 1 : -1;
      strands.push_back({operand, std::min(x0, x1), std::max(x0, x1), {}, {}, curve->centre, curve->u.x(), sign});
      from = to;
    }
    ++curve;
  }
}

// Where strands cross over an interval in which both exist: by bisection between the extremes of their distance.
void AddCrossings(const Strand& s, const Strand& t, std::vector<double>& xs) {
  const double low = std::max(s.low, t.low), high = std::min(s.high, t.high);
  if (!(low < high)) return;
  constexpr int kSteps = 2000;
  const auto gap = [&](double x) { return s.At(x) - t.At(x); };
  for (int k = 0; k < kSteps; ++k) {
    double x0 = low + (high - low) * k / kSteps, x1 = low + (high - low) * (k + 1) / kSteps;
    if ((gap(x0) < 0) == (gap(x1) < 0)) continue;
    for (int i = 0; i < 80; ++i) ((gap((x0 + x1) / 2) < 0) == (gap(x0) < 0) ? x0 : x1) = (x0 + x1) / 2;
    xs.push_back(x0);
  }
}

bool IsInside(ZBR_BOOLEAN_OPE op, bool a, bool b) {
  if (op == ZBR_BOOL_OR) return a || b;
  if (op == ZBR_BOOL_AND) return a && b;
  if (op == ZBR_BOOL_XOR) return a != b;
  return op == ZBR_BOOL_A_MINUS_B ? a && !b : b && !a;
}

constexpr std::array<ZBR_BOOLEAN_OPE, 5> kOperations = {ZBR_BOOL_OR, ZBR_BOOL_AND, ZBR_BOOL_XOR, ZBR_BOOL_A_MINUS_B,
                                                        ZBR_BOOL_B_MINUS_A};

std::array<double, 5> TrueAreas(const Drawing& a, const Drawing& b) {
  std::vector<Strand> strands;
  for (const Path& path : a.paths) AddStrands(path, 0, strands);
  for (const Path& path : b.paths) AddStrands(path, 1, strands);
  std::vector<double> xs;
  for (std::size_t i = 0; i < strands.size(); ++i) {
    xs.insert(xs.end(), {strands[i].low, strands[i].high});
    for (std::size_t j = 0; j < i; ++j) AddCrossings(strands[i], strands[j], xs);
  }
  std::sort(xs.begin(), xs.end());
  std::array<double, 5> areas{};
  for (std::size_t k = 1; k < xs.size(); ++k) {
    const double middle = (xs[k - 1] + xs[k]) / 2;
    std::vector<const Strand*> over;
    for (const Strand& s : strands) {
      if (s.low < middle && middle < s.high) over.push_back(&s);
    }
    std::sort(over.begin(), over.end(), [&](const Strand* s, const Strand* t) { return s->At(middle) < t->At(middle); });
    std::array<bool, 2> in{};
    for (const Strand* const s : over) {
      const std::array<bool, 2> below = in;
      in[static_cast<std::size_t>(s->operand)] = !in[static_cast<std::size_t>(s->operand)];
      for (std::size_t o = 0; o < kOperations.size(); ++o) {
        const int turn = static_cast<int>(IsInside(kOperations[o], below[0], below[1])) -
                         static_cast<int>(IsInside(kOperations[o], in[0], in[1]));
        areas[o] += turn * s->AreaBelow(xs[k - 1], xs[k]);
      }
    }
  }
  return areas;
}

// Whether a result's edge lies on a line or arc of the drawings, with its centre and radius.
bool StemsFrom(const std::vector<const Drawing*>& drawings, const ZBR_PT& from, const ZBR_PT& to, const Curve* arc) {
  for (const Drawing* const drawing : drawings) {
    for (const Path& path : drawing->paths) {
      for (const Curve& curve : path.curves) {
        const double radius = curve.u.x();
        if (arc != nullptr && arc->centre.Distance(curve.centre) <= 1e-9 * radius && std::abs(arc->u.x() - radius) <= 1e-9 * radius)
          return true;
      }
      for (std::size_t i = 0; arc == nullptr && i < path.points.size(); ++i) {
        const ZBR_PT a = path.points[i], d = path.points[(i + 1) % path.points.size()] - a;
        const auto aside = [&](const ZBR_PT& p) { return std::abs(d.OuterProduct(p - a)) / std::sqrt(d.Length2()); };
        if (aside(from) <= 1e-9 * kSize && aside(to) <= 1e-9 * kSize) return true;
      }
    }
  }
  return false;
}

void ExpectArcs(const std::vector<Path>& outlines, const std::vector<const Drawing*>& drawings) {
  for (const Path& path : outlines) {
    auto curve = path.curves.begin();
    for (std::size_t i = 0; i < path.points.size(); ++i) {
      const ZBR_PT &from = path.points[i], &to = path.points[(i + 1) % path.points.size()];
      const bool isArc = curve != path.curves.end() && curve->at == i;
      ASSERT_TRUE(StemsFrom(drawings, from, to, isArc ? &*curve : nullptr)) << "edge " << i;
      if (!isArc) continue;
      ASSERT_LE(curve->At(curve->t0).Distance(from), 1e-9 * kSize);
      ASSERT_LE(curve->At(curve->t1).Distance(to), 1e-9 * kSize);
      ++curve;
    }
  }
}

struct Combined {
  std::vector<CurvedRegion> results;
  std::vector<std::vector<Path>> outlines;
  std::size_t beside = 0;
};

Combined Combine(const Drawing& a, const Drawing& b) {
  Extent extent = ExtentOf(a);
  extent.Add(ExtentOf(b));
  const std::vector<Contours> contours = MakeContours(std::vector<Drawing>{a, b}, WithDefaults({-1, -1}, extent));
  const Region first = MakeRegion(contours[0]), second = MakeRegion(contours[1]);
  ZBR_REGION_OPTIONS options;
  options.sources = true;
  options.canonical = true;
  std::array<ZBR_REGION, kOperations.size()> regions;
  zbrCombineRegions(first.rings.view(), second.rings.view(), kOperations.data(), regions.data(), regions.size(), options);
  Combined combined;
  for (ZBR_REGION& region : regions) {
    combined.results.push_back(Traced(std::move(region), {&first, &second}));
    std::size_t beside = 0;
    combined.outlines.push_back(OutlinesOf(combined.results.back(), &beside));
    combined.beside += beside;
  }
  return combined;
}

int Scaled(int count) {
  const char* const scale = std::getenv("ZBR_TEST_SCALE");
  return scale != nullptr ? std::max(1, static_cast<int>(count * std::atof(scale))) : count;
}

TEST(Arcs, RandomDrawings_AreasOfTrueCurves_EveryArcAnInput) {
  const int count = Scaled(60);
  double worst = 0.0;
  std::size_t arcs = 0;
  for (int i = 0; i < count; ++i) {
    SCOPED_TRACE("seed " + std::to_string(i));
    Random random(static_cast<unsigned>(i));
    const Drawing a = random.Contours(2), b = random.Contours(2);
    const std::array<double, 5> areas = TrueAreas(a, b);
    const Combined combined = Combine(a, b);
    EXPECT_EQ(combined.beside, 0U);
    for (std::size_t o = 0; o < kOperations.size(); ++o) {
      worst = std::max(worst, std::abs(combined.results[o].Area() - areas[o]) / (kSize * kSize));
      EXPECT_NEAR(combined.results[o].Area(), areas[o], 1e-9 * kSize * kSize) << "operation " << o;
      ExpectArcs(combined.outlines[o], {&a, &b});
      for (const Path& path : combined.outlines[o]) arcs += path.curves.size();
    }
  }
  EXPECT_GT(arcs, static_cast<std::size_t>(10 * count));
  RecordProperty("worst", std::to_string(worst));
  if (std::getenv("ZBR_TEST_SCALE") != nullptr)
    std::printf("%d drawings, %zu arcs, areas off by %.2g at most\n", count, arcs, worst);
}

std::array<std::size_t, 2> CountEdges(const std::vector<Path>& outlines) {
  std::array<std::size_t, 2> counts{};  // points, curves
  for (const Path& path : outlines) {
    counts[0] += path.points.size();
    counts[1] += path.curves.size();
  }
  return counts;
}

using Counts = std::array<std::size_t, 2>;

TEST(Arcs, NamedCases) {
  Drawing a, b;
  a.paths = {WholeCircle({0, 0}, 10)};
  b.paths = {WholeCircle({13, 1}, 7)};
  EXPECT_EQ(CountEdges(Combine(a, b).outlines[0]), (Counts{2, 2}));  // two arcs and nothing else

  b.paths = {WholeCircle({1, 2}, 3)};  // a hole that nothing cuts
  EXPECT_EQ(CountEdges(Combine(a, b).outlines[3]), (Counts{2, 2}));

  // Arcs along one circle, with other ends and a centre and radius that were computed from other points.
  Path half;
  half.closed = true;
  half.points = {a.paths[0].curves[0].At(0.3), a.paths[0].curves[0].At(2.9)};
  Bend(half, 0, 2.6);
  b.paths = {half};
  const Combined along = Combine(a, b);
  EXPECT_EQ(CountEdges(along.outlines[0]), (Counts{1, 1}));
  EXPECT_EQ(CountEdges(along.outlines[1]), (Counts{2, 1}));
  EXPECT_EQ(CountEdges(along.outlines[4]), (Counts{0, 0}));

  // A line that touches, and one that leaves the circle by less than the chords do.
  Path box;
  box.closed = true;
  box.points = {{-20, 10}, {20, 10}, {20, 30}, {-20, 30}};
  b.paths = {box};
  EXPECT_NEAR(Combine(a, b).results[1].Area(), 0.0, 1e-12);
  for (ZBR_PT& p : box.points) p -= ZBR_PT(0, 1e-6);
  b.paths = {box};
  const double half_ = std::acos(1 - 1e-7);  // of the cap's angle
  EXPECT_NEAR(Combine(a, b).results[1].Area(), 100 * (half_ - std::sin(2 * half_) / 2), 1e-15);
}

TEST(Arcs, MirroredHalvesAreNoRepeats) {
  Drawing drawing;
  drawing.joinsEnds = true;
  for (const double side : {1.0, -1.0}) {
    Path& half = drawing.paths.emplace_back();
    half.curves = {Circle({0, 0}, 5, 0, kPi)};
    half.curves[0].v.Set(0, 5 * side);
    half.points = {{5, 0}, {-5, 0}};
  }
  EXPECT_EQ(MakeContours(drawing, {1e-4, 1e-6}).rings.size(), 1U);
}

// Whole contours drawn again, from another vertex or in the other direction, go; others with the same vertices stay.
TEST(Arcs, ContoursThatRepeatOthersAreLeftOut) {
  std::vector<Path> paths;
  Path& plate = paths.emplace_back();
  plate.closed = true;
  plate.points = {{0, 0}, {10, 0}, {10, 4}, {0, 4}};
  plate.curves = {{1, {10, 2}, {0, -2}, {2, 0}, 0.0, kPi}};
  Path again = plate;
  std::rotate(again.points.begin(), again.points.begin() + 3, again.points.end());
  again.curves[0].at = 2;
  Path back = plate;
  std::reverse(back.points.begin(), back.points.end());
  std::swap(back.curves[0].t0, back.curves[0].t1);
  Path dented = plate;
  dented.curves[0] = {1, {10, 2}, {0, -2}, {-2, 0}, 0.0, kPi};
  Path straight = plate, open = plate;
  straight.curves.clear();
  open.closed = false;
  Path pin = plate;  // of another part, in a hole of this shape
  pin.layer = "PIN";
  paths.insert(paths.end(), {again, dented, straight, back, open, plate, straight, pin});
  EXPECT_EQ(DropRepeats(paths), 4U);
  ASSERT_EQ(paths.size(), 5U);
  EXPECT_LT(paths[1].curves[0].v.x(), 0.0);
  EXPECT_TRUE(paths[2].curves.empty());
  EXPECT_FALSE(paths[3].closed);
}

// A closed spline beside the pieces it was cut into, each with parameters of its own, some turned round: one region, with the same
// vertices, also where the spline crosses itself.
TEST(Arcs, PiecesOfSplinesAreTheirSpline) {
  for (unsigned seed = 0; seed < static_cast<unsigned>(Scaled(60)); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    Spline whole;
    whole.knots.assign(4, 0.0);
    for (int i = static_cast<int>(random.Between(4, 9)); i-- > 0;) {
      whole.control.push_back(random.Point());
      if (seed % 2 != 0) whole.weights.push_back(random.Between(0.5, 2));
    }
    whole.control.push_back(whole.control.front());
    if (seed % 2 != 0) whole.weights.push_back(1);
    while (whole.knots.size() < whole.control.size()) whole.knots.push_back(static_cast<double>(whole.knots.size()) - 3);
    whole.knots.resize(whole.control.size() + 4, whole.knots.back() + 1);
    const auto add = [](Path& path, Spline spline) {
      Curve& curve = path.curves.emplace_back();
      curve.at = path.points.size();
      curve.spline = std::make_shared<const Spline>(std::move(spline));
      curve.t0 = curve.spline->Start();
      curve.t1 = curve.spline->End();
      return &curve;
    };
    Drawing a, b;
    for (Drawing* const drawing : {&a, &b}) drawing->paths.emplace_back().closed = true;
    add(a.paths[0], whole);
    a.paths[0].points = {whole.control.front()};
    const std::array<double, 4> cuts = {0, whole.End() * random.Between(0.1, 0.5), whole.End() * random.Between(0.6, 0.9),
                                        whole.End()};
    for (std::size_t k = 1; k < cuts.size(); ++k) {
      const bool turned = random.Between(0, 1) < 0.5;
      Spline piece = turned ? Trimmed(whole, cuts[k], cuts[k - 1]) : Trimmed(whole, cuts[k - 1], cuts[k]);
      for (double& knot : piece.knots) knot = (knot - cuts[k - 1]) / (cuts[k] - cuts[k - 1]);
      Curve* const curve = add(b.paths[0], std::move(piece));
      if (turned) std::swap(curve->t0, curve->t1);
      b.paths[0].points.push_back(whole.At(cuts[k - 1]));
    }
    const Combined combined = Combine(a, b);
    EXPECT_GT(combined.results[1].Area(), 1.0);
    EXPECT_TRUE(combined.outlines[2].empty()) << combined.results[2].Area();
  }
}

// A parabola's arch over its chord, two thirds of the box, whatever its parameters are.
TEST(Arcs, SplinesHaveAnyParameters) {
  for (const auto& [start, end] : {std::pair(0.0, 1.0), std::pair(-5.0, 5.0), std::pair(100.0, 200.0), std::pair(-3.0, -1.0)}) {
    Spline spline;
    spline.degree = 2;
    spline.control = {{0, 0}, {5, 20}, {10, 0}};
    spline.knots = {start, start, start, end, end, end};
    Drawing drawing;
    Path& arch = drawing.paths.emplace_back();
    arch.points = {{0, 0}, {10, 0}};
    arch.curves.emplace_back().spline = std::make_shared<const Spline>(spline);
    arch.curves[0].t0 = start;
    arch.curves[0].t1 = end;
    arch.closed = true;
    const Contours contours = MakeContours(drawing, {1e-4, 0.0});
    ASSERT_EQ(contours.rings.size(), 1U) << start;
    ZBR_REGION region;
    region.AddRing(contours.rings[0].points);
    EXPECT_NEAR(std::abs(region.area()), 2.0 / 3.0 * 100.0, 1e-2) << start;
  }
}

TEST(Arcs, Ellipses_MeetOnTheTrueCurves) {
  Drawing a, b;
  a.paths = {WholeCircle({0, 0}, 10)};
  a.paths[0].curves[0].v.Set(0, 4);
  b.paths = {WholeCircle({3, 1}, 5)};
  b.paths[0].curves[0].u.Set(1, 7);
  b.paths[0].curves[0].v.Set(-3, 1);
  b.paths[0].points = {b.paths[0].curves[0].At(0)};
  const Combined combined = Combine(a, b);
  EXPECT_EQ(combined.beside, 0U);
  EXPECT_EQ(CountEdges(combined.outlines[1]), (Counts{4, 4}));
  EXPECT_NEAR(combined.results[0].Area() + combined.results[1].Area(), kPi * (40 + 1 * 1 + 7 * 3), 1e-9);
}

}  // namespace
