// Hidden-line drawings, from models small enough to count their lines.

#include <zbr/planar.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "boxes.h"
#include "tool.h"

namespace {

using Json = nlohmann::json;

// Boxes side by side under a roof. Some touch: then edges of two shells coincide.
std::string ManyBoxes() {
  std::vector<Box> boxes = {{{-1, -1, 10}, {26, 38, 0.5}}};
  for (int i = 0; i < 96; ++i)
    boxes.push_back({{3.0 * (i % 8), 3.0 * (i / 8), 0}, {i % 3 == 0 ? 2.0 : 3.0, 2.0 + i % 2, 1 + i / 3 % 5 * 0.7}});
  return ObjText(boxes);
}

double LengthOf(const Json& polyline) {
  double length = 0;
  const Json& points = polyline["points"];
  for (std::size_t i = 1; i < points.size(); ++i) {
    const double dx = double(points[i][0]) - double(points[i - 1][0]), dy = double(points[i][1]) - double(points[i - 1][1]);
    length += std::hypot(dx, dy);
  }
  return length;
}

struct Drawn {
  double visible = 0, hidden = 0;  // lengths
  std::set<std::pair<int, int>> visibleEdges, hiddenEdges;
};

Drawn Measure(const Json& view) {
  Drawn drawn;
  for (const Json& polyline : view["polylines"]) {
    const bool visible = polyline["visible"];
    (visible ? drawn.visible : drawn.hidden) += LengthOf(polyline);
    for (const Json& edge : polyline["edges"]) (visible ? drawn.visibleEdges : drawn.hiddenEdges).emplace(edge[0], edge[1]);
  }
  return drawn;
}

class Draw : public Tool {
 protected:
  Draw() {
    Write("box.obj", ObjText({{{10, 20, 30}, {4, 3, 2}}}));
    Write("many.obj", ManyBoxes());
  }
  Json Drawing(const std::string& arguments) {
    const Outcome outcome = Run("draw " + arguments + " -o drawing.json");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return Json::parse(Read("drawing.json"), nullptr, false);
  }
};

// The facets at the sides of a slender rod are so narrow in projection that the removal takes them for walls: their silhouettes
// must be found all the same, and their width belongs to the outline.
TEST_F(Draw, SidesOfSlenderRods) {
  constexpr int kFacets = 1000;
  std::string text = "\xef\xbb\xbf";  // as some editors begin a file
  for (int k = 0; k < 2 * kFacets; ++k) {
    const double angle = std::acos(-1.0) * (k / 2) / kFacets * 2.0;
    text += "v " + std::to_string(k % 2 * 6000) + ' ' + std::to_string(5.0 * std::cos(angle)) + ' ' +
            std::to_string(5.0 * std::sin(angle)) + '\n';
  }
  for (int k = 0; k < kFacets; ++k) {
    const int a = 2 * k + 1, b = 2 * ((k + 1) % kFacets) + 1;
    for (const auto& [p, q, r] : {std::array{a, b + 1, b}, std::array{a, a + 1, b + 1}})
      text += "f " + std::to_string(p) + ' ' + std::to_string(q) + ' ' + std::to_string(r) + '\n';
  }
  Write("rod.obj", text);
  const Drawn drawn = Measure(Drawing("rod.obj --view top")["views"][0]);
  EXPECT_GE(drawn.visible, 12000.0);
  EXPECT_LE(drawn.visible, 12020.1);
  ASSERT_EQ(Run("outline rod.obj --view top -o rod.wkt").code, 0);
  EXPECT_NE(Read("rod.wkt").find("6000 5,"), std::string::npos) << Read("rod.wkt");
}

// Of the twelve edges nine are seen; the three others meet in the hidden corner. Lengths are foreshortened by the view's axes.
TEST_F(Draw, BoxFromCornerAndAlongAnAxis) {
  const Json corner = Drawing("box.obj --view iso --hidden dashed");
  const Json& view = corner["views"][0];
  const Drawn iso = Measure(view);
  const double foreshortening = std::sqrt(2.0 / 3.0);
  EXPECT_NEAR(iso.visible, 3 * (4 + 3 + 2) * foreshortening, 1e-6);
  EXPECT_NEAR(iso.hidden, (4 + 3 + 2) * foreshortening, 1e-6);
  EXPECT_EQ(iso.visibleEdges.size(), 9U);
  EXPECT_EQ(iso.hiddenEdges.size(), 3U);
  std::map<std::pair<long, long>, int> ends;
  for (const Json& polyline : view["polylines"]) {
    if (polyline["visible"]) continue;
    for (const Json& p : polyline["points"]) ++ends[{std::lround(double(p[0]) * 1e6), std::lround(double(p[1]) * 1e6)}];
  }
  EXPECT_EQ(ends.size(), 4U) << "three far ends and the corner";

  const Json top = Drawing("box.obj --view top");
  ASSERT_EQ(top["views"][0]["polylines"].size(), 1U);
  const Json& square = top["views"][0]["polylines"][0];
  EXPECT_TRUE(square["visible"] && square["closed"]);
  EXPECT_NEAR(LengthOf(square), 14, 1e-9);
  for (const Json& p : square["points"]) EXPECT_TRUE((p[0] == 10 || p[0] == 14) && (p[1] == 20 || p[1] == 23)) << p;
}

// What is not visible is hidden: together both have the length of all edges, where no two lie on one line in the drawing. Every
// line names its shell and edges, and runs along them.
TEST_F(Draw, LinesLeadBackToTheirEdges) {
  const std::vector<Box> boxes = {{{0, 0, 0}, {4, 3, 2}}, {{1, -5, -1}, {2, 2.5, 9}}};
  Write("two.obj", ObjText(boxes));
  const Json drawing = Drawing("two.obj --look 0.3,0.9,-0.41 --hidden dashed");
  const Json& view = drawing["views"][0];
  EXPECT_EQ(drawing["shells"], 2);
  const auto project = [&](const Point& p) {
    const auto along = [&](const char* axis) {
      return p[0] * double(view[axis][0]) + p[1] * double(view[axis][1]) + p[2] * double(view[axis][2]);
    };
    return ZBR_PT(along("right"), along("up"));
  };
  double expected = 0;
  for (const Box& box : boxes) {
    for (const int k : {1, 2, 4}) expected += 4 * project(box.Corner(k)).Distance(project(box.Corner(0)));
  }
  const Drawn drawn = Measure(view);
  EXPECT_NEAR(drawn.visible + drawn.hidden, expected, 1e-3);
  EXPECT_GT(drawn.hidden, 8);
  std::set<std::pair<int, int>> edges = drawn.visibleEdges;
  edges.insert(drawn.hiddenEdges.begin(), drawn.hiddenEdges.end());
  EXPECT_EQ(edges.size(), 24U);

  for (const Json& polyline : view["polylines"]) {
    EXPECT_EQ(polyline["class"], "crease");
    std::vector<std::pair<ZBR_PT, ZBR_PT>> named;
    for (const Json& edge : polyline["edges"]) {
      const int triangle = edge[0], i = edge[1];
      ASSERT_TRUE(triangle >= 0 && triangle < 24 && i >= 0 && i < 3) << edge;
      EXPECT_EQ(triangle / 12, int(polyline["shell"]));
      const Box& box = boxes[static_cast<std::size_t>(triangle / 12)];
      const auto& corners = Box::kTriangles[triangle % 12];
      named.emplace_back(project(box.Corner(corners[i])), project(box.Corner(corners[(i + 1) % 3])));
    }
    for (const Json& p : polyline["points"]) {
      double nearest = 1e9;  // detour over p from one end of an edge to the other
      for (const auto& [s, e] : named) {
        const ZBR_PT at(p[0], p[1]);
        nearest = std::min(nearest, at.Distance(s) + at.Distance(e) - s.Distance(e));
      }
      EXPECT_LT(nearest, 1e-6) << polyline;
    }
  }
}

TEST_F(Draw, ThreadsDoNotChangeTheDrawing) {
  const std::string options = "draw many.obj --object box.obj,-8,0,9 --fill --view iso,front,top --look 1,2,-0.5 ";
  ASSERT_EQ(Run(options + "--jobs 1 -o 1.svg -o 1.dxf -o 1.json").code, 0);
  ASSERT_EQ(Run(options + "--jobs 4 -o 4.svg -o 4.dxf -o 4.json").code, 0);
  ASSERT_EQ(Run("draw many.obj --jobs 1 -o 1o.json").code, 0);
  ASSERT_EQ(Run("draw many.obj --jobs 4 -o 4o.json").code, 0);  // all threads to the shells of one view
  for (const char* file : {".svg", ".dxf", ".json", "o.json"})
    EXPECT_EQ(Read(std::string("1") + file), Read(std::string("4") + file));
  EXPECT_GT(Read("1.svg").size(), 10000U);
}

// Box of the lines of a view on paper: x0, x1, y0, y1.
std::vector<double> OnPaper(const Json& drawing, const std::string& name) {
  std::vector<double> box = {1e9, -1e9, 1e9, -1e9};
  const double scale = drawing["millimetres_per_unit"];
  for (const Json& view : drawing["views"]) {
    if (view["name"] != name) continue;
    for (const Json& polyline : view["polylines"]) {
      for (const Json& p : polyline["points"]) {
        for (const std::size_t axis : {0U, 1U}) {
          const double at = double(view["origin"][axis]) + scale * double(p[axis]);
          box[2 * axis] = std::min(box[2 * axis], at);
          box[2 * axis + 1] = std::max(box[2 * axis + 1], at);
        }
      }
    }
  }
  return box;
}

TEST_F(Draw, SheetsLineUp) {
  for (const bool first : {true, false}) {
    const Json drawing = Drawing(std::string("many.obj --view iso,left,dimetric,top,front,back --look 1,2,-1 --sheet ") +
                                 (first ? "first" : "third"));
    const auto front = OnPaper(drawing, "front"), top = OnPaper(drawing, "top"), left = OnPaper(drawing, "left");
    for (const std::size_t side : {0U, 1U}) {
      EXPECT_NEAR(front[side], top[side], 1e-6);
      EXPECT_NEAR(front[2 + side], left[2 + side], 1e-6);
    }
    EXPECT_EQ(top[3] < front[2], first);
    EXPECT_EQ(left[0] > front[1], first);
    // Nothing overlaps, and all is on the paper.
    std::vector<std::vector<double>> boxes;
    for (const char* name : {"front", "top", "left", "back", "iso", "dimetric", "look"}) boxes.push_back(OnPaper(drawing, name));
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      const auto& a = boxes[i];
      EXPECT_TRUE(a[0] > 20 && a[1] < 410 && a[2] > 26 && a[3] < 287) << i;
      for (std::size_t j = 0; j < i; ++j) {
        const auto& b = boxes[j];
        EXPECT_TRUE(a[0] > b[1] || b[0] > a[1] || a[2] > b[3] || b[2] > a[3]) << i << ' ' << j;
      }
    }
  }
}

