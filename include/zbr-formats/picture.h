// Pictures of results, as SVG.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-formats/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zbr::formats {

// One result, drawn filled, with holes open, over the outlines of all operands.
struct Panel {
  std::string caption;  // "A ∪ B"
  Layer result;
};

struct Picture {
  std::string title;
  std::vector<Layer> operands;  // outlined, the first six each in a colour of its own; the legend has room for four
  std::vector<Panel> panels;
  int units = 0;
};

// What operands are called: A, B, ... Z, A1, B1, ...
std::string OperandLabel(std::size_t operand);

// A white page: the title, a legend with the areas of the operands, and the panels in a grid, all drawn to the same scale. Line
// widths are those of the page, whatever the size of the drawing. Points closer together than a twentieth of a pixel are merged.
std::string WriteSvg(const Picture& picture);

}  // namespace zbr::formats
