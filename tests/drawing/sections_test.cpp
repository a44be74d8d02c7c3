// Sections: areas of cut faces, what touches, what is open; the view behind them; hatching.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/section.h>
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <tuple>

#include "drawing/sections/join_contours.h"
#include "drawing/sections/simple_ring.h"
#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

using example::Append;
using example::Box;
using std::numbers::pi;

Mesh Both(Mesh a, const Mesh& b) {
  Append(a, b);
  return a;
}

Mesh TurnedInsideOut(Mesh mesh) {
  for (auto& t : mesh.triangles) std::swap(t[0], t[1]);
  return mesh;
}

SectionCut CutOf(const Mesh& mesh, const SectionPlane& plane) {
  return FindSection(MakeModel(mesh, 30.0), SectionView(plane), plane);
}

double AreaOf(const SectionCut& cut) {
  double area = 0.0;
  for (const SectionFace& face : cut.faces) area += face.region.area();
  return area;
}

double AreaOf(const Mesh& mesh, const std::string& plane) {
  return AreaOf(CutOf(mesh, ParseSection(plane)));
}

// Stars, some of which do not go round their middle, points on a coarse grid, and squares with points along their sides, turned.
TEST(Sections, SimpleRingsAreTheRegionsMadeOfThem) {
  std::mt19937 engine(1);
  const auto part = [&] { return std::uniform_real_distribution<double>(0, 1)(engine); };
  int taken = 0;
  for (int i = 0; i < 6000; ++i) {
    std::vector<ZBR_PT> ring;
    const double scale = std::pow(10.0, i % 9 - 4), turn = 2 * pi * part();
    const int n = 3 + static_cast<int>(20 * part());
    for (int k = 0; k < n; ++k) {
      const double t = (k + part()) / n, angle = 2 * pi * t, along = std::floor(32 * t) / 4;
      const ZBR_PT onSquare(std::clamp(std::abs(along - 4) - 2, -1.0, 1.0), std::clamp(2 - std::abs(along - 2), -1.0, 1.0));
      ring.push_back(i % 3 == 0   ? ZBR_PT(std::cos(angle), std::sin(angle)) * (1 + 2 * part())
                     : i % 3 == 1 ? ZBR_PT(std::floor(6 * part()), std::floor(6 * part()))
                                  : ZBR_PT(onSquare.x() * std::cos(turn) - onSquare.y() * std::sin(turn),
                                           onSquare.x() * std::sin(turn) + onSquare.y() * std::cos(turn)) *
                                        scale);
    }
    if (i % 5 == 0) std::reverse(ring.begin(), ring.end());
    ZBR_REGION rings, made, simple;
    rings.AddRing(ring, true);
    ZBR_REGION_OPTIONS options;
    options.fill_a = i % 2 == 0 ? ZBR_FILL_NON_ZERO : ZBR_FILL_EVEN_ODD;
    if (!SetSimpleRegion(ring, simple)) continue;
    zbrMakeValidRegion(rings.view(), made, options);
    ASSERT_EQ(simple, made) << i;
    ++taken;
  }
  EXPECT_GT(taken, 2000);
}

TEST(Sections, AreasOfSimpleBodies) {
  const Mesh box = Box({-1, -2, -3}, {3, 2, 1});
  EXPECT_DOUBLE_EQ(AreaOf(box, "X=0.3"), 16.0);
  EXPECT_DOUBLE_EQ(AreaOf(box, "Z=-2.7..0"), 16.0);
  EXPECT_NEAR(AreaOf(box, "3,3,0=0"), 4 * 3 * std::sqrt(2.0), 1e-12);  // from (-1, 1) to (2, -2)
  constexpr int kSides = 90;
  const Mesh cylinder = example::Cylinder(kSides, 5, 8);
  // Its points are rounded to a millionth.
  EXPECT_NEAR(AreaOf(cylinder, "Z=3"), kSides / 2.0 * 25 * std::sin(2 * pi / kSides), 1e-5);
  EXPECT_NEAR(AreaOf(cylinder, "0,3,4=3"), 1.25 * kSides / 2.0 * 25 * std::sin(2 * pi / kSides), 1e-5);
  const Mesh torus = example::Torus(80000);
  EXPECT_NEAR(AreaOf(torus, "Z=0.01"), pi * (1.4 * 1.4 - 0.6 * 0.6), 0.01);
  EXPECT_NEAR(AreaOf(torus, "X=0.001"), 2 * pi * 0.16, 0.002);
}

