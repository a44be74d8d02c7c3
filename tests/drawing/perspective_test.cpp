// Views from an eye, against rays.

#include <zbr-drawing/failure.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "models/models.h"
#include "tests/drawing/drawn_lines.h"

namespace zbr::drawing {
namespace {

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

// Points of creases are on lines where the way to the eye is free, and only there.
TEST(Perspective, RaysToTheEyeAgree) {
  Mesh mesh = example::BoxesOnPlate(4);
  const Model model = MakeModel(mesh, 30.0);
  const ZBR_PT3 middle = model.Centre(), size = model.high - model.low;
  int seen = 0, unseen = 0, wrong = 0;
  for (const auto& [from, field] : {std::pair{ZBR_PT3(0.9, -1.1, 2.5), 0.0},
                                    {ZBR_PT3(-0.7, 0.4, 1.2), 0.0},
                                    {ZBR_PT3(0.2, 0.1, 0.55), 80.0},
                                    {ZBR_PT3(0.3, -0.45, 0.4), 60.0}}) {
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

// The rims of a drum, from aside, from above, and from so near that one reaches behind the eye; that one stays a chain.
TEST(Perspective, CirclesBeforeTheEyeAreEllipses) {
  constexpr double kRadius = 5.0, kHeight = 3.0;
  const Model model = MakeModel(example::Cylinder(64, kRadius, kHeight), 30.0);
  for (const auto& [from, at, rims] : {std::tuple{ZBR_PT3(12, -9, 8), ZBR_PT3(1, 0, 0), 2U},
                                       {ZBR_PT3(0, 0, 9), ZBR_PT3(0, 0, 0), 1U},
                                       {ZBR_PT3(0.3, 1, 30), ZBR_PT3(2, 3, 0), 1U},
                                       {ZBR_PT3(2, 0, 5), ZBR_PT3(9, 0, 2), 0U}}) {
    const ZBR_PT3 eye = from;  // a name that lambdas may use with clang before 16
    const View view = LookFrom(eye, at, {0.1, 1, 0.2});
    const ViewLines drawn = DrawViews(model, {{"eye", view}}, {}).front();
    std::size_t found = 0;
    for (const double z : {0.0, kHeight}) {
      const auto isSeenAs = [&](const CircleRun& run) {
        double off = 0.0;
        for (int k = 0; k < 100; ++k) {
          const ZBR_PT3 q = view.In(ZBR_PT3(kRadius * std::cos(k * 0.0628), kRadius * std::sin(k * 0.0628), z) - eye);
          const ZBR_PT p = q.xy() * (view.perspective->distance / -q.z()) - run.centre;
          off = std::max(
              off, std::abs(std::hypot(p.InnerProduct(run.u) / run.u.Length2(), p.InnerProduct(run.v) / run.v.Length2()) - 1));
        }
        return off < 1e-6;
      };
      const auto isOne = [&](const Line& line) {
        return std::any_of(line.chain.curves.begin(), line.chain.curves.end(), isSeenAs);
      };
      found += std::any_of(drawn.lines.begin(), drawn.lines.end(), isOne) ? 1 : 0;
    }
    EXPECT_EQ(found, rims);
    for (const Line& line : drawn.lines) {
      for (const CircleRun& run : line.chain.curves) {
        EXPECT_NEAR(run.At(run.t0).Distance(line.chain.points[run.at]), 0, 1e-6);
        EXPECT_NEAR(run.At(run.t1).Distance(line.chain.points[run.last]), 0, 1e-6);
      }
    }
  }
}

TEST(Perspective, EyesThatSeeNothing) {
  const Model model = MakeModel(example::Box({0, 0, 0}, {1, 1, 1}), 30.0);
  EXPECT_THROW(LookFrom({1, 1, 1}, {1, 1, 1}, {0, 0, 1}), Failure);
  EXPECT_THROW(LookFrom({1, 1, 1}, {0, 0, 0}, {0, 0, 1}, 171), Failure);
  EXPECT_THROW(DrawViews(model, {{"eye", LookFrom({5, 5, 5}, {9, 9, 8}, {0, 0, 1})}}, {}), Failure);  // away from it
  EXPECT_THROW(DrawView(model, "fron"), Failure);
  const ViewLines inside = DrawViews(model, {{"eye", LookFrom({0.5, 0.05, 0.5}, {0.5, 1, 0.5}, {0, 0, 1})}}, {}).front();
  EXPECT_FALSE(inside.lines.empty());
}

}  // namespace
}  // namespace zbr::drawing
