// zbr info: what a drawing holds. Models have a report of their own.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cstdio>

#include "app/commands/info_mesh.h"
#include "app/commands/load.h"
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
  LoopList rings;
  for (const auto& outer : region.loops) {
    rings.push_back(outer);
    rings.insert(rings.end(), outer->children().begin(), outer->children().end());
  }
  const std::size_t holes = CountHoles(region.loops);
  std::string text;
  const auto line = [&](const std::string& label, const std::string& value) {
    text += label + std::string(10 - label.size(), ' ') + value + "\n";
  };
  line("file", BaseName(options.file));
  line("format", NameOf(loaded.format));
  if (!UnitName(loaded.units).empty()) line("units", UnitName(loaded.units));
  if (!loaded.layers.empty()) line("layers", Listed(loaded.layers));
  line("loops",
       std::to_string(rings.size()) + " (" + std::to_string(region.loops.size()) + " outer, " + std::to_string(holes) + " holes)");
  line("vertices", std::to_string(CountVertices(region.loops)));
  line("area", NumberText(loaded.frame.AreaOut(ZBR_LOOP::get_area(region.loops))));
  line("box", BoxText(ExtentOf(contours.rings)));
  line("depth", std::to_string(Depth(rings)));
  if (!contours.open.empty()) line("open", OpenText(contours.open.size()));
  progress.Stage("");
  WriteToStandardOutput(std::move(text));
  return kExitFine;
}

}  // namespace tool