// A plane that lies in a face cuts what goes on behind it.
TEST(Sections, FacesInThePlane) {
  const Mesh low = Box({0, 0, 0}, {4, 4, 2}), high = Box({1, 1, 2}, {3, 3, 5});
  for (const char* const plane : {"Z=0", "Z=2", "Z=5", "Y=0", "X=4"}) EXPECT_EQ(AreaOf(low, plane), 0.0) << plane;
  EXPECT_EQ(AreaOf(Both(low, high), "Z=2"), 0.0);  // in contact
  example::Solid step;
  step.Stack(example::Axis::kZ, {0, 2, 5}, {example::Rectangle(0, 0, 4, 4), example::Rectangle(1, 1, 3, 3)});
  const SectionCut cut = CutOf(step.Take(), ParseSection("Z=2"));
  ASSERT_EQ(cut.faces.size(), 1U);
  EXPECT_NEAR(cut.faces[0].region.area(), 4.0, 1e-12);
  EXPECT_NEAR(cut.covers[0].area(), 16.0, 1e-12);
  double border = 0.0;
  for (const SectionLine& line : cut.lines) {
    for (std::size_t i = 1; !line.isCut && i < line.points.size(); ++i) border += line.points[i].Distance(line.points[i - 1]);
  }
  EXPECT_NEAR(border, 16.0, 1e-12);  // of the step's face
}

TEST(Sections, HollowsInvertedBodiesAndOpenOnes) {
  const Mesh outer = Box({0, 0, 0}, {6, 6, 6}), inner = Box({1, 1, 1}, {5, 4, 5});
  EXPECT_DOUBLE_EQ(AreaOf(Both(outer, TurnedInsideOut(inner)), "Z=2"), 36.0 - 12.0);
  EXPECT_DOUBLE_EQ(AreaOf(TurnedInsideOut(outer), "Z=2"), 36.0);
  // A body within the hollow that nearly fills it.
  const Mesh core = Box({1.1, 1.1, 1.1}, {4.9, 3.9, 4.9});
  EXPECT_NEAR(AreaOf(Both(Both(outer, TurnedInsideOut(inner)), core), "Z=2"), 36.0 - 12.0 + 3.8 * 2.8, 1e-12);
  // A bar through the wall reaches into the hollow, which is still the outer body's.
  const Mesh bar = Box({-9, 2, 1.5}, {1.5, 3.5, 3});
  EXPECT_NEAR(AreaOf(Both(Both(outer, bar), TurnedInsideOut(inner)), "Z=2"), 36.0 - 12.0 + 15.75, 1e-12);
  for (const Mesh& hollow : {Both(outer, TurnedInsideOut(inner)), Both(TurnedInsideOut(inner), outer)}) {
    for (const SectionLine& line : CutOf(hollow, ParseSection("Z=2")).lines) EXPECT_EQ(line.triangles.size(), 8U);
  }
  // Bodies in one place have their own triangles; a mesh that ends in a vertex in the plane is not cut.
  Mesh twice = Both(outer, TurnedInsideOut(inner));
  twice.objects = {{0, 0}, {static_cast<std::uint32_t>(twice.points.size()), static_cast<std::uint32_t>(twice.triangles.size())}};
  Append(twice, outer);
  for (const SectionLine& line : CutOf(twice, ParseSection("Z=2")).lines) {
    for (const std::uint32_t t : line.triangles) EXPECT_EQ(line.shell < 2, t < 24) << line.shell;
  }
  Mesh tip;
  tip.points = {{0, 0, 0}, {1, 0, 3}, {0, 1, 3}};
  tip.triangles = {{0, 1, 2}};
  for (const char* const plane : {"0,0,1=0", "0,0,-1=0"}) {
    const SectionCut cut = CutOf(tip, ParseSection(plane));
    EXPECT_EQ(cut.bridged + cut.openLines + cut.lines.size(), 0U) << plane;
  }
  Mesh tube = outer;
  const auto isFront = [&](const std::array<std::uint32_t, 3>& t) {
    return std::all_of(t.begin(), t.end(), [&](std::uint32_t p) { return tube.points[p].y() == 0; });
  };
  ASSERT_EQ(std::erase_if(tube.triangles, isFront), 2U);
  const SectionCut open = CutOf(tube, ParseSection("Z=2"));
  EXPECT_EQ(open.openLines, 1U);
  EXPECT_TRUE(open.faces.empty());
  ASSERT_EQ(open.lines.size(), 1U);
  EXPECT_EQ(open.lines[0].points.size(), 4U);
  // A crack that is nothing on paper closes.
  Mesh cracked = outer;
  for (std::uint32_t& p : cracked.triangles[0]) {
    cracked.points.push_back(cracked.points[p] + ZBR_PT3(1e-5, 1e-5, 1e-5));
    p = static_cast<std::uint32_t>(cracked.points.size() - 1);
  }
  for (const char* const plane : {"X=2.5", "Y=2.5", "Z=2.5"}) EXPECT_NEAR(AreaOf(cracked, plane), 36.0, 1e-3) << plane;
}

