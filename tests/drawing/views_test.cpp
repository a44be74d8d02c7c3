// Views from an eye, against rays; centre lines.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

using example::Append;

// The least distance, as a part of the way, from where a triangle is met on the way from p to q to either end of it; 1 where none
// is. Grazing counts, as a negative distance: it is no one's business what is seen there.
double Clearance(const Mesh& mesh, const ZBR_PT3& p, const ZBR_PT3& q, bool& hidden) {
  constexpr double kGraze = 1e-4;
  double least = 1.0;
  const ZBR_PT3 way = q - p;
  for (const auto& t : mesh.triangles) {
    const ZBR_PT3 &a = mesh.points[t[0]], ab = mesh.points[t[1]] - a, ac = mesh.points[t[2]] - a;
    const ZBR_PT3 n = ab.OuterProduct(ac);
    const double along = n.InnerProduct(way);
    const double s = along == 0 ? HUGE_VAL : n.InnerProduct(a - p) / along;
    if (!(std::abs(s) < 2)) continue;
    const ZBR_PT3 at = p + way * s - a;
    const double v = ab.OuterProduct(at).InnerProduct(n) / n.Length2(), u = at.OuterProduct(ac).InnerProduct(n) / n.Length2();
    const double inside = std::min({u, v, 1 - u - v});
    if (inside < -kGraze || s > 1 || s < -kGraze) continue;
    if (std::abs(s) < kGraze) continue;  // the faces of the edge itself
    if (inside < kGraze) return -1.0;
    hidden = true;
    least = std::min(least, s);
  }
  return least;
}

double DistanceTo(const std::vector<Line>& lines, const ZBR_PT& p) {
  double least = HUGE_VAL;
  for (const Line& line : lines) {
    for (std::size_t i = 1; i < line.chain.points.size(); ++i) {
      const ZBR_PT &a = line.chain.points[i - 1], ab = line.chain.points[i] - a;
      const double t = std::clamp((p - a).InnerProduct(ab) / std::max(ab.Length2(), 1e-300), 0.0, 1.0);
      least = std::min(least, p.Distance(a + ab * t));
    }
  }
  return least;
}

// Points of creases are on lines where the way to the eye is free, and only there.
TEST(Perspective, RaysToTheEyeAgree) {
  Mesh mesh = example::BoxesOnPlate(4);
  const Model model = MakeModel(mesh, 30.0);
  const ZBR_PT3 middle = model.Centre(), size = model.high - model.low;
  int seen = 0, unseen = 0, wrong = 0;
  for (const auto& [from, field] : {std::pair{ZBR_PT3(0.9, -1.1, 2.5), 0.0},
                                    {ZBR_PT3(-0.7, 0.4, 1.2), 0.0},
                                    {ZBR_PT3(0.2, 0.1, 0.55), 80.0},
                                    {ZBR_PT3(0.3, -0.45, 0.4), 0.0}}) {
    const ZBR_PT3 eye(middle.x() + from.x() * size.x(), middle.y() + from.y() * size.y(), middle.z() + from.z() * size.z() * 1.7);
    const View view = LookFrom(eye, middle + ZBR_PT3(0.01, 0.02, 0) * size.x(), {0, 0, 1}, field);
    const ViewLines drawn = DrawViews(model, {{"eye", view}}, {}).front();
    const double tiny = 1e-5 * drawn.extent.Size(), distance = view.perspective->distance;
    const double reach = field > 0 ? distance * std::tan(field / 2 * 0.017453292519943295) : drawn.extent.Size();
    for (std::size_t s = 0; s < model.ShellCount(); ++s) {
      for (int e = 0; e < model.Shell(s).GetEdgeCnt(); ++e) {
        const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(e);
        if (!edge.GetShow()) continue;
        for (const double t : {0.137, 0.519, 0.871}) {
          const ZBR_PT3 p = edge.GetVertex0()->GetPt() * (1 - t) + edge.GetVertex1()->GetPt() * t;
          const ZBR_PT3 q = view.In(p - eye);
          const ZBR_PT at(q.x() * distance / -q.z(), q.y() * distance / -q.z());
          if (-q.z() < 2 * view.perspective->Nearest() || std::max(std::abs(at.x()), std::abs(at.y())) > 0.99 * reach) continue;
          bool hidden = false;
          if (Clearance(mesh, p, eye, hidden) < 0.01) continue;
          ++(hidden ? unseen : seen);
          const double off = DistanceTo(drawn.lines, at);
          wrong += (hidden ? off < tiny : off > tiny) ? 1 : 0;
        }
      }
    }
  }
  EXPECT_GT(seen, 200);
  EXPECT_GT(unseen, 100);
  EXPECT_LE(wrong, unseen / 100);  // what is hidden may lie under a line that is not
}

