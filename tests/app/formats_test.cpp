// What is read from each format, and that what is written reads back as the same.

#include <cmath>
#include <sstream>

#include "tool.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr const char* kFrame = "0.1 0.2\n123456.789012345 0\n123456.789 98765.4321\n-1e-7 1e5\n\n5 5\n5 700.25\n600.3 5\n";

class Formats : public Tool, public testing::WithParamInterface<const char*> {};

TEST_P(Formats, WhatIsWrittenReadsBackToTheLastDigit) {
  Write("in.txt", kFrame);
  const std::string file = std::string("copy.") + GetParam();
  ASSERT_EQ(Run("nest in.txt -o direct.txt -o " + file).code, 0);
  ASSERT_EQ(Run("nest " + file + " -o back.txt").code, 0);
  EXPECT_TRUE(Read("back.txt") == Read("direct.txt")) << Read("back.txt").substr(0, 500);
  EXPECT_NE(Read("back.txt").find("123456.789012345 0\n"), std::string::npos);
  // The same through pipes, where --format tells what the names do not.
  const std::string name = GetParam() == std::string("txt") ? "text" : GetParam();
  EXPECT_EQ(Run("nest in.txt -o - --format " + name + " | zbr nest - --format " + name).out, Run("nest in.txt").out);
}
INSTANTIATE_TEST_SUITE_P(, Formats, testing::Values("dxf", "geojson", "wkt", "txt"),
                         [](const auto& p) { return std::string(p.param); });

// Each with a deviation of 1e-4: the area a person would compute, and how far off chords may leave it.
TEST_F(Tool, DxfEntitiesBoundTheAreaTheyDescribe) {
  const struct {
    const char* entities;
    double area;
  } kCases[] = {
      {"CIRCLE 10 1 20 2 40 5", 25 * kPi},
      {"LWPOLYLINE 90 2 70 1 10 -5 20 0 42 1 10 5 20 0 42 1", 25 * kPi},
      {"LWPOLYLINE 90 2 70 1 10 -5 20 0 42 -1 10 5 20 0 42 -1", 25 * kPi},
      {"LWPOLYLINE 90 4 70 1 10 0 20 0 10 4 20 0 42 1 10 4 20 4 10 0 20 4", 16 + 2 * kPi},
      {"LWPOLYLINE 90 4 70 1 10 0 20 0 10 4 20 0 42 1 10 4 20 4 10 0 20 4 210 0 220 0 230 -1", 16 + 2 * kPi},
      {"POLYLINE 66 1 70 1; VERTEX 10 0 20 0; VERTEX 10 4 20 0 42 -1; VERTEX 10 4 20 4; VERTEX 10 0 20 4; SEQEND", 16 - 2 * kPi},
      {"POLYLINE 66 1 70 5; VERTEX 10 0 20 0; VERTEX 10 9 20 9 70 16; VERTEX 10 4 20 0; VERTEX 10 0 20 4; SEQEND", 8},
      {"LINE 10 0 20 0 11 1 21 0; LINE 10 1 20 1 11 0 21 1; LINE 10 1 20 0 11 1 21 1; LINE 10 0 20 0 11 0 21 1", 1},
      {"LINE 10 0 20 0 11 0 21 10; ARC 10 0 20 5 40 5 50 270 51 90", 12.5 * kPi},
      {"ARC 10 0 20 5 40 5 50 270 51 90 230 -1; LINE 10 0 20 0 11 0 21 10", 12.5 * kPi},
      {"LINE 10 0 20 0 11 3 21 0; LWPOLYLINE 90 3 70 0 10 0 20 0 10 0 20 3 10 3 20 0", 4.5},
      {"ELLIPSE 10 0 20 0 11 10 21 0 40 0.5 41 0 42 6.283185307179586", 50 * kPi},
      {"ELLIPSE 10 0 20 0 11 0 21 10 40 0.5 41 0 42 3.141592653589793; LINE 10 0 20 -10 11 0 21 10", 25 * kPi},
      {"CIRCLE 10 0 20 0 40 5; CIRCLE 10 0 20 0 40 3; CIRCLE 10 0 20 0 40 1; TEXT 1 note; CIRCLE 67 1 10 0 20 0 40 9", 17 * kPi},
  };
  for (const auto& test : kCases) {
    Write("d.dxf", DxfText(test.entities));
    EXPECT_NEAR(Area("d.dxf --deviation 1e-4"), test.area, 0.005) << test.entities;
    EXPECT_EQ(Run("check d.dxf").code, 0) << test.entities;
  }
}

// Readers stop at a record of the TABLES section that stands in no table.
TEST_F(Tool, DxfRecordsStandInTheirTables) {
  std::istringstream groups(Run("nest - --format dxf -o -", DxfText("CIRCLE 10 0 20 0 40 1")).out);
  std::string code, value, table;
  bool isSectionNamed = false, isInTables = false;
  int tables = 0;
  while (std::getline(groups, code) && std::getline(groups, value)) {
    if (code == "  2" && isSectionNamed) isInTables = value == "TABLES";
    isSectionNamed = code == "  0" && value == "SECTION";
    if (code == "  0" && value == "ENDSEC") isInTables = false;
    if (code != "  0" || !isInTables) continue;
    const bool opens = value == "TABLE";
    EXPECT_EQ(opens, table.empty()) << value << " after " << table;
    tables += opens ? 1 : 0;
    table = value == "ENDTAB" ? "" : value;
  }
  EXPECT_EQ(tables, 9);
  EXPECT_EQ(value, "EOF");
}

TEST_F(Tool, ChordsStayWithinTheDeviation) {
  Write("d.dxf", DxfText("CIRCLE 10 0 20 0 40 10"));
  for (const double deviation : {1.0, 0.1, 0.001}) {
    std::istringstream points(Run("nest d.dxf -o - --format text --deviation " + std::to_string(deviation)).out);
    double x = 0, y = 0, lastX = 0, lastY = 0, farthest = 0;
    points >> lastX >> lastY;
    while (points >> x >> y) {
      EXPECT_NEAR(std::hypot(x, y), 10, 1e-12);
      farthest = std::max(farthest, 10 - std::hypot((x + lastX) / 2, (y + lastY) / 2));
      lastX = x;
      lastY = y;
    }
    EXPECT_LE(farthest, deviation);
    EXPECT_GE(farthest, deviation / 3) << "more chords than needed";
  }
}

}  // namespace