// Whatever rounding of its corners to single precision makes of a face, it is cut as one in the plane: as just below it.
TEST(Sections, FacesNearlyInThePlane) {
  example::Solid step;
  step.Stack(example::Axis::kZ, {0, 2, 5}, {example::Rectangle(0, 0, 4, 4), example::Rectangle(1, 1, 3, 3)});
  const Mesh straight = step.Take();
  for (int k = 1; k < 40; ++k) {
    Mesh mesh = straight, up;
    up.points = {{0, 0, 1}};
    for (Mesh* const turned : {&mesh, &up}) example::Turn(*turned, {1, 0.3, -0.2}, 0.02 * k);
    for (ZBR_PT3& p : mesh.points) p.Set(static_cast<float>(p.x()), static_cast<float>(p.y()), static_cast<float>(p.z()));
    SectionPlane plane;
    plane.normal = up.points[0];
    plane.offset = 2;
    const SectionCut cut = CutOf(mesh, plane);
    ASSERT_EQ(cut.faces.size(), 1U) << k;
    EXPECT_NEAR(cut.faces[0].region.area(), 4.0, 1e-5) << k;
    EXPECT_NEAR(cut.covers[0].area(), 16.0, 1e-5) << k;
  }
}

// Upright sheets along a square's sides, with slits between them: as wide as those that are closed, or an opening of a scan.
TEST(Sections, SlitsAndOpenings) {
  const double gap = 1e-4 * std::sqrt(3.0);
  const auto cut = [](const std::vector<std::array<ZBR_PT, 2>>& sheets) {
    Mesh mesh;
    for (const auto& [a, b] : sheets) {
      const auto n = static_cast<std::uint32_t>(mesh.points.size());
      mesh.points.insert(mesh.points.end(), {{a.x(), a.y(), 0}, {b.x(), b.y(), 0}, {b.x(), b.y(), 1}, {a.x(), a.y(), 1}});
      mesh.triangles.insert(mesh.triangles.end(), {{n, n + 1, n + 2}, {n, n + 2, n + 3}});
    }
    return CutOf(mesh, ParseSection("Z=0.3"));
  };
  const std::array<ZBR_PT, 2> low{ZBR_PT(0, 0), ZBR_PT(1, 0)}, high{ZBR_PT(1, 1), ZBR_PT(0, 1)}, left{ZBR_PT(0, 1), ZBR_PT(0, 0)};
  const auto right = [](double from, double to) { return std::array{ZBR_PT(1, from), ZBR_PT(1, to)}; };
  // A sliver between two slits is shorter than these.
  const SectionCut closed = cut({low, right(0, 0.5), right(0.5 + 0.8 * gap, 0.5 + gap), right(0.5 + 1.8 * gap, 1), high, left});
  const SectionCut bridged = cut({low, right(0, 0.5), right(0.8, 1), high, left}), open = cut({low, right(0, 0.5), high, left});
  EXPECT_EQ(std::tuple(closed.openLines, closed.bridged, bridged.openLines, bridged.bridged), std::tuple(0U, 0U, 0U, 1U));
  EXPECT_EQ(std::tuple(open.openLines, open.bridged, AreaOf(open)), std::tuple(1U, 0U, 0.0));
  EXPECT_NEAR(AreaOf(closed), 1.0, 1e-12);
  EXPECT_NEAR(AreaOf(bridged), 1.0, 1e-12);
}

