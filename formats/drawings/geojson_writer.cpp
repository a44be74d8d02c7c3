// GeoJSON: a collection with one feature for each result, a multi-polygon with the right-hand rule's orientation.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/drawings.h>

#include <cmath>

#include "formats/text/json_text.h"

namespace zbr::formats {
namespace {

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

// The start of a feature, up to its properties, among them a measure of it.
std::string FeatureStart(const std::string& name, const char* measure, double value, int units) {
  std::string text = R"({"type":"Feature","properties":{"name":)" + JsonOf(name);
  if (std::isfinite(value)) text += std::string(",\"") + measure + "\":" + NumberText(value);  // JSON has no infinity
  if (!UnitName(units).empty()) text += R"(,"units":)" + JsonOf(UnitName(units));
  return text;
}

void AppendFeature(std::string& text, const Layer& layer, int units) {
  // Of what is written, which of curves are chords.
  const double area = layer.outlines.empty() ? layer.area : zbrRegionOfLoops(layer.loops).area();
  text += FeatureStart(layer.name, "area", area, units);
  text += R"(},"geometry":{"type":"MultiPolygon","coordinates":[)";
  for (std::size_t i = 0; i < layer.loops.size(); ++i) {
    text += i > 0 ? ",\n" : "\n";
    AppendPolygon(text, *layer.loops[i]);
  }
  text += "]}}";
}

void AppendLine(std::string& text, const SpaceLine& line, bool heights) {
  for (const ZBR_PT3& p : line.points) {
    text += &p == &line.points.front() ? "[[" : ",[";
    AppendNumber(text, p.x());
    text += ',';
    AppendNumber(text, p.y());
    if (heights) {
      text += ',';
      AppendNumber(text, p.z());
    }
    text += ']';
  }
  text += ']';
}

}  // namespace

std::string WriteGeoJsonLines(const std::vector<LineLayer>& layers, int units, bool heights) {
  std::string text = "{\"type\":\"FeatureCollection\",\"features\":[";
  for (const LineLayer& layer : layers) {
    text += (&layer == &layers.front() ? "\n" : ",\n") + FeatureStart(layer.name, "length", layer.Length(), units);
    text += R"(,"side":")" + layer.side + R"("},"geometry":{"type":"MultiLineString","coordinates":[)";
    for (const SpaceLine& line : layer.lines) {
      text += &line == &layer.lines.front() ? "\n" : ",\n";
      AppendLine(text, line, heights);
    }
    text += "]}}";
  }
  return text + "\n]}\n";
}

std::string WriteGeoJson(const std::vector<Layer>& layers, int units) {
  std::string text = "{\"type\":\"FeatureCollection\",\"features\":[";
  for (std::size_t i = 0; i < layers.size(); ++i) {
    text += i > 0 ? ",\n" : "\n";
    AppendFeature(text, layers[i], units);
  }
  return text + "\n]}\n";
}

}  // namespace zbr::formats
