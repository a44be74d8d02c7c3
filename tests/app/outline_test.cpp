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

// Coordinates are those of the file, wherever the model is and whatever it is scaled by on the way.
TEST_F(Outline, VerticesAreThoseOfTheModel) {
  Write("box.obj", ObjText({{{0.1, 0.2, 0.3}, {0.6, 1.1, 1.3}}}));
  Write("far.obj", ObjText({{{123456.75, -98765.375, 3}, {10, 20, 30}}}));
  EXPECT_EQ(Run("outline box.obj --view top -o - --format text").out, "0.1 1.3\n0.1 0.2\n0.7 0.2\n0.7 1.3\n\n");
  EXPECT_EQ(Run("outline far.obj --view front -o - --format text").out, "123456.75 33\n123456.75 3\n123466.75 3\n123466.75 33\n\n");
  EXPECT_EQ(Run("outline far.obj --view bottom -o - --format text").out,
            "123456.75 98765.375\n123456.75 98745.375\n123466.75 98745.375\n123466.75 98765.375\n\n");
}

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

// A frame of four boxes with a box in the middle; an open surface, which is seen from both sides; all formats tell the same.
TEST_F(Outline, HolesIslandsAndFormats) {
  Write("frame.obj", ObjText({{{0, 0, 0}, {9, 1, 1}},
                              {{0, 8, 0}, {9, 1, 1}},
                              {{0, 0, 0}, {1, 9, 2}},
                              {{8, 0, -1}, {1, 9, 2}},
                              {{4, 4, 7}, {1, 1, 1}}}));
  Write("sheet.obj", "v 0 0 0\nv 2 0 0\nv 2 2 1\nv 0 2 1\nf 1 2 3\nf 3 4 1\n");
  ASSERT_EQ(Run("outline frame.obj --view top --unit cm -o f.dxf -o f.geojson -o f.wkt -o f.txt -o f.svg").code, 0);
  for (const char* file : {"f.dxf", "f.geojson", "f.wkt", "f.txt"}) {
    EXPECT_EQ(Area(file), 33) << file;
    EXPECT_EQ(Info(file, "loops"), "3 (2 outer, 1 holes)") << file;
  }
  EXPECT_EQ(Info("f.dxf", "layers"), "frame");
  EXPECT_EQ(Info("f.dxf", "units"), "cm");
  EXPECT_NE(Read("f.svg").find("evenodd"), std::string::npos);
  EXPECT_NE(Read("f.svg").find("33.0000 cm²"), std::string::npos);
  EXPECT_EQ(AreaOf("sheet.obj --view top"), 4);
  EXPECT_EQ(AreaOf("sheet.obj --view bottom"), 4);

  const Outcome onEdge = Run("outline sheet.obj --look 0,2,1 -o none.wkt");
  EXPECT_EQ(onEdge.code, 0);
  EXPECT_NE(onEdge.err.find("sheet.obj: note: nothing of it is seen in this view"), std::string::npos);
  EXPECT_EQ(Read("none.wkt"), "MULTIPOLYGON EMPTY\n");
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

TEST_F(Outline, PlacesNamesAndThreads) {
  Write("box.obj", ObjText({{{0, 0, 0}, {2, 2, 2}}}));
  Write("box-2.obj", ObjText({{{0, 0, 0}, {1, 1, 1}}}));
  const std::string run = "outline box.obj --object box-2.obj,-5,0,0 --object box.obj,1,0,-9 --view top ";
  EXPECT_EQ(Run(run + "-o - --format text").out,
            "# box\n\n0 2\n0 0\n2 0\n2 2\n\n# box-2\n\n-5 1\n-5 0\n-4 0\n-4 1\n\n# box-3\n\n2 2\n2 0\n3 0\n3 2\n\n");
  const Outcome report = Run(run + "--whole");
  EXPECT_EQ(report.code, 0);
  EXPECT_NE(report.out.find("box-3      4      1      0     4"), std::string::npos) << report.out;
  ASSERT_EQ(Run(run + "--look 1,2,3 -o x.svg").code, 2);  // beside --view
  ASSERT_EQ(Run("outline $EX/house.obj --object $EX/housing.obj --jobs 1 -o 1.wkt").code, 0);
  ASSERT_EQ(Run("outline $EX/house.obj --object $EX/housing.obj --jobs 4 -o 4.wkt").code, 0);
  EXPECT_EQ(Read("1.wkt"), Read("4.wkt"));
  EXPECT_GT(Read("1.wkt").size(), 1000U);
}

TEST_F(Outline, ErrorsLeaveNothingBehind) {
  Write("box.obj", ObjText({{{0, 0, 0}, {2, 2, 2}}}));
  Write("points.obj", "v 0 0 0\nv 1 0 0\n");
  const std::size_t files = Files().size();
  const std::pair<const char*, const char*> cases[] = {
      {"-o a.svg", "no model is named; see 'zbr help'"},
      {"points.obj -o a.svg", "points.obj: no triangles"},
      {"box.obj missing.obj -o a.svg", "missing.obj: cannot open: No such file or directory"},
      {"box.obj -o a.png", "a.png: the name does not tell the format; give --format"},
      {"box.obj -o -", "-: the name does not tell the format; give --format"},
      {"box.obj -o a.svg -o a.svg", "a.svg: named twice as output"},
      {"box.obj --format wkt -o a.svg -o /dev/full", "/dev/full: cannot write: No space left on device"},
      {"box.obj --format svg -o box.obj", "box.obj: is a model to be read; the outline needs another name"},
      {"box.obj --view up -o a.svg", "--view: 'up' is none of front, back, left, right, top, bottom, iso, dimetric"},
      {"box.obj --view top --look 0,0,1 -o a.svg", "--view and --look exclude each other"},
      {"box.obj --unit furlong -o a.svg", "--unit: 'furlong' is no unit; there are mm, cm, m, in, ft and others"},
      {"--object box.obj,1,nan,0 -o a.svg",
       "--object: 'box.obj,1,nan,0' is no model and its place, as in part.stl or part.stl,10,0,-2.5"},
  };
  for (const auto& [arguments, error] : cases) {
    const Outcome outcome = Run(std::string("outline ") + arguments);
    EXPECT_EQ(outcome.code, 2) << arguments;
    EXPECT_EQ(outcome.err, error + std::string("\n")) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_EQ(Files().size(), files) << arguments;
  }
}

}  // namespace
