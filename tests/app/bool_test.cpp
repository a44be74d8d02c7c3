// Combinations, and where results go.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "tool.h"

namespace {

constexpr const char* kAllOps = "union,intersection,a-b,b-a,xor";
constexpr const char* kSquareA = "0 0\n4 0\n4 4\n0 4\n";
constexpr const char* kSquareB = "2 2\n6 2\n6 6\n2 6\n";

class Bool : public Tool {
 protected:
  Bool() {
    Write("a.txt", kSquareA);
    Write("b.txt", kSquareB);
  }
};

// Every number of the text, transformed; the layout stays.
std::string Transformed(const std::string& text, double factor, double shift) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    char* second = nullptr;
    const double x = std::strtod(line.c_str(), &second);
    char buffer[80] = "";
    if (!line.empty())
      std::snprintf(buffer, sizeof buffer, "%.17g %.17g", x * factor + shift, std::strtod(second, nullptr) * factor + shift);
    result += std::string(buffer) + "\n";
  }
  return result;
}

TEST_F(Bool, AreasOfTheExamplesAgree) {
  const Outcome outcome =
      Run(std::string("bool --op ") + kAllOps + " $EX/bracket.dxf $EX/gasket.dxf -o all.dxf -o '{op}.geojson' -o all.wkt");
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.err + outcome.out, "");
  // Flattened together, as for the combination: the tolerance follows from the extent of both.
  const double deviation = 1e-4 * 200;
  const std::string option = " --deviation " + std::to_string(deviation);
  const double unite = Area("union.geojson"), common = Area("intersection.geojson");
  EXPECT_NEAR(unite + common, Area("$EX/bracket.dxf" + option) + Area("$EX/gasket.dxf" + option), 1e-6 * unite);
  EXPECT_NEAR(Area("xor.geojson"), unite - common, 1e-9 * unite);
  EXPECT_NEAR(Area("a-b.geojson") + Area("b-a.geojson"), unite - common, 1e-9 * unite);
  for (const std::string op : {"union", "intersection", "a-b", "b-a", "xor"}) {
    EXPECT_NEAR(Area("all.dxf --layer " + op), Area(op + ".geojson"), 1e-9 * unite) << op;
    EXPECT_EQ(Info("all.dxf --layer " + op, "loops"), Info(op + ".geojson", "loops")) << op;
  }
  EXPECT_EQ(Info("all.dxf", "units"), "mm");
  const std::string wkt = Read("all.wkt");
  EXPECT_EQ(std::count(wkt.begin(), wkt.end(), '\n'), 5);
}

// A ring that touches itself at a vertex, as unions of polygons make them, where the other drawing passes: areas of union, common
// part and the two differences.
TEST_F(Bool, RingsThatTouchThemselvesAreTakenApart) {
  const struct {
    const char *a, *b;
    double areas[4];
  } cases[] = {
      {"6 6,6 10,5 10,5 11,3 11,3 7,4 7,4 6,3 6,3 7,1 7,1 4,2 4,2 2,6 2", "1 7,3 7,3 10,1 10", {39, 0, 33, 6}},
      {"7 6,7 4,8 4,11 4,11 8,8 8,8 7,7 7,7 8,8 8,8 9,7 9,7 10,6 10,6 9,6 8,6 6", "8 5,12 5,12 9,8 9", {27, 9, 11, 7}},
      {"7 7,7 9,3 9,3 7,2 7,2 5,6 5,6 6,7 6,7 5,6 5,6 1,8 1,8 3,11 3,11 7", "4 4,6 4,6 6,4 6", {41, 2, 37, 2}},
  };
  for (const auto& c : cases) {
    const auto onePerLine = [](std::string text) {
      std::replace(text.begin(), text.end(), ',', '\n');
      return text + "\n";
    };
    Write("pinched.txt", onePerLine(c.a));
    Write("other.txt", onePerLine(c.b));
    EXPECT_EQ(Run("bool --op union,intersection,a-b,b-a pinched.txt other.txt -o '{op}.wkt'").code, 0);
    int k = 0;
    for (const std::string op : {"union", "intersection", "a-b", "b-a"}) EXPECT_EQ(Area(op + ".wkt"), c.areas[k++]) << c.a << op;
  }
}

// Scaling by a power of two is exact on the way in and out, so results differ by the same factor and nothing else.
TEST_F(Bool, AnyUnitGivesTheSameDigits) {
  ASSERT_EQ(Run("nest $EX/bracket.dxf -o a1.txt; zbr nest $EX/gasket.dxf -o b1.txt").code, 0);
  const std::string reference = Run("bool --op xor a1.txt b1.txt -o -").out;
  ASSERT_GT(reference.size(), 10000U);
  for (const double factor : {std::ldexp(1, -90), std::ldexp(1, -20), std::ldexp(1, 7), std::ldexp(1, 300)}) {
    Write("a2.txt", Transformed(Read("a1.txt"), factor, 0));
    Write("b2.txt", Transformed(Read("b1.txt"), factor, 0));
    EXPECT_TRUE(Transformed(Run("bool --op xor a2.txt b2.txt -o -").out, 1 / factor, 0) == Transformed(reference, 1, 0)) << factor;
  }
}

