// Hidden chords that stand for an arc of which another body's line is there.
#include "drawing/curves/doubled_curves.h"

#include <zbr-drawing/circles.h>
#include <zbr-drawing/trigonometry.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "models/models.h"
#include "models/solid.h"

namespace zbr::drawing {
namespace {

constexpr double kNear = 0.6;  // in the scene, of ends: lines may go as far beyond as a line is wide

// Angles on a rim, from the first to the second.
struct Arc {
  double from, to;
  bool Holds(double angle) const { return from < angle && angle < to; }
};

// Parts of chords of a regular polygon on the rim.
class Rim {
 public:
  Rim(const Scene& scene, const Circle& circle) : scene_(scene), circle_(circle) {}

  CurvedStretch ChordOf(int sides, double start, const Arc& part, std::uint32_t shell) const {
    const double step = kFullTurn / sides;
    CurvedStretch stretch;
    stretch.segment = {OnChord(start, step, part.from), OnChord(start, step, part.to)};
    stretch.shell = shell;
    stretch.circle = 0;
    stretch.height = circle_.radius * scene_.scale * (1.0 - Cos(step / 2));
    return stretch;
  }

  ZBR_PT At(double angle) const {
    return scene_.FromModel(circle_.centre + ZBR_PT3(Cos(angle), Sin(angle), 0) * circle_.radius).xy();
  }

