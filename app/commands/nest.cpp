// zbr nest: which loops are outer loops and which are holes, as a list or as a drawing with the loops oriented accordingly.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/files.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

// What is less than the last digit of the largest coordinate is the rounding of an end of an arc, and told as 0.
double RoundingOf(const std::vector<ZBR_PT>& points) {
  double largest = 0.0;
  for (const ZBR_PT& p : points) largest = std::max({largest, std::abs(p.x()), std::abs(p.y())});
  return largest * std::numeric_limits<double>::epsilon();
}

std::string Line(const std::string& label, const ZBR_REGION& shape, std::size_t ring, int depth, double rounding) {
  const auto first = static_cast<std::size_t>(shape.ring_offsets()[ring]),
             end = static_cast<std::size_t>(shape.ring_offsets()[ring + 1]);
  ZBR_REGION alone;
  alone.AddRing(shape.points().data() + first, end - first);
  const auto told = [&](double value) { return std::abs(value) <= rounding ? 0.0 : value; };
  const ZBR_PT at(told(shape.points()[first].x()), told(shape.points()[first].y()));
  return label + ": depth " + std::to_string(depth) + ", " + std::to_string(end - first) + " points, area " +
         NumberText(alone.area()) + ", at " + PointText(at) + "\n";
}

std::string List(const ZBR_REGION& shape) {
  std::vector<std::int32_t> depths, parents;
  zbrNestRegion(shape.view(), depths, parents);
  const double rounding = RoundingOf(shape.points());
  std::string text;
  for (std::size_t i = 0; i < shape.polygon_count(); ++i) {
    const std::string number = std::to_string(i + 1);
    const auto first = static_cast<std::size_t>(shape.polygon_offsets()[i]);
    for (std::size_t r = first; r < static_cast<std::size_t>(shape.polygon_offsets()[i + 1]); ++r) {
      const std::string label = r == first ? "loop " + number : "  hole " + number + "." + std::to_string(r - first);
      text += Line(label, shape, r, depths[r], rounding);
    }
  }
  return text;
}

// The cells that lines cut the plane into, each by itself: together they are no region, as neighbours share borders.
std::vector<CurvedRegion> CellsOf(const Contours& contours) {
  std::vector<CurvedRegion> cells;
  int current = -1;
  for (const Ring& ring : contours.rings) {
    const bool isOuter = cells.empty() || ring.polygon != current;
    if (isOuter) cells.push_back({{}, {}, contours.curves, contours.pens});
    current = ring.polygon;
    cells.back().rings.AddRing(ring.points, isOuter);
    cells.back().origins.insert(cells.back().origins.end(), ring.origins.begin(), ring.origins.end());
  }
  return cells;
}

std::string ListCells(const std::vector<CurvedRegion>& cells) {
  std::string text;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    text += "cell " + std::to_string(i + 1) + ": " + std::to_string(cells[i].rings.ring_count() - 1) + " holes, area " +
            NumberText(cells[i].Area()) + ", at " + PointText(cells[i].rings.points().front()) + "\n";
  }
  return text;
}

// Formats that tell polygons apart get one of each cell, pictures and DXF all of them on one layer.
std::string WriteCells(Format format, const std::string& name, const std::vector<CurvedRegion>& cells, int units,
                       const Writing& writing) {
  std::vector<Layer> layers;
  for (std::size_t i = 0; i < cells.size(); ++i) layers.push_back(ResultLayer("cell " + std::to_string(i + 1), cells[i], writing));
  if (format != Format::kDxf && format != Format::kSvg) return WriteResults(format, layers, units, writing);
  Layer all;
  all.name = name;
  for (const Layer& layer : layers) {
    all.loops.insert(all.loops.end(), layer.loops.begin(), layer.loops.end());
    all.outlines.insert(all.outlines.end(), layer.outlines.begin(), layer.outlines.end());
    all.area += layer.area;
    all.pens = layer.pens;
  }
  return WriteRegion(format, all, units, writing);
}

}  // namespace

int RunNest(const NestOptions& options) {
  Progress progress;
  const std::string name = StemOf(options.file);
  const auto plans = PlanOutputs(options.outputs, {{name}, "", false}, FormatOption(options.input), options.file);
  NoteUnused(options.input.writing, plans, progress);
  const Loaded loaded = Load({options.file}, options.input, progress);
  OutputFiles files;
  if (options.input.flatten.faces == LineFaces::kAll) {
    NoteOpen(loaded.contours.front(), options.input, progress);
    const std::vector<CurvedRegion> cells = CellsOf(loaded.contours.front());
    if (plans.empty()) files.Add("-", ListCells(cells));
    for (const OutputPlan& plan : plans) files.Add(plan.file, WriteCells(plan.format, name, cells, loaded.units, loaded.writing));
  } else {
    const CurvedRegion shape = CurvedShape(LoadRegion(loaded.contours.front(), options.input, progress));
    if (plans.empty()) files.Add("-", List(shape.rings));
    for (const OutputPlan& plan : plans)
      files.Add(plan.file, WriteRegion(plan.format, ResultLayer(name, shape, loaded.writing), loaded.units, loaded.writing));
  }
  progress.Stage("");
  files.Commit();
  return kExitFine;
}

}  // namespace tool
