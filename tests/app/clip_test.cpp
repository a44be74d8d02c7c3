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

}  // namespace
