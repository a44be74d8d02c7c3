// One drawing as a picture: regions filled, lines drawn, with a legend.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-formats/types.h>

#include <string>
#include <vector>

namespace zbr::formats {

// What is drawn in one colour. Items are drawn in their order, each over those before.
struct PlotItem {
  std::string label;      // in the legend; empty: not there
  double quantity = 0.0;  // area or length, told in the legend
  LoopList region;        // filled
  std::vector<std::vector<ZBR_PT>> lines;
  std::string fill, stroke;        // colours; empty: none
  double width = 1.0;              // of lines, as a part of the usual one
  std::vector<Path> borders = {};  // of the region, with curves; empty: its loops as they are
  std::vector<Path> paths = {};    // further lines, with curves
};

struct Plot {
  std::string title, caption, remark;
  std::vector<PlotItem> items;
  int units = 0;
};

std::string WriteSvg(const Plot& plot);

// An area as the legends tell it: "120 mm²".
std::string AreaText(double area, int units);

}  // namespace zbr::formats