double AreaOf(const Json& ring) {
  double area = 0;
  for (std::size_t i = 1; i < ring.size(); ++i)
    area += (double(ring[i - 1][0]) * double(ring[i][1]) - double(ring[i][0]) * double(ring[i - 1][1])) / 2;
  return area;
}

// What is filled is what `zbr outline` finds, on paper at its scale.
TEST_F(Draw, FillsWhatNearerObjectsLeave) {
  const std::string objects = "many.obj --object box.obj,-8,0,9 --object box.obj,4,-9,3 ";
  const Json drawing = Drawing(objects + "--fill --view front,top,iso -o fill.dxf -o fill.svg");
  ASSERT_EQ(drawing["models"].size(), 3U);
  EXPECT_EQ(drawing["models"][1]["shift"], Json({-8, 0, 9}));
  const double scale = drawing["millimetres_per_unit"];
  double onPaper = 0;
  for (const Json& view : drawing["views"]) {
    const std::string name = view["name"];
    ASSERT_EQ(Run("outline " + objects + "--view " + name + " -o " + name + "-{object}.wkt").code, 0);
    ASSERT_EQ(view["outlines"].size(), 3U);
    for (const Json& outline : view["outlines"]) {
      double area = 0;
      for (const Json& polygon : outline["polygons"]) {
        for (const Json& ring : polygon) area += AreaOf(ring);
      }
      const char* const kNames[] = {"many", "box", "box-2"};
      const double found = Area(name + "-" + kNames[int(outline["object"])] + ".wkt");
      EXPECT_NEAR(area, found, 1e-6 * found) << name << outline["object"];
      onPaper += area * scale * scale;
    }
  }
  EXPECT_NEAR(Area("fill.dxf --layer FILL-many,FILL-box,FILL-box-2"), onPaper, 1e-6 * onPaper);
  EXPECT_EQ(Shell("grep -o 'id=.view-top-fill-' fill.svg | wc -l").out, "3\n");
  EXPECT_EQ(Drawing("box.obj")["views"][0].count("outlines"), 0U);
}

}  // namespace
