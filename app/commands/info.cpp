// zbr info: what a drawing holds. Models have a report of their own.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cstdio>

#include "app/commands/info_mesh.h"
#include "app/commands/load.h"
#include "app/commands/report.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

std::string BoxText(const Extent& box) {
  if (box.empty()) return "none";
  return NumberText(box.xmin) + " " + NumberText(box.ymin) + " to " + NumberText(box.xmax) + " " + NumberText(box.ymax);
}

int Depth(const ZBR_REGION& shape) {
  std::vector<std::int32_t> depths, parents;
  zbrNestRegion(shape.view(), depths, parents);
  return depths.empty() ? 0 : *std::max_element(depths.begin(), depths.end()) + 1;
}

}  // namespace

int RunInfo(const FileOptions& options) {
  if (IsMeshFile(options.file) || !options.modelFormat.empty()) return RunMeshInfo(options);
  Progress progress;
  const Loaded loaded = Load({options.file}, options.input, progress);
  const Contours& contours = loaded.contours.front();
  const CurvedRegion region = CurvedShape(LoadRegion(contours, options.input, progress));
  const ZBR_REGION& shape = region.rings;
  const std::size_t holes = shape.ring_count() - shape.polygon_count();
  Report report;
  report.Line("file", BaseName(options.file));
  report.Line("format", NameOf(loaded.format));
  if (!UnitName(loaded.units).empty()) report.Line("units", UnitName(loaded.units));
  if (!loaded.layers.empty()) report.Line("layers", Listed(loaded.layers));
  report.Line("loops", std::to_string(shape.ring_count()) + " (" + std::to_string(shape.polygon_count()) + " outer, " +
                           std::to_string(holes) + " holes)");
  report.Line("vertices", std::to_string(shape.point_count()));
  report.Line("area", NumberText(region.Area()));
  report.Line("box", BoxText(ExtentOf(contours.rings)));
  report.Line("depth", std::to_string(Depth(shape)));
  if (!contours.open.empty()) report.Line("open", OpenText(contours.open.size()));
  progress.Stage("");
  WriteToStandardOutput(report.Listed(kReportColumn));
  return kExitFine;
}

}  // namespace tool
