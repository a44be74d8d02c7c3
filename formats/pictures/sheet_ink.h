// What pictures of sheets have in common.
#pragma once

#include <zbr-drawing/sheet.h>
#include <zbr-formats/types.h>

#include <array>
#include <cstddef>
#include <optional>

namespace zbr::formats {

inline constexpr double kSizePerHeight = 1.38;  // the size of a font counts the room above and below its capitals
inline constexpr double kWideFrame = 0.7, kThinFrame = 0.25, kSeam = 0.05;  // widths in mm

// In millimetres.
struct DashPattern {
  double dash = 0.0, gap = 0.0;
};

// The dashes of an open hidden line are stretched or shortened so that it starts and ends with a whole one: then corners close, and
// a short line still shows that it is hidden. None for very short ones.
std::optional<DashPattern> DashesOf(const Sheet& sheet, const Line& line);

// Dash, gap, dot and gap of a chain line, stretched so that it starts and ends with a dash, and has one in its middle, where the
// two lines of a cross meet. None for lines that are not longer than a dash.
std::optional<std::array<double, 4>> ChainPattern(const Sheet& sheet, const Line& line);

// Red, green and blue of what an object covers: light enough for lines on top, and apart from each other even in print.
std::array<int, 3> ShadeOf(std::size_t object);

}  // namespace zbr::formats