// A square in two halves.
TEST(Sections, OpeningsOfOneShellAreBridgedTogether) {
  for (const double opening : {0.15, 0.25}) {  // two of them, which may be a tenth of the rest together
    for (const std::uint32_t shell : {0U, 1U}) {
      SeenContour low, high;
      low.points = {{0, 0.4}, {0, 0}, {1, 0}, {1, 0.4}};
      high.points = {{0, 0.4 + opening}, {0, 1}, {1, 1}, {1, 0.4 + opening}};
      low.triangles = high.triangles = {0, 1, 2};
      high.shell = shell;
      const std::vector<SeenContour> joined = JoinContours({low, high}, 0.01);
      const bool isBridged = opening < 0.2 && shell == 0;
      ASSERT_EQ(joined.size(), isBridged ? 1U : 2U) << opening << " " << shell;
      EXPECT_EQ(std::pair(joined[0].closed, joined[0].bridged), std::pair(isBridged, isBridged));
      if (!isBridged) continue;
      EXPECT_EQ(joined[0].points.size(), 8U);
      EXPECT_EQ(joined[0].triangles.size(), 8U);
      for (std::size_t k = 0; k < 8; ++k) EXPECT_LE(joined[0].points[k].Distance(joined[0].points[(k + 1) % 8]), 1.0);
    }
  }
}

TEST(Sections, OpenContoursAreJoinedAtTheNearestEnds) {
  const auto contour = [](const ZBR_PT& from, const ZBR_PT& to) { return SeenContour{{from, to}, {0}, 0, false, false}; };
  std::vector<SeenContour> open = {contour({0, 0}, {1, 0}), contour({1, 0.9}, {1, 5}), contour({1.2, 0}, {5, 0})};
  do {
    std::vector<std::size_t> sizes;
    for (const SeenContour& joined : JoinContours(open, 1.0)) {
      sizes.push_back(joined.points.size());
      EXPECT_EQ(sizes.back() == 2, std::max(joined.points.front().y(), joined.points.back().y()) == 5);
    }
    std::sort(sizes.begin(), sizes.end());
    EXPECT_EQ(sizes, (std::vector<std::size_t>{2, 4}));
    std::rotate(open.begin(), open.begin() + 1, open.end());
  } while (open[0].points[0].x() != 0);
}

// Whether a place lies in the body, by the crossings of a ray in a direction that meets no edge.
bool IsInside(const Mesh& mesh, const ZBR_PT3& p) {
  const ZBR_PT3 direction(0.5234178, 0.3189245, 0.7900412);
  int crossings = 0;
  for (const auto& t : mesh.triangles) {
    const ZBR_PT3 a = mesh.points[t[0]] - p, b = mesh.points[t[1]] - p, c = mesh.points[t[2]] - p;
    const double ab = direction.InnerProduct(a.OuterProduct(b)), bc = direction.InnerProduct(b.OuterProduct(c)),
                 ca = direction.InnerProduct(c.OuterProduct(a));
    if (!((ab > 0 && bc > 0 && ca > 0) || (ab < 0 && bc < 0 && ca < 0))) continue;
    if ((a * bc + b * ca + c * ab).InnerProduct(direction) / (ab + bc + ca) > 0) ++crossings;
  }
  return crossings % 2 == 1;
}

