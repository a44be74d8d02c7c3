// Short silhouettes: which of them are parts of a line, and which are dots.
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "drawing/views/specks.h"
#include "models/models.h"

namespace zbr::drawing {
namespace {

Line Silhouette(std::vector<ZBR_PT> points) {
  Line line;
  line.edgeClass = EdgeClass::kSilhouette;
  line.chain.closed = points.front() == points.back();
  line.chain.points = std::move(points);
  return line;
}

// Beside a long line along x, with lines one wide.
std::size_t LeftOf(std::vector<Line> lines) {
  ViewLines view;
  view.lines = std::move(lines);
  view.lines.push_back(Silhouette({{0, 0}, {100, 0}}));
  DropSpecks(view, 1.0);
  return view.lines.size() - 1;
}

TEST(Specks, EndInNothing) {
  const Line stub = Silhouette({{10, 0}, {10, 0.4}}), next = Silhouette({{10, 0.4}, {10.3, 0.6}});
  EXPECT_EQ(LeftOf({stub}), 0U);
  EXPECT_EQ(LeftOf({next}), 0U);
  EXPECT_EQ(LeftOf({stub, next}), 0U);  // held by what goes itself
  EXPECT_EQ(LeftOf({next, stub}), 0U);
  EXPECT_EQ(LeftOf({stub, Silhouette({{10, 0.4}, {13, 0.6}})}), 2U);                                      // of a longer line
  EXPECT_EQ(LeftOf({stub, next, Silhouette({{10.3, 0.6}, {11, 0}})}), 3U);                                // from line to line
  EXPECT_EQ(LeftOf({stub, Silhouette({{10, 0.4}, {10, 0.8}}), Silhouette({{10, 0.8}, {10, 1.2}})}), 3U);  // a long run
  EXPECT_EQ(LeftOf({Silhouette({{10, 5}, {10.2, 5}, {10.1, 5.1}, {10, 5}})}), 1U);
  EXPECT_EQ(LeftOf({stub, Silhouette({{10, 1}, {10, 3}})}), 2U);  // dashes too close to be told apart
  EXPECT_EQ(LeftOf({stub, Silhouette({{11, 0.4}, {13, 0.4}})}), 1U);
  Line crease = stub, hidden = stub;
  crease.edgeClass = EdgeClass::kCrease;
  hidden.hidden = true;
  EXPECT_EQ(LeftOf({crease, hidden}), 2U);
}

// The hole of a torus has a cusp at either side, where facets hide each other by turns.
TEST(Specks, AreLeftOutWhereATorusTurnsAway) {
  const Model model = MakeModel(example::Torus(9000), 30.0);
  const auto draw = [&](double lineWidth) {
    DrawingOptions options;
    options.lineWidth = lineWidth;
    return DrawViews(model, {{"iso", *NamedView("iso")}}, options);
  };
  const std::size_t whole = draw(1e-9).front().lines.size();
  EXPECT_LT(draw(0).front().lines.size(), whole);
  SheetOptions sheet;
  sheet.scale = 2e4;
  EXPECT_EQ(LayOut(draw(1e-9), sheet).views.front().lines.lines.size(), whole);
  sheet.scale = 100;
  EXPECT_LT(LayOut(draw(1e-9), sheet).views.front().lines.lines.size(), whole);
}

}  // namespace
}  // namespace zbr::drawing