TEST(Perspective, EyesThatSeeNothing) {
  const Model model = MakeModel(example::Box({0, 0, 0}, {1, 1, 1}), 30.0);
  EXPECT_THROW(LookFrom({1, 1, 1}, {1, 1, 1}, {0, 0, 1}), Failure);
  EXPECT_THROW(LookFrom({1, 1, 1}, {0, 0, 0}, {0, 0, 1}, 171), Failure);
  EXPECT_THROW(DrawViews(model, {{"eye", LookFrom({5, 5, 5}, {9, 9, 8}, {0, 0, 1})}}, {}), Failure);  // away from it
  const ViewLines inside = DrawViews(model, {{"eye", LookFrom({0.5, 0.4, 0.5}, {0.5, 1, 0.5}, {0, 0, 1})}}, {}).front();
  EXPECT_FALSE(inside.lines.empty());
}

// A plate with a bore, four holes of which one is blind, and rounded corners.
TEST(CentreLines, OfHolesAndBores) {
  example::Solid plate;
  plate.Extrude(example::Axis::kZ, example::RoundedRectangle(-30, -20, 30, 20, 5, 8), 0, 6);
  plate.Drill(example::Axis::kZ, example::Circle(0, 0, 9, 60), 0, 6);
  for (const double x : {-24.0, 24.0}) plate.Drill(example::Axis::kZ, example::Circle(x, 14, 3, 32), 0, 6);
  plate.Drill(example::Axis::kZ, example::Circle(24, -14, 3, 32), 2, 6);
  const Model model = MakeModel(plate.Take(), 30.0);
  DrawingOptions options;
  options.centreLines = true;
  std::vector<ViewLines> views =
      DrawViews(model, {{"top", *NamedView("top")}, {"front", *NamedView("front")}, {"iso", *NamedView("iso")}}, options);
  EXPECT_EQ(views[0].centres.marks.size(), 4U);
  EXPECT_TRUE(views[0].centres.axes.empty());
  const auto bore = std::max_element(views[0].centres.marks.begin(), views[0].centres.marks.end(),
                                     [](const CentreMark& a, const CentreMark& b) { return a.radius < b.radius; });
  EXPECT_NEAR(bore->radius, 9, 1e-5);
  EXPECT_NEAR(bore->centre.Distance(ZBR_PT(0, 0)), 0, 1e-5);
  ASSERT_EQ(views[1].centres.axes.size(), 3U);
  for (const CentreAxis& axis : views[1].centres.axes) EXPECT_NEAR(axis.from.Distance(axis.to), 6, 1e-5);
  EXPECT_TRUE(views[2].centres.marks.empty() && views[2].centres.axes.empty());
  options.hidden = HiddenLines::kNone;  // then what is not seen has no axis
  EXPECT_TRUE(DrawViews(model, {{"front", *NamedView("front")}}, options).front().centres.axes.empty());
  const Sheet sheet = LayOut(std::move(views), {});
  std::size_t lines = 0;
  for (const PlacedView& view : sheet.views)
    lines += static_cast<std::size_t>(std::count_if(view.lines.lines.begin(), view.lines.lines.end(),
                                                    [](const Line& line) { return line.edgeClass == EdgeClass::kCentre; }));
  EXPECT_EQ(lines, 4U * 2 + 3);
}

}  // namespace
}  // namespace zbr::drawing
