// Combinations, and where results go.

#include <zbr/planar.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>
#include <utility>

#include "tool.h"

namespace {

constexpr const char* kAllOps = "union,intersection,a-b,b-a,xor";
constexpr const char* kSquareA = "0 0\n4 0\n4 4\n0 4\n";
constexpr const char* kSquareB = "2 2\n6 2\n6 6\n2 6\n";

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

TEST_F(Tool, AreasOfTheExamplesAgree) {
  EXPECT_EQ(Output(std::string("bool --op ") + kAllOps + " $EX/bracket.dxf $EX/gasket.dxf -o all.dxf -o '{op}.geojson'"), "");
  // Areas of DXF are those of the true curves, of GeoJSON those of their chords.
  const auto area = [&](const std::string& op) { return Area("all.dxf --layer " + op); };
  const double unite = area("union"), common = area("intersection");
  EXPECT_NEAR(unite + common, Area("$EX/bracket.dxf") + Area("$EX/gasket.dxf"), 1e-9 * unite);
  EXPECT_NEAR(area("xor"), unite - common, 1e-9 * unite);
  EXPECT_NEAR(area("a-b") + area("b-a"), unite - common, 1e-9 * unite);
  for (const std::string op : {"union", "intersection", "a-b", "b-a", "xor"}) {
    EXPECT_NEAR(area(op), Area(op + ".geojson"), 1e-3 * unite) << op;
    EXPECT_EQ(Info("all.dxf --layer " + op, "loops"), Info(op + ".geojson", "loops")) << op;
  }
}

// Scaling by a power of two is exact on the way in and out, so results differ by the same factor and nothing else.
TEST_F(Tool, AnyUnitGivesTheSameDigits) {
  Output("nest $EX/bracket.dxf -o a1.txt; zbr nest $EX/gasket.dxf -o b1.txt");
  const std::string reference = Output("bool --op xor a1.txt b1.txt -o -");
  ASSERT_GT(reference.size(), 10000U);
  for (const double factor : {std::ldexp(1, -90), std::ldexp(1, -20), std::ldexp(1, 7), std::ldexp(1, 300)}) {
    Write("a2.txt", Transformed(Read("a1.txt"), factor, 0));
    Write("b2.txt", Transformed(Read("b1.txt"), factor, 0));
    EXPECT_TRUE(Transformed(Output("bool --op xor a2.txt b2.txt -o -"), 1 / factor, 0) == Transformed(reference, 1, 0)) << factor;
  }
}

// What is given lies on whole numbers, so it survives the shift, as do the crossings of squares; those of triangles are rounded.
TEST_F(Tool, FarFromTheOriginGivesTheSameLoopsAndAreas) {
  const std::string given[] = {kSquareA, kSquareB, "0 0\n4 1\n1 4\n", "1 1\n5 2\n2 5\n"};
  std::string loops;
  double area = 0;
  for (const double shift : {0.0, std::ldexp(1, 30), -std::ldexp(1, 40)}) {
    for (std::size_t i = 0; i < 4; ++i) Write(std::to_string(i) + ".txt", Transformed(given[i], 1, shift));
    const std::string shifted = Transformed(Output("bool --op xor 0.txt 1.txt -o -"), 1, -shift);
    Output("bool --op xor 2.txt 3.txt -o x.wkt");
    const double found = Area("x.wkt");
    if (shift == 0) {
      loops = shifted;
      area = found;
    }
    EXPECT_EQ(shifted, loops) << shift;
    EXPECT_NEAR(found, area, 1e-2) << shift;
  }
  EXPECT_GT(area, 1);
}

// The cells of a lattice, each there or not, with sides of this length and direction.
std::string TurnedCells(std::mt19937& random, const ZBR_PT& side, const ZBR_PT& from) {
  const ZBR_PT left(-side.y(), side.x());
  std::string text;
  for (int i = 0; i < 25; ++i) {
    if (random() % 2 == 0) continue;
    const char* before = "POLYGON ((";
    for (const auto& [x, y] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}, {0, 0}}) {
      const ZBR_PT p = from + side * (i % 5 + x) + left * (i / 5 + y);
      char buffer[80] = "";
      std::snprintf(buffer, sizeof buffer, "%s%.17g %.17g", before, p.x(), p.y());
      text += buffer;
      before = ", ";
    }
    text += "))\n";
  }
  return text;
}

// Edges that lie on each other but for rounding enclose what is narrower than the tolerance, or than the digits that are written.
// Where those are coarser than the tolerance the loops may meet, but each is one.
TEST_F(Tool, TurnedDrawingsCombineToSoundOnes) {
  std::mt19937 random(77);
  for (int round = 0; round < 40; ++round) {
    const bool isTiny = round % 4 == 0;
    const double t = 0.03 * (1 + round), shift = isTiny ? 1e5 : (round % 2 == 0 ? 100 : 1000);
    const ZBR_PT side = ZBR_PT(1 - t * t, 2 * t) * ((isTiny ? 1e-3 : 1) / (1 + t * t)), from(shift, shift);
    Write("a.wkt", TurnedCells(random, side, from));
    Write("b.wkt", TurnedCells(random, side, from + side * 0.5));
    Run("bool --op union,intersection,a-b,b-a a.wkt b.wkt -o '{op}.wkt'");
    const std::string filter = isTiny ? "grep -E 'repeats|no area|turns back'" : "grep -v clean";
    EXPECT_EQ(Shell("for f in union intersection a-b b-a; do zbr check $f.wkt; done | " + filter).out, "") << round;
  }
}

TEST_F(Tool, PicturesShowOperandsAndResults) {
  Write("<a>&\"b\".txt", kSquareA);
  Write("b.txt", kSquareB);
  Output(std::string("bool --op ") + kAllOps + " '<a>&\"b\".txt' b.txt -o all.svg");
  const std::string svg = Read("all.svg");
  for (const char* text :
       {"&lt;a&gt;&amp;&quot;b&quot;.txt", "b.txt", "A ∪ B", "A ∩ B", "A − B", "B − A", "A ⊕ B", ">28.0000<", "evenodd"}) {
    EXPECT_NE(svg.find(text), std::string::npos) << text;
  }
  for (const char* text : {"nan", "inf", "<a>"}) EXPECT_EQ(svg.find(text), std::string::npos) << text;
  // y points up: a square in the lower left corner starts there on the page, where y counts from the top.
  Write("corner.txt", "0 0\n1 0\n1 1\n0 1\n");
  Output("bool --op intersection '<a>&\"b\".txt' corner.txt -o corner.svg");
  const std::string corner = Read("corner.svg");
  double x = 0, y = 0;
  ASSERT_EQ(std::sscanf(corner.c_str() + corner.find("evenodd\" d=\"M"), "evenodd\" d=\"M%lf %lf", &x, &y), 2);
  EXPECT_LT(x, 400);
  EXPECT_GT(y, 500);
}

}  // namespace