bool IsInside(const ZBR_REGION& region, const ZBR_PT& p) {
  bool inside = false;
  for (std::size_t r = 0; r < region.ring_count(); ++r) {
    const auto begin = static_cast<std::size_t>(region.ring_offsets()[r]),
               end = static_cast<std::size_t>(region.ring_offsets()[r + 1]);
    for (std::size_t i = begin; i < end; ++i) {
      const ZBR_PT &a = region.points()[i], &b = region.points()[i + 1 < end ? i + 1 : begin];
      if ((a.y() > p.y()) == (b.y() > p.y())) continue;
      if (p.x() < a.x() + (b.x() - a.x()) * ((p.y() - a.y()) / (b.y() - a.y()))) inside = !inside;
    }
  }
  return inside;
}

bool IsInside(const std::vector<SectionFace>& faces, const ZBR_PT& p) {
  return std::any_of(faces.begin(), faces.end(), [&](const SectionFace& face) { return IsInside(face.region, p); });
}

TEST(Sections, SamplesOfTheHousingAgree) {
  const Mesh mesh = example::Housing();
  const Model model = MakeModel(mesh, 30.0);
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(-1, 1);
  int inside = 0, wrong = 0;
  for (int k = 0; k < 12; ++k) {
    SectionPlane plane;  // some along axes, through faces and axes of holes
    plane.normal = k < 3 ? ZBR_PT3(k == 0, k == 1, k == 2) : ZBR_PT3(unit(random), unit(random), unit(random));
    plane.normal = plane.normal * (1.0 / plane.normal.Length());
    plane.offset = plane.normal.InnerProduct(model.Centre()) + (k < 3 ? 0 : 30 * unit(random));
    const View view = SectionView(plane);
    const SectionCut cut = FindSection(model, view, plane);
    EXPECT_EQ(cut.openLines, 0U);
    const ZBR_PT3 middle = view.In(model.Centre());
    for (int i = 0; i < 100; ++i) {
      const ZBR_PT p(80 * unit(random), 80 * unit(random));
      const bool isInside = IsInside(mesh, view.Out(ZBR_PT3(p.x() + middle.x(), p.y() + middle.y(), plane.offset)));
      inside += isInside ? 1 : 0;
      wrong += isInside != IsInside(cut.faces, p) ? 1 : 0;
    }
  }
  EXPECT_GT(inside, 100);
  EXPECT_EQ(wrong, 0);
}

ViewLines Draw(const Mesh& mesh, const std::string& section, const View& view) {
  const auto plane = section.empty() ? std::nullopt : std::optional(ParseSection(section));
  return DrawViews(MakeModel(mesh, 30.0), {{"A-A", view, plane}}, {}).front();
}

// What is cut looks like what ends there.
TEST(Sections, ViewsAreThoseOfBodiesThatEndThere) {
  const auto scene = [](double end) {
    example::Solid part;
    part.Extrude(example::Axis::kX, example::Minus(example::Rectangle(0, 0, 8, 6), example::Circle(4, 3, 2, 24)), -5,
                 std::min(end, 4.0));
    Mesh mesh = part.Take();
    Mesh peg = example::Cylinder(32, 1, 5);
    example::Move(peg, {std::min(end, 0.0) - 4, 11, 1});
    Append(mesh, peg);
    Append(mesh, Box({-6, -3, -1}, {end, 14, 0}));
    Append(mesh, Box({-6, -1, 0}, {-3, 1, 9}));
    return mesh;
  };
  const View right = *NamedView("right");
  EXPECT_NEAR(Draw(scene(9), "X=2", right).VisibleLength(), Draw(scene(2), "", right).VisibleLength(), 1e-4);
  const ViewLines slab = Draw(scene(9), "X=-2..2", right);
  EXPECT_LT(slab.VisibleLength(), Draw(scene(2), "", right).VisibleLength() - 10);  // the far box and the peg are gone
  for (const Line& line : Draw(scene(9), "X=2", right).lines) EXPECT_FALSE(line.hidden);
}

