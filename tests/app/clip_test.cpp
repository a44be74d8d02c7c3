// Lines cut by regions.

#include <cmath>
#include <random>
#include <sstream>

#include "tool.h"

namespace {

// A square with a hole.
const char* const kRegion = "0 0\n10 0\n10 10\n0 10\n\n4 4\n6 4\n6 6\n4 6\n";

using Line = std::vector<std::array<double, 3>>;

std::vector<Line> LinesOf(const std::string& text) {
  std::vector<Line> lines;
  std::istringstream rows(text);
  bool open = false;
  for (std::string row; std::getline(rows, row); open = !row.empty() && row[0] != '#') {
    if (row.empty() || row[0] == '#') continue;
    if (!open) lines.emplace_back();
    std::istringstream numbers(row);
    std::array<double, 3> p{};
    numbers >> p[0] >> p[1] >> p[2];
    lines.back().push_back(p);
  }
  return lines;
}

double LengthOf(const std::vector<Line>& lines) {
  double length = 0;
  for (const Line& line : lines) {
    for (std::size_t i = 1; i < line.size(); ++i)
      length += std::hypot(line[i][0] - line[i - 1][0], line[i][1] - line[i - 1][1], line[i][2] - line[i - 1][2]);
  }
  return length;
}

class Clip : public Tool {
 protected:
  Clip() { Write("region.txt", kRegion); }
};

TEST_F(Clip, KeepsHeightsInAllFormats) {
  Write("lines.txt", "-5 5 0\n15 5 10\n\n3 3 1\n5 5 1\n5 5.5 1\n\n9 1 7\n8 2 8\n8 9 1\n");
  const std::string inside = "0 5 2.5\n4 5 4.5\n\n6 5 5.5\n10 5 7.5\n\n3 3 1\n4 4 1\n\n9 1 7\n8 2 8\n8 9 1\n\n";
  const std::string outside = "-5 5 0\n0 5 2.5\n\n4 5 4.5\n6 5 5.5\n\n10 5 7.5\n15 5 10\n\n4 4 1\n5 5 1\n5 5.5 1\n\n";
  EXPECT_EQ(Run("clip lines.txt region.txt -o -").out, inside);
  EXPECT_EQ(Run("clip lines.txt region.txt -o - --outside").out, outside);
  EXPECT_EQ(Run("clip lines.txt region.txt -o - --both").out, "# inside\n\n" + inside + "# outside\n\n" + outside);
  Write("all.txt", "-99 -99\n99 -99\n99 99\n-99 99\n");
  for (const std::string format : {"dxf", "geojson", "wkt"}) {
    ASSERT_EQ(Run("clip lines.txt all.txt -o all." + format).code, 0);
    EXPECT_EQ(Run("clip all." + format + " region.txt --format text -o -").out, inside) << format;
    EXPECT_EQ(
        Run("clip lines.txt region.txt --format " + format + " -o - | zbr clip - all.txt --format " + format + " -o p.txt").code,
        0);
    EXPECT_EQ(Read("p.txt"), inside) << format;
  }
  ASSERT_EQ(Run("clip lines.txt region.txt -o flat.svg --both").code, 0);
  EXPECT_NE(Read("flat.svg").find(">inside<"), std::string::npos);
  Write("mixed.wkt", "LINESTRINGZ (1 1 5, 2 2 6)\nLINESTRING M (1 3 9, 2 3 9)\n");
  EXPECT_EQ(Run("clip mixed.wkt region.txt --format text -o -").out, "1 1 5\n2 2 6\n\n1 3 0\n2 3 0\n\n");
  // Without heights none are written.
  Write("flat.txt", "-5 5\n5 5\n");
  EXPECT_EQ(Run("clip flat.txt region.txt --format wkt -o - --both").out,
            "MULTILINESTRING ((0 5, 4 5))\nMULTILINESTRING ((-5 5, 0 5), (4 5, 5 5))\n");
}

// The pieces of random lines on a coarse grid, on which they often run along the boundary or through its corners, are the lines,
// and lie where they should.
TEST_F(Clip, PiecesAreTheLine) {
  std::mt19937 random(7);
  std::string text;
  for (int i = 0; i < 300; ++i) {
    const std::size_t points = 2 + random() % 4;
    for (std::size_t k = 0; k < points; ++k)
      text +=
          std::to_string(static_cast<int>(random() % 17) - 3) + " " + std::to_string(static_cast<int>(random() % 17) - 3) + "\n";
    text += "\n";
  }
  Write("lines.txt", text);
  ASSERT_EQ(Run("clip lines.txt region.txt -o inside.txt").code, 0);
  ASSERT_EQ(Run("clip lines.txt region.txt --outside -o outside.txt").code, 0);
  const std::vector<Line> inside = LinesOf(Read("inside.txt")), outside = LinesOf(Read("outside.txt"));
  const double length = LengthOf(LinesOf(text));
  EXPECT_NEAR(LengthOf(inside) + LengthOf(outside), length, 1e-9 * length);
  EXPECT_GT(LengthOf(inside), 0.2 * length);
  EXPECT_GT(LengthOf(outside), 0.2 * length);
  for (const bool isInside : {true, false}) {
    std::ostringstream middles;
    for (const Line& line : isInside ? inside : outside) {
      for (std::size_t i = 1; i < line.size(); ++i)
        middles << (line[i][0] + line[i - 1][0]) / 2 << ' ' << (line[i][1] + line[i - 1][1]) / 2 << '\n';
    }
    const std::string places = Run("inside region.txt", middles.str()).out;
    for (const char* wrong : isInside ? std::vector<const char*>{" out\n"} : std::vector<const char*>{" in\n", " edge\n"})
      EXPECT_EQ(places.find(wrong), std::string::npos) << wrong;
  }
}

// One stray line does not take the others their precision.
TEST_F(Clip, LinesFarBeyondTheRegion) {
  Write("lines.txt", "3 -1\n3 11\n\n1e20 1e20\n2e20 1e20\n\n-1e9 5\n1e9 5\n");
  const std::vector<Line> inside = LinesOf(Run("clip lines.txt region.txt -o -").out);
  ASSERT_EQ(inside.size(), 3U);
  EXPECT_EQ(inside[0], (Line{{3, 0, 0}, {3, 10, 0}}));
  EXPECT_NEAR(inside[1][0][0], 0, 1e-6);
  EXPECT_NEAR(inside[2][1][0], 10, 1e-6);
}

// A closed contour that stays whole stays closed; one that is cut goes on across the point where it starts. Arcs are flattened.
TEST_F(Clip, ClosedContours) {
  Write("lines.dxf",
        DxfText("CIRCLE 10 2 20 2 40 1; CIRCLE 10 10 20 5 30 7.25 40 2; LWPOLYLINE 90 4 70 1 38 5.5 10 -1 20 8 10 -3 20 8 "
                "10 -3 20 9 10 -1 20 9 210 0 220 0 230 -1"));
  ASSERT_EQ(Run("clip lines.dxf region.txt --both -o both.dxf -o both.wkt").code, 0);
  EXPECT_NEAR(Area("both.dxf --layer inside"), 3.141592 + 2, 1e-2);  // what is closed; the half circle is not
  const std::string wkt = Read("both.wkt");
  EXPECT_EQ(std::count(wkt.begin(), wkt.end(), '('), 6) << "three lines inside, one outside";
  EXPECT_NE(wkt.find("8 5 7.25"), std::string::npos) << wkt;
  EXPECT_NE(wkt.find("3 8 -5.5"), std::string::npos) << "seen from behind, and so is its height";
}

TEST_F(Clip, LayersAndUnits) {
  Write("plan.dxf", DxfText("LINE 8 PIPE 10 -50 20 50 11 150 21 50; LINE 8 WIRE 10 -50 20 20 11 150 21 20; "
                            "LWPOLYLINE 8 SITE 90 4 70 1 10 0 20 0 10 100 20 0 10 100 20 100 10 0 20 100",
                            4));
  Write("site.dxf", DxfText("LWPOLYLINE 90 4 70 1 10 0 20 0 10 10 20 0 10 10 20 10 10 0 20 10", 5));  // the same in centimetres
  for (const char* region : {"plan.dxf --region-layer SITE", "site.dxf"}) {
    const Outcome one = Run(std::string("clip plan.dxf ") + region + " --layer PIPE,WIRE -o one.geojson -o one.dxf");
    ASSERT_EQ(one.code, 0) << one.err;
    const std::string text = Read("one.geojson");
    EXPECT_NE(text.find(R"("name":"PIPE","length":100,"units":"mm")"), std::string::npos) << text;
    EXPECT_NE(text.find("[[0,20],[100,20]]"), std::string::npos) << text;
  }
  ASSERT_EQ(Run("clip plan.dxf site.dxf --layer WIRE --both -o both.geojson").code, 0);
  EXPECT_NE(Read("both.geojson").find(R"("name":"WIRE-outside","length":100)"), std::string::npos);
  const Outcome report = Run("clip plan.dxf site.dxf --layer PIPE,WIRE");
  EXPECT_NE(report.out.find("inside            2  200\noutside           4  200\nregion     area 10000\n"), std::string::npos)
      << report.out;
}

TEST_F(Clip, ErrorsLeaveNothingBehind) {
  Write("lines.txt", "0 0\n1 1 1\n");
  Write("four.txt", "0 0\n1 1 1 1\n");
  Write("nan.txt", "0 0\n1 1 nan\n");
  Write("far.dxf", DxfText("LINE 10 0 20 0 11 1e308 21 0 31 1e308; CIRCLE 10 1e308 20 0 40 1e308"));
  Write("deep.geojson", "{\"type\":\"LineString\",\n\"coordinates\":[[[0,0],[1,1]]]}");
  Write("open.wkt", "LINESTRING (0 0, 1 1,");
  const std::size_t files = Files().size();
  const std::pair<const char*, const char*> cases[] = {
      {"lines.txt -o a.svg", "region is required; see 'zbr help'"},
      {"lines.txt region.txt --outside --both -o a.svg", "--outside and --both exclude each other"},
      {"lines.txt region.txt -o a.png", "a.png: the name does not tell the format; give --format"},
      {"lines.txt missing.txt -o a.svg", "missing.txt: cannot open: No such file or directory"},
      {"- - --format text -o a.svg", "-: standard input can be read only once"},
      {"lines.txt region.txt --layer x -o a.svg", "lines.txt: nothing on the chosen layers"},
      {"lines.txt region.txt --region-layer x -o a.svg", "region.txt: nothing on the chosen layers"},
      {"four.txt region.txt -o a.svg", "four.txt:2: unexpected '1'"},
      {"nan.txt region.txt -o a.svg", "nan.txt:2: 'nan' is not a finite number"},
      {"region.txt lines.txt -o a.svg", "lines.txt:2: unexpected '1'"},
      {"far.dxf region.txt -o a.svg", "far.dxf:15: coordinates are out of range"},
      {"deep.geojson region.txt -o a.svg", "deep.geojson:1: coordinates do not have the nesting of a LineString"},
      {"open.wkt region.txt -o a.svg", "open.wkt:1: a finite number expected, but found the end of the file"},
  };
  for (const auto& [arguments, error] : cases) {
    const Outcome outcome = Run(std::string("clip ") + arguments);
    EXPECT_EQ(outcome.code, 2) << arguments;
    EXPECT_EQ(outcome.err, error + std::string("\n")) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_EQ(Files().size(), files) << arguments;
  }
}

}  // namespace