// What is given lies on whole numbers, so it survives the shift; crossings are rounded only when they are written, after the area
// has been computed.
TEST_F(Bool, FarFromTheOriginGivesTheSameLoopsAndAreas) {
  const std::string triangles[] = {"0 0\n4 1\n1 4\n", "1 1\n5 2\n2 5\n"};
  Write("t1.txt", triangles[0]);
  Write("t2.txt", triangles[1]);
  const std::string squares = Run("bool --op xor a.txt b.txt -o -").out;
  const auto area = [&] { return Run("bool --op xor t1.txt t2.txt -o - --format geojson | tr ',' '\\n' | grep area").out; };
  const std::string areaAtOrigin = area();
  ASSERT_EQ(areaAtOrigin.rfind("\"area\":", 0), 0U);
  for (const double shift : {std::ldexp(1, 30), -std::ldexp(1, 50)}) {
    Write("a2.txt", Transformed(kSquareA, 1, shift));
    Write("b2.txt", Transformed(kSquareB, 1, shift));
    EXPECT_EQ(Transformed(Run("bool --op xor a2.txt b2.txt -o -").out, 1, -shift), squares) << shift;
    Write("t1.txt", Transformed(triangles[0], 1, shift));
    Write("t2.txt", Transformed(triangles[1], 1, shift));
    EXPECT_EQ(area(), areaAtOrigin) << shift;
  }
}

TEST_F(Bool, OutputsAreSharedOutAsDocumented) {
  ASSERT_EQ(Run("bool --op union,a-b a.txt b.txt -o u.wkt d.wkt").code, 0);  // as many as operations
  EXPECT_EQ(Area("u.wkt"), 28);
  EXPECT_EQ(Area("d.wkt"), 12);
  ASSERT_EQ(Run("bool -o one.wkt --op union,a-b a.txt b.txt").code, 0);  // all in one, the output named first
  EXPECT_EQ(Read("one.wkt"), Read("u.wkt") + Read("d.wkt"));
  ASSERT_EQ(Run("bool --op union,a-b a.txt b.txt -o 'x-{op}.wkt'").code, 0);
  EXPECT_EQ(Read("x-union.wkt"), Read("u.wkt"));
  EXPECT_EQ(Read("x-a-b.wkt"), Read("d.wkt"));
  EXPECT_EQ(Run("bool --op intersection --format wkt - b.txt -o -", "POLYGON((0 0,9 0,9 3,0 3,0 0))").out,
            "POLYGON ((2 2, 6 2, 6 3, 2 3, 2 2))\n");
  EXPECT_EQ(Run("bool --op intersection a.txt b.txt -o - | zbr info - --format text | grep area").out, "area      4\n");
}

TEST_F(Bool, NothingIsLeftBehindWhenAnOutputCannotBeWritten) {
  const Outcome outcome = Run("bool --op union a.txt b.txt -o good.wkt -o nowhere/bad.wkt");
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.err, "nowhere/bad.wkt: cannot write: No such file or directory\n");
  EXPECT_EQ(Files(), (std::vector<std::string>{"a.txt", "b.txt"}));
}

TEST_F(Bool, AnOperandMayBeTheOutputAndKeepsItsMode) {
  ASSERT_EQ(Run("bool --op union a.txt b.txt -o a.txt; umask 077; chmod 640 a.txt; zbr nest a.txt -o a.txt -o new.txt").code, 0);
  EXPECT_EQ(Area("a.txt"), 28);
  EXPECT_EQ(Run("--version; ls -l a.txt new.txt | cut -c 1-10").out, "zbr " ZBR_VERSION "\n-rw-r-----\n-rw-------\n");
}

TEST_F(Bool, StatisticsGoToStandardOutputUnlessADrawingDoes) {
  const Outcome table = Run("bool --op union,b-a --stats a.txt b.txt -o u.svg");
  for (const char* text : {"edges", "A a.txt", "crossings  2\n", "read ", "nest ", "boolean ", "write ", " ms\n"}) {
    EXPECT_NE(table.out.find(text), std::string::npos) << text << " in\n" << table.out;
  }
  EXPECT_NE(table.out.find("union        8      1      0    28\n"), std::string::npos) << table.out;
  const Outcome piped = Run("bool --op union --stats a.txt b.txt -o -");
  EXPECT_EQ(piped.out.find("crossings"), std::string::npos);
  EXPECT_NE(piped.err.find("crossings"), std::string::npos);
}

TEST_F(Bool, PicturesShowOperandsAndResults) {
  Write("<a>&\"b\".txt", kSquareA);
  ASSERT_EQ(Run(std::string("bool --op ") + kAllOps + " '<a>&\"b\".txt' b.txt -o all.svg").code, 0);
  const std::string svg = Read("all.svg");
  for (const char* text :
       {"&lt;a&gt;&amp;&quot;b&quot;.txt", "b.txt", "A ∪ B", "A ∩ B", "A − B", "B − A", "A ⊕ B", ">28.0000<", "evenodd"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
  for (const char* text : {"nan", "inf", "<a>"}) EXPECT_EQ(svg.find(text), std::string::npos) << text;
  // y points up: a square in the lower left corner starts there on the page, where y counts from the top.
  Write("corner.txt", "0 0\n1 0\n1 1\n0 1\n");
  ASSERT_EQ(Run("bool --op intersection a.txt corner.txt -o corner.svg").code, 0);
  const std::string corner = Read("corner.svg");
  double x = 0, y = 0;
  ASSERT_EQ(std::sscanf(corner.c_str() + corner.find("evenodd\" d=\"M"), "evenodd\" d=\"M%lf %lf", &x, &y), 2);
  EXPECT_LT(x, 400);
  EXPECT_GT(y, 500);
  Write("far.txt", "100 100\n101 100\n101 101\n");
  ASSERT_EQ(Run("bool --op intersection a.txt far.txt -o none.svg -o none.geojson -o none.dxf -o none.wkt").code, 0);
  EXPECT_NE(Read("none.svg").find(">empty<"), std::string::npos);
  EXPECT_EQ(Read("none.wkt"), "MULTIPOLYGON EMPTY\n");
  EXPECT_EQ(Area("none.geojson") + Area("none.dxf"), 0);
}

}  // namespace
