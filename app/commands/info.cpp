// zbr info: what a drawing holds. Models have a report of their own.

#include <zbr-drawing/measures.h>
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cstdio>

#include "app/commands/info_mesh.h"
#include "app/commands/json.h"
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

std::string TextReport(const Loaded& loaded, const std::string& file, const Extent& box, const CurvedRegion& region) {
  const ZBR_REGION& shape = region.rings;
  const std::size_t holes = shape.ring_count() - shape.polygon_count();
  Report report;
  report.Line("file", BaseName(file));
  report.Line("format", NameOf(loaded.format));
  if (!UnitName(loaded.units).empty()) report.Line("units", UnitName(loaded.units));
  if (!loaded.layers.empty()) report.Line("layers", Listed(loaded.layers));
  report.Line("loops", std::to_string(shape.ring_count()) + " (" + std::to_string(shape.polygon_count()) + " outer, " +
                           std::to_string(holes) + " holes)");
  report.Line("vertices", std::to_string(shape.point_count()));
  report.Line("area", NumberText(region.Area()));
  report.Line("box", BoxText(box));
  report.Line("depth", std::to_string(Depth(shape)));
  const std::size_t open = loaded.contours.front().open.size();
  if (open > 0) report.Line("open", OpenText(open));
  return report.Listed(kReportColumn);
}

Json LeftOutJson(const Loaded& loaded) {
  Json list = Json::array();
  for (const auto& [what, left] : loaded.leftOut.front())
    list.push_back({{"what", what}, {"count", left.count}, {"line", left.line}, {"bears_contours", left.bearsContours}});
  return list;
}

std::string JsonReport(const Loaded& loaded, const std::string& file, const Extent& box, const CurvedRegion& region) {
  const ZBR_REGION& shape = region.rings;
  const RegionMeasures measures = MeasuresOf(region);
  const std::string units = UnitName(loaded.units);
  Json json = {{"file", BaseName(file)},
               {"format", NameOf(loaded.format)},
               {"units", units.empty() ? Json() : Json(units)},
               {"layers", loaded.layers},
               {"loops", shape.ring_count()},
               {"outer", shape.polygon_count()},
               {"holes", shape.ring_count() - shape.polygon_count()},
               {"vertices", shape.point_count()},
               {"depth", Depth(shape)},
               {"area", measures.area},
               {"perimeter", measures.perimeter},
               {"centroid", shape.empty() ? Json() : JsonOf(measures.centroid)},
               {"second_moments", {{"x", measures.ix}, {"y", measures.iy}, {"xy", measures.ixy}}},
               {"box", Json()},
               {"open", loaded.contours.front().open.size()},
               {"left_out", LeftOutJson(loaded)}};
  if (!box.empty()) json["box"] = {{"low", JsonOf(ZBR_PT(box.xmin, box.ymin))}, {"high", JsonOf(ZBR_PT(box.xmax, box.ymax))}};
  return TextOf(json);
}

}  // namespace

int RunInfo(const FileOptions& options) {
  if (IsMeshFile(options.file) || !options.modelFormat.empty()) return RunMeshInfo(options);
  Progress progress;
  const Loaded loaded = Load({options.file}, options.input, progress);
  const Region drawn = LoadRegion(loaded.contours.front(), options.input, progress);
  const CurvedRegion region = CurvedShape(drawn);
  const Extent box = drawn.HasCurves() ? TrueExtentOf(drawn) : ExtentOf(loaded.contours.front().rings);
  progress.Stage("");
  WriteToStandardOutput((options.json ? JsonReport : TextReport)(loaded, options.file, box, region));
  return kExitFine;
}

}  // namespace tool
