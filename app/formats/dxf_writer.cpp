// Writes results as DXF: a closed polyline for each ring, on a layer for each result.

#include <array>

#include "formats/dxf_document.h"
#include "formats/format.h"

namespace tool {

std::string WriteDxf(const std::vector<Layer>& layers, int units) {
  constexpr std::array<int, 6> kColours = {5, 1, 3, 6, 4, 30};  // blue, red, green, magenta, cyan, orange
  constexpr int kThin = 25;
  DxfSetup setup;
  setup.variables = {{"$INSUNITS", units}};
  for (std::size_t i = 0; i < layers.size(); ++i)
    setup.layers.push_back({layers[i].name, kColours[i % kColours.size()], kThin, "CONTINUOUS", false});
  DxfDocument document(setup);
  for (const Layer& layer : layers)
    ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) { document.AddPolyline(ring.pt(), true, layer.name); });
  return document.Take();
}

}  // namespace tool
