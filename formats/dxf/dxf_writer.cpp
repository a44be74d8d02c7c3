// Writes results as DXF: a closed polyline for each ring, with bulges for arcs, or what else its curves need, on a layer for each
// result.

#include <zbr-formats/dxf.h>

#include <array>

#include "formats/dxf/dxf_document.h"

namespace zbr::formats {

namespace {

// A layer for each result, in a colour of its own.
template <class Result>
DxfSetup SetupFor(const std::vector<Result>& layers, int units, DxfVersion version) {
  constexpr std::array<int, 6> kColours = {5, 1, 3, 6, 4, 30};  // blue, red, green, magenta, cyan, orange
  constexpr int kThin = 25;
  DxfSetup setup;
  setup.version = version;
  setup.units = units;
  for (std::size_t i = 0; i < layers.size(); ++i)
    setup.layers.push_back({layers[i].name, kColours[i % kColours.size()], kThin, "CONTINUOUS", false});
  return setup;
}

}  // namespace

std::string WriteDxf(const std::vector<Layer>& layers, int units, DxfVersion version) {
  DxfDocument document(SetupFor(layers, units, version));
  for (const Layer& layer : layers) {
    for (const Path& outline : layer.outlines) document.AddPath(outline, {layer.name});
    if (!layer.outlines.empty()) continue;
    ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) { document.AddPolyline(ring.pt(), true, {layer.name}); });
  }
  return document.Take();
}

std::string WriteDxf(const Drawing& drawing, DxfVersion version) {
  DxfSetup setup;
  setup.version = version;
  setup.units = drawing.units;
  setup.layers = drawing.layers;
  setup.lineTypes = drawing.lineTypes;
  DxfDocument document(setup);
  for (const Path& path : drawing.paths)
    document.AddPath(path, {std::string(path.layer.empty() ? "0" : path.layer), path.colour, std::string(path.lineType)});
  return document.Take();
}

std::string WriteDxfLines(const std::vector<LineLayer>& layers, int units, DxfVersion version) {
  DxfDocument document(SetupFor(layers, units, version));
  for (const LineLayer& layer : layers) {
    for (const SpaceLine& line : layer.lines) {
      if (!line.outline.points.empty()) {
        document.AddPath(line.outline, {layer.name});
        continue;
      }
      std::vector<ZBR_PT3> points = line.points;
      if (line.IsClosed()) points.pop_back();
      document.AddSpaceLine(points, line.IsClosed(), {layer.name});
    }
  }
  return document.Take();
}

}  // namespace zbr::formats