 private:
  ZBR_PT OnChord(double start, double step, double angle) const {
    const double reach = circle_.radius * Cos(step / 2) / Cos(angle - start - step / 2);
    return scene_.FromModel(circle_.centre + ZBR_PT3(Cos(angle), Sin(angle), 0) * reach).xy();
  }
  const Scene& scene_;
  const Circle& circle_;
};

// Rims of random division, of which parts are seen and parts hidden, one behind the other as drawings have them: where an arc was
// drawn it still is, and where a line stays no earlier one of another body is. Seen from above, at a slant, and almost from the
// side, where the nearer and the farther half of the rim are closer to each other than chords are to their arcs.
TEST(DoubledCurves, EachArcKeepsOneOfItsChords) {
  const Model model = MakeModel(example::Cylinder(48, 20.0, 5.0), 30.0);
  const Circles circles = FindCircles(model);
  std::mt19937 random(7);
  const auto number = [&](double from, double to) { return from + (to - from) * static_cast<double>(random() % 1000) / 1000.0; };
  std::size_t gone = 0, looked = 0;
  for (int round = 0; round < 30; ++round) {
    const ZBR_PT3 along = round % 3 == 0 ? ZBR_PT3(0, 0, -1) : ZBR_PT3(1, 2, round % 3 == 1 ? -2 : -0.4);
    const Scene scene = MakeScene(model, LookAlong(along, {1, 0, 0}));
    const Rim rim(scene, circles.all[0]);
    const ZBR_PT centre = scene.FromModel(circles.all[0].centre).xy();
    std::vector<CurvedStretch> visible, hidden;
    std::vector<Arc> visibleArcs, hiddenArcs;
    for (std::uint32_t shell = 0; shell < 3; ++shell) {
      const int sides = 12 + static_cast<int>(random() % 20);
      const double start = number(0, 1), step = kFullTurn / sides;
      for (int k = 0; k < sides; ++k) {
        const double corner = start + step * k, middle = corner + step * number(0.1, 0.9);
        for (const Arc& part : {Arc{corner, middle}, Arc{middle, corner + step}}) {
          const bool isSeen = random() % 4 == 0;
          (isSeen ? visible : hidden).push_back(rim.ChordOf(sides, corner, part, shell));
          (isSeen ? visibleArcs : hiddenArcs).push_back(part);
        }
      }
    }
    const std::vector<PartOfStretch> left = WithoutDoubles(scene, &circles, visible, hidden);

    for (double angle = 0.005; angle < kFullTurn; angle += 0.02) {
      const auto holds = [&](const Arc& arc) { return arc.Holds(angle) || arc.Holds(angle + kFullTurn); };
      const auto endsAt = [&](const Arc& arc) {
        return std::min(rim.At(arc.from).Distance(rim.At(angle)), rim.At(arc.to).Distance(rim.At(angle))) < kNear;
      };
      if (std::any_of(visibleArcs.begin(), visibleArcs.end(), endsAt) || std::any_of(hiddenArcs.begin(), hiddenArcs.end(), endsAt))
        continue;
      ++looked;
      std::vector<std::uint32_t> shells;  // whose lines are there
      for (std::size_t k = 0; k < visible.size(); ++k) {
        if (holds(visibleArcs[k])) shells.push_back(visible[k].shell);
      }
      const std::size_t seen = shells.size();
      for (std::size_t k = 0; k < hidden.size(); ++k) {
        const Arc& arc = hiddenArcs[k];
        if (!holds(arc)) continue;
        const CurvedStretch& whole = hidden[k];
        const ZBR_PT s = whole.segment.s() - centre, d = whole.segment.e() - whole.segment.s(), ray = rim.At(angle) - centre;
        const double part = -s.OuterProduct(ray) / d.OuterProduct(ray);  // where the ray meets the chord
        const bool stays = std::any_of(left.begin(), left.end(),
                                       [&](const PartOfStretch& p) { return p.stretch == k && p.from <= part && part <= p.to; });
        if (stays) shells.push_back(whole.shell);
        gone += stays ? 0 : 1;
      }
      EXPECT_FALSE(shells.empty()) << round << " " << angle;
      EXPECT_LE(shells.size(), std::max<std::size_t>(seen, 1)) << round << " " << angle;
    }
  }
  EXPECT_GT(gone, looked);
  EXPECT_GT(looked, 2500U);
}

// Discs of one radius on each other, each coarse in its own way: seen along their axis there is one rim; at a slant the half of the
// common rim that is hidden is there, and not in crumbs.
TEST(DoubledCurves, RimsOfCoarseDiscsAreWhole) {
  for (const auto& [lower, upper] : {std::pair(12, 16), {16, 12}, {20, 36}, {24, 16}, {64, 48}}) {
    SCOPED_TRACE(lower);
    Mesh mesh = example::Cylinder(lower, 10, 5), disc = example::Cylinder(upper, 10, 4);
    example::Turn(disc, {0, 0, 1}, 0.04);
    example::Move(disc, {0, 0, 5});
    example::Append(mesh, disc);
    const Model model = MakeModel(mesh, 30.0);
    DrawingOptions options;
    options.hidden = HiddenLines::kInAllViews;
    const auto isHidden = [](const Line& line) { return line.hidden; };
    const ViewLines top = DrawView(model, "top", options), iso = DrawView(model, "iso", options);
    EXPECT_LE(std::count_if(top.lines.begin(), top.lines.end(), isHidden), 1);
    EXPECT_LE(std::count_if(iso.lines.begin(), iso.lines.end(), isHidden), 5);
    double turn = 0.0;
    const ZBR_PT centre = (iso.view.In({0, 0, 5}) - iso.middle).xy();
    for (const Line& line : iso.lines) {
      for (const CircleRun& run : line.chain.curves) {
        if (line.hidden && run.centre.Distance(centre) < 1e-6) turn += std::abs(run.t1 - run.t0);
      }
    }
    EXPECT_NEAR(turn, kPi, 0.6);
    EXPECT_EQ(DrawView(model, "front", {}).lines.size(), 7U);  // three rims from the side, two silhouettes of each
  }
}

TEST(DoubledCurves, HalvesOfARimAreTheirBodies) {
  Mesh mesh;
  for (const double side : {-10.0, 0.0}) {
    example::Solid half;
    half.Extrude(example::Axis::kZ, example::Minus(example::Circle(0, 0, 9, 60), example::Rectangle(-10, side, 10, side + 10)), 0,
                 5);
    example::Append(mesh, half.Take());
  }
  const ViewLines view = DrawView(MakeModel(mesh, 30.0), "top", {});
  std::vector<std::uint32_t> shells;
  for (const Line& line : view.lines) {
    if (!line.chain.curves.empty()) shells.push_back(line.shell);
  }
  ASSERT_EQ(shells.size(), 2U);
  EXPECT_NE(shells[0], shells[1]);
}

// In a box, divided differently: on the left the silhouettes of their facets are farther apart than lines that are one on paper.
TEST(DoubledCurves, SilhouettesOfCylindersInOnePlaceAreDashedOnce) {
  Mesh mesh = example::Cylinder(24, 10, 5);
  example::Append(mesh, example::Cylinder(23, 10.001, 5));
  example::Append(mesh, example::Box({-20, -20, -1}, {20, 20, 9}));
  Model model = MakeModel(mesh, 30.0);
  ASSERT_EQ(model.ShellCount(), 3U);
  const std::vector<NamedDirection> front{{"front", *NamedView("front")}};
  const auto isDashed = [](const Line& line) { return line.hidden && line.edgeClass == EdgeClass::kSilhouette; };
  const ViewLines view = DrawViews(model, front).front(), last = DrawLastViews(model, front).front();
  EXPECT_EQ(std::count_if(view.lines.begin(), view.lines.end(), isDashed), 2);
  EXPECT_EQ(std::count_if(last.lines.begin(), last.lines.end(), isDashed), 2);
}

}  // namespace
}  // namespace zbr::drawing
