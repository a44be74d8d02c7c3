// Models of boxes, as files.
#pragma once

#include <array>
#include <sstream>
#include <string>
#include <vector>

using Point = std::array<double, 3>;

// A box: its corners, and the corners of its twelve triangles.
struct Box {
  Point low, size;

  Point Corner(int k) const { return {low[0] + size[0] * (k & 1), low[1] + size[1] * (k >> 1 & 1), low[2] + size[2] * (k >> 2)}; }
  static constexpr int kTriangles[12][3] = {{0, 2, 3}, {0, 3, 1}, {4, 5, 7}, {4, 7, 6}, {0, 1, 5}, {0, 5, 4},
                                            {2, 6, 7}, {2, 7, 3}, {0, 4, 6}, {0, 6, 2}, {1, 3, 7}, {1, 7, 5}};
};

inline std::string ObjText(const std::vector<Box>& boxes) {
  std::ostringstream text;
  text.precision(17);
  int first = 1;
  for (const Box& box : boxes) {
    for (int k = 0; k < 8; ++k) text << "v " << box.Corner(k)[0] << ' ' << box.Corner(k)[1] << ' ' << box.Corner(k)[2] << '\n';
    for (const auto& t : Box::kTriangles) text << "f " << first + t[0] << ' ' << first + t[1] << ' ' << first + t[2] << '\n';
    first += 8;
  }
  return text.str();
}
