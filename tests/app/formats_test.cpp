// What is read from each format, and that what is written reads back as the same.

#include <algorithm>
#include <cmath>
#include <cstdint>
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
      {"SPLINE 70 4 71 2 40 0 40 0 40 0 40 1 40 1 40 2 40 2 40 3 40 3 40 4 40 4 40 4 41 1 41 "
       "0.7071067811865476 41 1 41 0.7071067811865476 41 1 41 0.7071067811865476 41 1 41 0.7071067811865476 "
       "41 1 10 5 20 0 10 5 20 5 10 0 20 5 10 -5 20 5 10 -5 20 0 10 -5 20 -5 10 0 20 -5 10 5 20 -5 10 5 20 0",
       25 * kPi},
      {"SPLINE 70 1 71 3 11 1.0 21 0.0 11 0.866025403784 21 0.5 11 0.5 21 0.866025403784 11 0.0 21 1.0 11 "
       "-0.5 21 0.866025403784 11 -0.866025403784 21 0.5 11 -1.0 21 0.0 11 -0.866025403784 21 -0.5 11 -0.5 "
       "21 -0.866025403784 11 0.0 21 -1.0 11 0.5 21 -0.866025403784 11 0.866025403784 21 -0.5 11 1.0 21 0.0",
       kPi},
      {"CIRCLE 10 0 20 0 40 5 210 0 220 0.8660254037844386 230 0.5", 12.5 * kPi},
      {"SOLID 10 0 20 0 11 4 21 0 12 0 22 3 13 4 23 3", 12},
      {"LWPOLYLINE 90 3 70 0 43 1 10 0 20 0 10 10 20 0 10 10 20 10", 20},
      {"LWPOLYLINE 90 4 70 1 43 1 10 0 20 0 10 10 20 0 10 10 20 10 10 0 20 10", 40},
      {"LWPOLYLINE 90 2 70 1 43 2 10 -5 20 0 42 1 10 5 20 0 42 1", 20 * kPi},
      {"POLYLINE 66 1 40 1 41 3; VERTEX 10 0 20 0; VERTEX 10 10 20 0; SEQEND", 20},
      {"MLINE 71 0 72 2 73 2 11 0 21 0 13 0 23 1 74 2 41 1 41 9 75 0 74 1 41 -1 75 0 "
       "11 9 21 0 13 0 23 1 74 1 41 1 75 0 74 1 41 -1 75 0",
       18},
      {"HATCH 91 1 92 2 72 1 73 1 93 2 10 -5 20 0 42 1 10 5 20 0 42 1 97 0", 25 * kPi},
      {"HATCH 91 1 92 1 93 2 72 2 10 0 20 0 40 5 50 270 51 450 73 1 72 1 10 0 20 5 11 0 21 -5 97 0; CIRCLE 10 9 20 0 40 1",
       13.5 * kPi},
      {"HATCH 91 1 92 1 93 3 72 2 10 0 20 0 40 5 50 0 51 90 73 0 72 1 10 0 20 -5 11 -3 21 -5 72 1 10 -3 20 -5 11 5 21 0 97 0",
       6.25 * kPi - 5},
      {"CIRCLE 10 0 20 0 40 5; HATCH 91 1 92 2 72 0 73 1 93 3 10 0 20 5 10 5 20 0 10 0 20 -5 97 0", 25 * kPi},
      {"ENDSEC; SECTION 2 BLOCKS; BLOCK 2 Half 10 1 20 0; ARC 10 1 20 0 40 1 50 90 51 270; LINE 10 1 20 1 11 1 21 -1; ENDBLK; "
       "BLOCK 2 Both 10 0 20 0; INSERT 2 HALF 10 0 20 0; INSERT 2 half 10 0.5 20 0 41 -1; ENDBLK; ENDSEC; SECTION 2 ENTITIES; "
       "INSERT 2 both 10 7 20 8 41 2 42 3 50 30 70 2 71 3 44 20 45 20; INSERT 2 half 10 -50 20 0 230 -1",
       36.5 * kPi},
      {"CIRCLE 10 0 20 0 40 5; CIRCLE 10 0 20 0 40 3; CIRCLE 10 0 20 0 40 1; TEXT 1 note; CIRCLE 67 1 10 0 20 0 40 9", 17 * kPi},
  };
  for (const auto& test : kCases) {
    Write("d.dxf", DxfText(test.entities));
    EXPECT_NEAR(Area("d.dxf --deviation 1e-4"), test.area, 0.005) << test.entities;
    EXPECT_EQ(Run("check d.dxf").code, 0) << test.entities;
  }
}

