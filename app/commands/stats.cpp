// The table of --stats.
#include "app/commands/stats.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/picture.h>

#include <algorithm>
#include <array>

#include "app/commands/report.h"

namespace tool {
namespace {

using Row = std::array<std::string, 5>;

Row RowOf(const std::string& label, const Layer& layer) {
  return {label, std::to_string(CountVertices(layer.loops)), std::to_string(layer.loops.size() + CountHoles(layer.loops)),
          std::to_string(CountHoles(layer.loops)), NumberText(layer.area)};
}

// The first column is aligned to the left, numbers to the right.
std::string Table(const std::vector<Row>& rows) {
  std::array<std::size_t, 5> widths{};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (const Row& row : rows) {
    text += row[0] + std::string(widths[0] - row[0].size(), ' ');
    for (std::size_t i = 1; i < row.size(); ++i) text += std::string(2 + widths[i] - row[i].size(), ' ') + row[i];
    text += '\n';
  }
  return text;
}

}  // namespace

std::string LayerTable(const std::vector<std::string>& labels, const std::vector<Layer>& layers) {
  std::vector<Row> rows = {{"", "edges", "loops", "holes", "area"}};
  for (std::size_t i = 0; i < layers.size(); ++i) rows.push_back(RowOf(labels[i], layers[i]));
  return Table(rows);
}

std::string StageTable(const std::vector<std::pair<std::string, double>>& stages) {
  constexpr std::size_t kColumn = 11;
  Report report;
  for (const auto& [name, milliseconds] : stages) report.Time(name, milliseconds);
  return report.Listed(kColumn);
}

std::string Stats::Text(const std::vector<Layer>& operands, const std::vector<Layer>& results) const {
  std::vector<std::string> labels;
  for (std::size_t i = 0; i < operands.size(); ++i) labels.push_back(OperandLabel(i) + " " + operands[i].name);
  for (const Layer& result : results) labels.push_back(result.name);
  std::vector<Layer> layers = operands;
  layers.insert(layers.end(), results.begin(), results.end());
  return LayerTable(labels, layers) + StageTable(stages);
}

}  // namespace tool