TEST(Sections, AreSeenAlongTheirNormals) {
  const Model model = MakeModel(Box({0, 0, 0}, {3, 2, 1}), 30.0);
  const SectionPlane plane = ParseSection("X=1");
  const View along = SectionView(plane), beside = *NamedView("front"), near = LookFrom({9, 1, 0.5}, {0, 1, 0.5}, {0, 0, 1});
  EXPECT_FALSE(DrawViews(model, {{"A-A", along, plane}}).front().section->faces.empty());
  for (const View& view : {beside, near}) EXPECT_THROW(DrawViews(model, {{"A-A", view, plane}}), Failure);
  SectionPlane none = plane;
  none.offset = std::nan("");
  EXPECT_THROW(DrawViews(model, {{"A-A", along, none}}), Failure);
}

// Boxes beside each other, one of them on a plate; as they are, and in single precision at a slant.
TEST(Sections, OutlinesInCommonAreDrawnOnce) {
  Mesh mesh = Box({0, 0, 0}, {10, 5, 10});
  Append(mesh, Box({10, -1, 2}, {20, 4, 6}));
  Append(mesh, Box({-5, -5, -3}, {25, 9, 0}));
  struct Expected {
    std::size_t points;
    double length;
  };
  const Expected expected[] = {{5, 40.0}, {4, 28.0 - 4.0}, {6, 66.0 - 10.0}};
  for (const bool turned : {false, true}) {
    if (turned) example::Turn(mesh, {0, 1, 0}, 0.3);
    for (ZBR_PT3& p : mesh.points) {
      const auto rounded = [](double x) { return static_cast<double>(static_cast<float>(x)); };
      p.Set(rounded(p.x()), p.y(), rounded(p.z()));
    }
    std::size_t found = 0;
    for (const Line& line : Draw(mesh, "Y=2", SectionView(ParseSection("Y=2"))).lines) {
      if (line.edgeClass != EdgeClass::kCut) continue;
      ASSERT_LT(found, 3U);
      EXPECT_FALSE(line.chain.edges.empty());
      EXPECT_EQ(line.chain.points.size(), expected[found].points);
      double length = 0.0;
      for (std::size_t i = 1; i < line.chain.points.size(); ++i) length += line.chain.points[i].Distance(line.chain.points[i - 1]);
      EXPECT_NEAR(length, expected[found++].length, 1e-4);
    }
    EXPECT_EQ(found, 3U);
  }
}

TEST(Sections, HatchingFillsFacesAndTellsBodiesApart) {
  Mesh mesh = example::Housing();
  Append(mesh, Box({90, -40, 0}, {120, 40, 60}));  // in contact with it
  const SectionPlane plane = ParseSection("Y=3");
  const Model model = MakeModel(mesh, 30.0);
  const Sheet sheet = LayOut(DrawViews(model, {{"A-A", SectionView(plane), plane}}, {}), {});
  const ViewLines& view = sheet.views[0].lines;
  ASSERT_EQ(view.section->faces.size(), 2U);
  double angles[2] = {0, 0};
  for (std::size_t k = 0; k < 2; ++k) {
    const SectionFace& face = view.section->faces[k];
    double length = 0.0, spacing = HUGE_VAL, last = HUGE_VAL;
    for (const Line& line : view.lines) {
      if (line.edgeClass != EdgeClass::kHatching || line.shell != face.shell) continue;
      const ZBR_PT a = line.chain.points[0], b = line.chain.points[1], along = (b - a) * (1.0 / b.Distance(a));
      EXPECT_TRUE(IsInside(face.region, (a + b) * 0.5));
      angles[k] = std::fmod(std::atan2(along.y(), along.x()) + pi, pi);
      const double at = std::abs(along.OuterProduct(a));
      if (std::abs(at - last) > 1e-6) spacing = std::min(spacing, std::abs(at - last));
      last = at;
      length += a.Distance(b);
    }
    EXPECT_NEAR(length * spacing, face.region.area(), 0.02 * face.region.area());
  }
  EXPECT_GT(std::abs(angles[0] - angles[1]), 0.1);
}