// Codes with their values in the binary form: text ends in a null, numbers have the width that goes with their codes.
std::string BinaryDxf(const std::string& text) {
  std::string bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
  const auto add = [&](const auto& number) { bytes.append(reinterpret_cast<const char*>(&number), sizeof number); };
  std::istringstream groups(text);
  std::string code, value;
  while (std::getline(groups, code) && std::getline(groups, value)) {
    const int number = std::stoi(code);
    add(static_cast<std::int16_t>(number));
    if ((number >= 10 && number < 60) || (number >= 210 && number < 240)) {
      add(std::stod(value));
    } else if (number >= 60 && number < 80) {
      add(static_cast<std::int16_t>(std::stoi(value)));
    } else if (number >= 90 && number < 100) {
      add(static_cast<std::int32_t>(std::stoi(value)));
    } else {
      bytes += value + '\0';
    }
  }
  return bytes;
}

TEST_F(Tool, BinaryDxfHoldsTheSame) {
  const std::string text =
      DxfText("CIRCLE 10 0.1 20 0.2 40 5 8 Umlaut; LWPOLYLINE 90 2 70 1 10 -50 20 0 42 1 10 -5.5 20 0 42 1; POINT 10 1 20 1", 4);
  Write("text.dxf", text);
  Write("binary.dxf", BinaryDxf(text));
  Write("mac.dxf", [&] {
    std::string lines = text;
    std::replace(lines.begin(), lines.end(), '\n', '\r');
    return lines;
  }());
  const std::string expected = Run("nest - -o - --format dxf <text.dxf").out;
  EXPECT_EQ(Run("nest - -o - --format dxf <binary.dxf").out, expected);
  EXPECT_EQ(Run("nest - -o - --format dxf <mac.dxf").out, expected);
  EXPECT_EQ(Info("binary.dxf", "units"), "mm");
  for (const std::size_t size : {21U, 30U, 100U, 200U}) {
    Write("cut.dxf", BinaryDxf(text).substr(0, size));
    EXPECT_EQ(Run("info cut.dxf").code, 2) << size;
  }
}

// An independent program reads what is written and finds nothing to mend.
TEST_F(Tool, DxfPassesAnAudit) {
  if (Shell("/usr/bin/python3 -c 'import ezdxf'").code != 0) GTEST_SKIP() << "needs python3-ezdxf";
  Write("audit.py",
        "import ezdxf, sys\nfor name in sys.argv[1:]:\n  document = ezdxf.readfile(name)\n  audit = document.audit()\n"
        "  assert not audit.errors and not audit.fixes, (name, [e.message for e in audit.errors + audit.fixes])\n"
        "  assert len(document.modelspace()) > 0, name\n");
  Write("curves.dxf", DxfText("ELLIPSE 10 0 20 0 11 10 21 0 40 0.5 41 0 42 6.283185307179586 8 a/b; CIRCLE 10 50 20 0 40 5 8 A_B"));
  for (const std::string version : {"R12", "R2000"}) {
    const std::string end = " --dxf-version " + version + " -o ";
    Run("nest curves.dxf" + end + "curves-" + version + ".dxf");
    Run("bool --op union,xor $EX/bracket.dxf $EX/gasket.dxf" + end + "bool-" + version + ".dxf");
    Run("clip $EX/bracket.dxf $EX/gasket.dxf --both" + end + "clip-" + version + ".dxf");
    Run("draw $EX/housing.obj --view front,iso --hidden layer" + end + "draw-" + version + ".dxf");
    EXPECT_EQ(Shell("/usr/bin/python3 audit.py *-" + version + ".dxf").err, "");
    EXPECT_NEAR(Area("curves-" + version + ".dxf"), 75 * kPi, 0.1);
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
