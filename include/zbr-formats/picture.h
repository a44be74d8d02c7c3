// Pictures of results, as SVG.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-formats/types.h>

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
  std::vector<Layer> operands;  // outlined, each in a colour of its own; at most two
  std::vector<Panel> panels;
  int units = 0;
};

// A white page: the title, a legend with the areas of the operands, and the panels in a grid, all drawn to the same scale. Line
// widths are those of the page, whatever the size of the drawing. Points closer together than a twentieth of a pixel are merged.
std::string WriteSvg(const Picture& picture);

}  // namespace zbr::formats
