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

std::string Listed(const std::set<std::string>& names) {
  constexpr std::size_t kMost = 20;
  std::string text;
  std::size_t count = 0;
  for (const std::string& name : names) {
    if (count++ == kMost) return text + " and " + std::to_string(names.size() - kMost) + " more";
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

int Depth(const LoopList& rings) {
  const std::vector<int> depths = NestingDepths(rings);
  return depths.empty() ? 0 : *std::max_element(depths.begin(), depths.end()) + 1;
}

}  // namespace

int RunInfo(const FileOptions& options) {
  if (IsMeshFile(options.file) || !options.modelFormat.empty()) return RunMeshInfo(options);
  Progress progress;
  const Loaded loaded = Load({options.file}, options.input, progress);
  const Contours& contours = loaded.contours.front();
  const Region region = LoadRegion(contours, loaded.frame, progress);
  const LoopList rings = RingsOf(region.loops);
  const std::size_t holes = CountHoles(region.loops);
  Report report;
  report.Line("file", BaseName(options.file));
  report.Line("format", NameOf(loaded.format));
  if (!UnitName(loaded.units).empty()) report.Line("units", UnitName(loaded.units));
  if (!loaded.layers.empty()) report.Line("layers", Listed(loaded.layers));
  report.Line("loops", std::to_string(rings.size()) + " (" + std::to_string(region.loops.size()) + " outer, " +
                           std::to_string(holes) + " holes)");
  report.Line("vertices", std::to_string(CountVertices(region.loops)));
  report.Line("area", NumberText(loaded.frame.AreaOut(ZBR_LOOP::get_area(region.loops))));
  report.Line("box", BoxText(ExtentOf(contours.rings)));
  report.Line("depth", std::to_string(Depth(rings)));
  if (!contours.open.empty()) report.Line("open", OpenText(contours.open.size()));
  progress.Stage("");
  WriteToStandardOutput(report.Listed(kReportColumn));
  return kExitFine;
}

}  // namespace tool
