// GeoJSON: a collection with one feature for each result, a multi-polygon with the right-hand rule's orientation.

#include <cmath>
#include <nlohmann/json.hpp>

#include "formats/format.h"
#include "geometry/units.h"
#include "io/numbers.h"

namespace tool {
namespace {

std::string JsonString(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void AppendRing(std::string& text, const std::vector<ZBR_PT>& points) {
  text += '[';
  for (std::size_t i = 0; i <= points.size(); ++i) {
    const ZBR_PT& p = points[i % points.size()];  // rings repeat their first point
    text += i > 0 ? ",[" : "[";
    AppendNumber(text, p.x());
    text += ',';
    AppendNumber(text, p.y());
    text += ']';
  }
  text += ']';
}

void AppendPolygon(std::string& text, const ZBR_LOOP& outer) {
  text += '[';
  AppendRing(text, outer.pt());
  for (const auto& hole : outer.children()) {
    text += ',';
    AppendRing(text, hole->pt());
  }
  text += ']';
}

void AppendFeature(std::string& text, const Layer& layer, int units) {
  text += R"({"type":"Feature","properties":{"name":)" + JsonString(layer.name);
  if (std::isfinite(layer.area)) text += R"(,"area":)" + NumberText(layer.area);  // JSON has no infinity
  if (!UnitName(units).empty()) text += R"(,"units":)" + JsonString(UnitName(units));
  text += R"(},"geometry":{"type":"MultiPolygon","coordinates":[)";
  for (std::size_t i = 0; i < layer.loops.size(); ++i) {
    text += i > 0 ? ",\n" : "\n";
    AppendPolygon(text, *layer.loops[i]);
  }
  text += "]}}";
}

}  // namespace

std::string WriteGeoJson(const std::vector<Layer>& layers, int units) {
  std::string text = "{\"type\":\"FeatureCollection\",\"features\":[";
  for (std::size_t i = 0; i < layers.size(); ++i) {
    text += i > 0 ? ",\n" : "\n";
    AppendFeature(text, layers[i], units);
  }
  return text + "\n]}\n";
}

}  // namespace tool
