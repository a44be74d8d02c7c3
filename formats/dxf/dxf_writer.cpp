// Writes results as DXF: a closed polyline for each ring, with bulges for arcs, or what else its curves need, on a layer for each
// result.

#include <zbr-formats/dxf.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <set>

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

// The layers that results in the pens of their sources are drawn on.
DxfSetup SetupOfSources(const std::vector<Layer>& layers, int units, const DxfStyle& style) {
  std::set<std::string> used;
  for (const Layer& layer : layers) {
    if (layer.pens == nullptr) continue;
    for (const Path& outline : layer.outlines) {
      for (const std::int32_t pen : outline.pens) used.insert((*layer.pens)[static_cast<std::size_t>(pen)].layer);
    }
  }
  DxfSetup setup;
  setup.version = style.version;
  setup.units = units;
  setup.lineTypes = style.lineTypes;
  for (const DrawingLayer& layer : style.layers) {
    if (used.contains(layer.name)) setup.layers.push_back(layer);
  }
  return setup;
}

// Edge i of a path as a path of its own.
Path EdgeOf(const Path& path, std::size_t i, const Curve* curve) {
  Path edge;
  edge.closed = path.points.size() == 1;
  edge.points = {path.points[i]};
  if (!edge.closed) edge.points.push_back(path.points[i + 1 < path.points.size() ? i + 1 : 0]);
  if (curve != nullptr) edge.curves = {*curve};
  if (curve != nullptr) edge.curves[0].at = 0;
  return edge;
}

// Draws the outlines of one result.
class OutlineWriter {
 public:
  OutlineWriter(const Layer& layer, const DxfStyle& style, DxfDocument& document)
      : layer_(layer), style_(style), document_(document) {}

  void Add(const Path& outline) {
    if (!style_.entities) return document_.AddPath(outline, PenOf(MainPen(outline)));
    auto curve = outline.curves.begin();
    for (std::size_t i = 0; i < outline.points.size(); ++i) {
      const bool isCurve = curve != outline.curves.end() && curve->at == i;
      document_.AddPath(EdgeOf(outline, i, isCurve ? &*curve : nullptr), PenOf(outline.pens.empty() ? -1 : outline.pens[i]));
      if (isCurve) ++curve;
    }
  }

 private:
  DxfPen PenOf(std::int32_t pen) const {
    if (!style_.keepsPens) return {layer_.name};
    if (pen < 0 || layer_.pens == nullptr) return {"0"};
    const Pen& source = (*layer_.pens)[static_cast<std::size_t>(pen)];
    return {source.layer.empty() ? "0" : source.layer, source.colour, source.lineType};
  }

  // By the lengths of chords; of equals the first.
  static std::int32_t MainPen(const Path& outline) {
    std::map<std::int32_t, double> lengths;
    for (std::size_t i = 0; i < outline.pens.size(); ++i)
      lengths[outline.pens[i]] += outline.points[i].Distance(outline.points[i + 1 < outline.points.size() ? i + 1 : 0]);
    const auto longest =
        std::max_element(lengths.begin(), lengths.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
    return longest == lengths.end() ? -1 : longest->first;
  }

  const Layer& layer_;
  const DxfStyle& style_;
  DxfDocument& document_;
};

}  // namespace

std::string WriteDxf(const std::vector<Layer>& layers, int units, const DxfStyle& style) {
  DxfDocument document(style.keepsPens ? SetupOfSources(layers, units, style) : SetupFor(layers, units, style.version));
  for (const Layer& layer : layers) {
    OutlineWriter writer(layer, style, document);
    for (const Path& outline : layer.outlines) writer.Add(outline);
    if (!layer.outlines.empty()) continue;
    ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) {
      Path path;
      path.points = ring.pt();
      path.closed = true;
      writer.Add(path);
    });
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
  for (const Path& path : drawing.paths) {
    const DxfPen pen{std::string(path.layer.empty() ? "0" : path.layer), path.colour, std::string(path.lineType)};
    const bool isRaised = std::any_of(path.heights.begin(), path.heights.end(), [](double z) { return z != 0; });
    if (!isRaised || !path.curves.empty()) {
      document.AddPath(path, pen);
      continue;
    }
    std::vector<ZBR_PT3> points;
    for (std::size_t i = 0; i < path.points.size(); ++i)
      points.emplace_back(path.points[i].x(), path.points[i].y(), path.heights[i]);
    document.AddSpaceLine(points, path.closed, pen);
  }
  return document.Take();
}

std::string WriteDxfLines(const std::vector<LineLayer>& layers, int units, const DxfStyle& style) {
  DxfSetup setup = SetupFor(layers, units, style.version);
  if (style.keepsPens) setup.lineTypes = style.lineTypes;
  for (std::size_t i = 0; i < layers.size() && style.keepsPens; ++i) {
    const auto isSource = [&](const DrawingLayer& l) { return !layers[i].lines.empty() && l.name == layers[i].lines[0].layer; };
    const auto source = std::find_if(style.layers.begin(), style.layers.end(), isSource);
    const std::string name = setup.layers[i].name;
    if (source != style.layers.end()) setup.layers[i] = *source;
    setup.layers[i].name = name;
  }
  DxfDocument document(setup);
  for (const LineLayer& layer : layers) {
    for (const SpaceLine& line : layer.lines) {
      DxfPen pen{layer.name};
      if (style.keepsPens) pen = {layer.name, line.colour, std::string(line.lineType)};
      if (!line.outline.points.empty()) {
        document.AddPath(line.outline, pen);
        continue;
      }
      std::vector<ZBR_PT3> points = line.points;
      if (line.IsClosed()) points.pop_back();
      document.AddSpaceLine(points, line.IsClosed(), pen);
    }
  }
  return document.Take();
}

}  // namespace zbr::formats
