// Well-known text: one line for each result.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>

namespace zbr::formats {
namespace {

void AppendRing(std::string& text, const std::vector<ZBR_PT>& points) {
  text += '(';
  for (std::size_t i = 0; i <= points.size(); ++i) {
    const ZBR_PT& p = points[i % points.size()];  // rings repeat their first point
    if (i > 0) text += ", ";
    AppendNumber(text, p.x());
    text += ' ';
    AppendNumber(text, p.y());
  }
  text += ')';
}

void AppendPolygon(std::string& text, const ZBR_LOOP& outer) {
  text += '(';
  AppendRing(text, outer.pt());
  for (const auto& hole : outer.children()) {
    text += ", ";
    AppendRing(text, hole->pt());
  }
  text += ')';
}

void AppendLine(std::string& text, const SpaceLine& line, bool heights) {
  text += '(';
  for (const ZBR_PT3& p : line.points) {
    if (&p != &line.points.front()) text += ", ";
    AppendNumber(text, p.x());
    text += ' ';
    AppendNumber(text, p.y());
    if (!heights) continue;
    text += ' ';
    AppendNumber(text, p.z());
  }
  text += ')';
}

}  // namespace

std::string WriteWktLines(const std::vector<LineLayer>& layers, bool heights) {
  std::string text;
  for (const LineLayer& layer : layers) {
    text += heights ? "MULTILINESTRING Z " : "MULTILINESTRING ";
    if (layer.lines.empty()) text += "EMPTY";
    for (const SpaceLine& line : layer.lines) {
      text += &line == &layer.lines.front() ? "(" : ", ";
      AppendLine(text, line, heights);
    }
    text += layer.lines.empty() ? "\n" : ")\n";
  }
  return text;
}

std::string WriteWkt(const std::vector<Layer>& layers) {
  std::string text;
  for (const Layer& layer : layers) {
    text += layer.loops.size() == 1 ? "POLYGON " : "MULTIPOLYGON ";
    if (layer.loops.empty()) text += "EMPTY";
    if (layer.loops.size() > 1) text += '(';
    for (std::size_t i = 0; i < layer.loops.size(); ++i) {
      if (i > 0) text += ", ";
      AppendPolygon(text, *layer.loops[i]);
    }
    if (layer.loops.size() > 1) text += ')';
    text += '\n';
  }
  return text;
}

}  // namespace zbr::formats