TEST(Sections, LettersOfSectionsDrawnApart) {
  const Model model = MakeModel(Box({0, 0, 0}, {4, 5, 6}), 30.0);
  std::vector<ViewLines> views;
  for (const char* const text : {"X=1", "Y=2", "X=3"}) {
    const SectionPlane plane = ParseSection(text);
    views.push_back(DrawViews(model, {{views.size() == 2 ? "B-B" : "A-A", SectionView(plane), plane}}, {}).front());
  }
  std::string names;
  for (const PlacedView& view : LayOut(std::move(views), {}).views) names += view.lines.name + view.lines.section->letter;
  EXPECT_EQ(names, "A-AAC-CCB-BB");
}

// Planes a hair apart, crossing at a corner, and seen from opposite sides; and more of them than there is room for.
TEST(Sections, LettersOfNearPlanesStandApart) {
  const Model model = MakeModel(Box({0, 0, 0}, {40, 50, 60}), 30.0);
  const auto lettersOf = [&model](const std::vector<std::string>& planes, const char* paper) {
    std::vector<NamedDirection> views = {{"front", *NamedView("front")}, {"top", *NamedView("top")}};
    for (const std::string& text : planes) {
      const SectionPlane plane = ParseSection(text);
      views.push_back({SectionName(views.size() - 2), SectionView(plane), plane});
    }
    SheetOptions options;
    options.projection = Projection::kFirst;
    options.paper = ParsePaper(paper);
    std::vector<ZBR_PT> letters;
    for (const SheetText& text : LayOut(DrawViews(model, views, {}), options).texts) {
      if (text.text.size() == 1 && text.height == 5.0) letters.push_back(text.at);
    }
    return letters;
  };
  const std::vector<ZBR_PT> letters = lettersOf({"X=20", "X=20.5", "Z=59", "X=39", "-1,0,0=-21", "Y=20", "Y=20"}, "A1");
  EXPECT_EQ(letters.size(), 14U);
  for (std::size_t i = 0; i < letters.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      const ZBR_PT apart = letters[i] - letters[k];
      EXPECT_TRUE(std::abs(apart.x()) > 4 || std::abs(apart.y()) > 5.5) << i << ' ' << k;
    }
  }
  EXPECT_EQ(lettersOf(std::vector<std::string>(8, "X=20"), "A3").size(), 16U);
}

TEST(Sections, PlanesAsText) {
  for (const char* const text :
       {"", "X", "W=1", "X=", "X=a", "1,2=3", "0,0,0=1", "X=1..", "X=1..1", "1,2,3,4=5", "X=nan", "1,,2=3"})
    EXPECT_THROW(ParseSection(text), Failure) << text;
  EXPECT_EQ(ParseSection("y=2").HeightOf({0, 2, 0}), 0.0);
  EXPECT_LT(ParseSection("Y=2").HeightOf({0, 3, 0}), 0.0);  // from the front
  EXPECT_EQ(ParseSection("Y=2..5").HeightOf({0, 2, 0}), 0.0);
  EXPECT_EQ(ParseSection("Y=2..5").depth, 3.0);
  EXPECT_NEAR(ParseSection("3,0,4=5").HeightOf({3, 7, 4}), 0.0, 1e-15);
}

}  // namespace
}  // namespace zbr::drawing
