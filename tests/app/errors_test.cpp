// Bad input gets one line that tells where and why, exit code 2, and no output.

#include <fstream>
#include <random>
#include <sstream>

#include "tool.h"

namespace {

struct Malformed {
  const char* file;
  std::string text;
  const char* error;  // behind the name of the file
};

std::string Repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

std::string Polygon(const std::string& coordinates) {
  return "{\"type\":\"Polygon\",\n\"coordinates\":" + coordinates + "}";
}

TEST_F(Tool, MalformedFiles) {
  const std::string circle = DxfText("CIRCLE 10 0 20 0 40 1");
  const Malformed kCases[] = {
      {"m.txt", "0 0\n1 nan\n", ":2: 'nan' is not a finite number"},
      {"m.txt", "0 0\n\n1e999 1\n", ":3: '1e999' is not a finite number"},
      {"m.txt", "1\n", ":1: a point needs two numbers"},
      {"m.txt", "1 2 3\n", ":1: unexpected '3'"},
      {"m.wkt", "POLYGON ((0 0, 1 0,\n1 x", ":2: a finite number expected, but found 'x'"},
      {"m.wkt", "POLYGON ((0 0, 1 0, 1 1, 0 0)", ":1: ')' expected, but found the end of the file"},
      {"m.wkt", "\nPOLYGO ((0 0))", ":2: a geometry expected, but found 'POLYGO'"},
      {"m.wkt", Repeated("GEOMETRYCOLLECTION(", 100000), ":1: collections are nested too deeply"},
      {"m.geojson", Polygon("[[[0,0],[1,\n\"a\"]]]"), ":3: coordinates must be numbers"},
      {"m.geojson", Polygon("[[[0,0],[1,1e400]]]"), ":2: number '1e400' is out of range"},
      {"m.geojson", Polygon("[[0,0],[1,0]]"), ":1: coordinates do not have the nesting of a Polygon"},
      {"m.geojson", Polygon("[[[0,0],[1,1]],5]"), ":2: coordinates are nested unevenly"},
      {"m.geojson", Polygon(Repeated("[", 100000)), ":2: coordinates are nested too deeply"},
      {"m.geojson", "{\"type\":\"Polygon\"}", ":1: Polygon without coordinates"},
      {"m.geojson", "{\n\"type\":\"Polygn\"}", ":1: unknown type 'Polygn'"},
      {"m.geojson", "[1]", ":1: a GeoJSON object expected"},
      {"m.geojson", "{\"type\":\n\"Polygon\"", ":2: syntax error while parsing object - unexpected end of input; expected '}'"},
      {"m.dxf", "hello\nworld\n", ":1: group code expected, but found 'hello'"},
      {"m.dxf", "", ":1: the file ends without EOF"},
      {"m.dxf", "AutoCAD Binary DXF\r\n\x1a", ":1: binary DXF is not read; save it as ASCII DXF"},
      {"m.dxf", circle.substr(0, circle.size() - 6), ":23: the file ends without EOF"},
      {"m.dxf", circle.substr(0, circle.find("40")), ":19: the file ends within a section"},
      {"m.dxf", DxfText("CIRCLE 10 0 20 0"), ":15: CIRCLE lacks group 40"},
      {"m.dxf", DxfText("CIRCLE 10 0 20 0 40 -1"), ":22: the radius of an entity must be positive"},
      {"m.dxf", DxfText("CIRCLE 10 1e308 20 0 40 1e308"), ":15: coordinates are out of range"},
      {"m.dxf", DxfText("LINE 10 inf 20 0 11 1 21 0"), ":18: 'inf' is not a finite number"},
      {"m.dxf", DxfText("LWPOLYLINE 90 2000000000 10 0 20 0"), ":15: LWPOLYLINE announces 2000000000 vertices and has 1"},
      {"m.dxf", DxfText("LWPOLYLINE 42 1 90 1 10 0 20 0"), ":17: a vertex before the number of vertices"},
      {"m.dxf", DxfText("LWPOLYLINE 90 1 42 1 10 0 20 0"), ":19: a bulge before the first vertex"},
      {"m.dxf", DxfText("LWPOLYLINE 90 2 10 0 10 1 20 0 20 1"), ":21: a vertex needs x and y"},
      {"m.dxf", DxfText("LWPOLYLINE 90 1 10 0 20 0 90 1"), ":23: the number of vertices is given twice"},
      {"m.dxf", DxfText("POLYLINE 66 1; VERTEX 10 0 20 0"), ":25: POLYLINE of line 15 lacks SEQEND"},
  };
  Write("b.txt", "0 0\n1 0\n1 1\n");
  for (const Malformed& test : kCases) {
    Write(test.file, test.text);
    const Outcome outcome = Run(std::string("bool --op union ") + test.file + " b.txt -o out.svg -o out.dxf");
    EXPECT_EQ(outcome.code, 2) << test.error;
    EXPECT_EQ(outcome.err, test.file + std::string(test.error) + "\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(Files(), (std::vector<std::string>{"b.txt", test.file})) << test.error;
    Run(std::string("--version; rm ") + test.file);
  }
}

TEST_F(Tool, WrongUse) {
  Write("a.txt", "0 0\n1 0\n1 1\n");
  const struct {
    const char* arguments;
    const char* error;
  } kCases[] = {
      {"", "A subcommand is required; see 'zbr help'"},
      {"frobnicate a.txt", "'frobnicate' is no command; see 'zbr help'"},
      {"help nothing", "'nothing' is neither a command nor a topic; see 'zbr help'"},
      {"bool --op mix a.txt a.txt", "'mix' is no operation; there are union, intersection, a-b, b-a and xor"},
      {"bool a.txt a.txt", "--op is required; see 'zbr help'"},
      {"bool --op xor a.txt", "files: At least 2 required but received 1; see 'zbr help'"},
      {"bool --op xor a.txt a.txt a.txt", "unexpected argument 'a.txt'"},
      {"bool --op xor a.txt a.txt -o x.wkt -o x.wkt", "x.wkt: named twice as output"},
      {"bool --op xor a.txt a.txt -o x.png", "x.png: the name does not tell the format; give --format"},
      {"bool --op xor - - --format wkt", "-: standard input can be read only once"},
      {"info missing.txt", "missing.txt: cannot open: No such file or directory"},
      {"info .", ".: the name does not tell the format; give --format"},
      {"info -", "-: the name does not tell the format; give --format"},
      {"info a.txt --layer x", "a.txt: nothing on the chosen layers"},
      {"info a.txt --deviation -1", "--deviation: '-1' is not a length; see 'zbr help'"},
      {"info a.txt --format png", "--format: png not in {dxf,geojson,wkt,text,svg}; see 'zbr help'"},
      {"inside a.txt 1 2 3", "a point needs two numbers, but there are 3"},
      {"inside a.txt 1 nan", "'nan' is not a finite number"},
  };
  for (const auto& test : kCases) {
    const Outcome outcome = Run(test.arguments);
    EXPECT_EQ(outcome.code, 2) << test.arguments;
    EXPECT_EQ(outcome.err, test.error + std::string("\n")) << test.arguments;
    EXPECT_EQ(outcome.out, "");
  }
}

// Lines of standard error that are no notes or warnings.
int ErrorLines(const std::string& text) {
  std::istringstream lines(text);
  int count = 0;
  for (std::string line; std::getline(lines, line);) {
    const bool remark = line.find(": note: ") != std::string::npos || line.find(": warning: ") != std::string::npos;
    count += remark ? 0 : 1;
  }
  return count;
}

// Files damaged at random: an answer or one line of error, never a crash.
TEST_F(Tool, DamagedFiles) {
  Run("nest $EX/gasket.dxf --deviation 3 -o g.dxf -o g.wkt -o g.geojson -o g.txt; cp $EX/bracket.dxf .");
  const char* const kPieces[] = {"1e308", "-1",     "nan", "((", "]",  "{",    "\n", "999999999",
                                 "LINE",  "SEQEND", "90",  "42", "\"", "\xff", "0"};
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  const std::vector<std::string> files = Files();
  int refused = 0;
  for (int round = 0; round < 150; ++round) {
    const std::string& file = files[below(files.size())];
    std::string text = Read(file);
    for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
      const std::size_t at = below(text.size());
      switch (below(4)) {
        case 0:
          text.resize(at + 1);
          break;
        case 1:
          text[at] = static_cast<char>(below(256));
          break;
        case 2:
          text.replace(at, below(6), kPieces[below(std::size(kPieces))]);
          break;
        default:
          text.insert(at, text.substr(below(text.size()), below(200)));
      }
    }
    Write("damaged-" + file, text);
    const std::string commands[] = {"bool --op xor,union damaged-" + file + " g.txt -o out.svg", "check damaged-" + file,
                                    "clip damaged-" + file + " g.txt --both -o out.svg -o out.dxf"};
    const Outcome outcome = Run(commands[below(3)]);
    ASSERT_LE(outcome.code, 2) << file << " in round " << round << "\n" << outcome.err;
    ASSERT_EQ(ErrorLines(outcome.err), outcome.code == 2 ? 1 : 0) << file << " in round " << round << "\n" << outcome.err;
    refused += outcome.code == 2 ? 1 : 0;
  }
  EXPECT_GT(refused, 30);
  EXPECT_LT(refused, 140);
}

}  // namespace
