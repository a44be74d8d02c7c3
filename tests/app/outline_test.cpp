// Outlines of models: what a view of boxes covers can be computed by hand, and objects divide what they cover together.

#include <algorithm>
#include <cmath>

#include "boxes.h"
#include "tool.h"

namespace {

class Outline : public Tool {
 protected:
  double AreaOf(const std::string& arguments) {
    const Outcome outcome = Run("outline " + arguments + " -o outline.geojson");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return Area("outline.geojson");
  }
};

// A box covers its faces, each foreshortened by the cosine of its angle to the view.
TEST_F(Outline, BoxesFromAllSides) {
  const double a = 3, b = 4, c = 5;
  Write("box.obj", ObjText({{{-7, 2, 1}, {a, b, c}}}));
  const Point kDirections[] = {{1, 2, -3}, {-0.2, 1, 0.1}, {1e-3, 1, 0}, {0, 0, 1}, {5, 0, -1}};
  for (const Point& d : kDirections) {
    std::ostringstream look;
    look << d[0] << ',' << d[1] << ',' << d[2];
    const double length = std::hypot(d[0], d[1], d[2]);
    const double expected = (b * c * std::abs(d[0]) + a * c * std::abs(d[1]) + a * b * std::abs(d[2])) / length;
    EXPECT_NEAR(AreaOf("box.obj --up 1,1,0.5 --look " + look.str()), expected, 1e-9) << look.str();
  }
}

// Boxes at heights of their own, in every order: what each leaves of those below adds up to what all cover together.
TEST_F(Outline, ObjectsShareOutWhatTheyCover) {
  const std::vector<Box> boxes = {
      {{0, 0, 0}, {10, 10, 1}}, {{2, 3, 2}, {3, 4, 1}}, {{-2, 4, 4}, {20, 2, 1}}, {{3, -1, 6}, {1, 12, 1}}};
  const double kLeft[] = {100 - 12 - 20 - 10 + 6 + 4 + 2 - 2, 12 - 6 - 4 + 2, 40 - 2, 12};
  std::vector<std::size_t> order = {0, 1, 2, 3};
  const char* const kNames[] = {"b0", "b1", "b2", "b3"};
  for (std::size_t i = 0; i < boxes.size(); ++i) Write(std::string(kNames[i]) + ".obj", ObjText({boxes[i]}));
  do {
    std::string files;
    for (const std::size_t i : order) files.append(kNames[i]).append(".obj ");
    ASSERT_EQ(Run("outline " + files + "--view top -o {object}.wkt").code, 0);
    for (std::size_t i = 0; i < boxes.size(); ++i) EXPECT_NEAR(Area(std::string(kNames[i]) + ".wkt"), kLeft[i], 1e-9) << files;
  } while (std::next_permutation(order.begin(), order.end()));
  // From askew the same holds of the union, which is computed from the whole outlines.
  const std::string files = "b3.obj b0.obj b2.obj b1.obj --look 1,2,-3";
  const double sum = AreaOf(files);
  ASSERT_EQ(Run("outline " + files + " --whole -o whole.wkt").code, 0);
  EXPECT_NEAR(Area("whole.wkt"), sum, 1e-9 * sum);  // polygons of one file are united
}

TEST_F(Outline, ThreadsDoNotChangeIt) {
  const std::string one = Output("outline $EX/housing.obj --object $EX/housing.obj,40,130,0 --jobs 1 -o - --format wkt");
  EXPECT_EQ(Output("outline $EX/housing.obj --object $EX/housing.obj,40,130,0 --jobs 4 -o - --format wkt"), one);
  EXPECT_GT(one.size(), 1000U);
}

}  // namespace
