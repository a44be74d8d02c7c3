// What --stats prints.
#pragma once

#include <zbr-drawing/region.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "app/libraries.h"

namespace tool {

// A line for each layer, with its edges, loops, holes and area, under a line of headings.
std::string LayerTable(const std::vector<std::string>& labels, const std::vector<Layer>& layers);

// A line for each stage with its milliseconds.
std::string StageTable(const std::vector<std::pair<std::string, double>>& stages);

struct Stats {
  std::vector<std::pair<std::string, double>> stages;  // name, milliseconds

  void Stage(const std::string& name, double milliseconds) { stages.emplace_back(name, milliseconds); }

  // A table of operands and results, and the time of each stage.
  std::string Text(const std::vector<Layer>& operands, const std::vector<Layer>& results) const;
};

}  // namespace tool
