// Well-known text: one line for each result.

#include <zbr-drawing/contours.h>
#include <zbr-drawing/measures.h>
#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>

#include <cmath>

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

void AppendPoint(std::string& text, const ZBR_PT& p) {
  AppendNumber(text, p.x());
  text += ' ';
  AppendNumber(text, p.y());
}

void AppendChords(std::string& text, const Curve& curve, const ZBR_PT& from, const ZBR_PT& to, double deviation) {
  Path alone;
  alone.points = {from, to};
  alone.curves = {curve};
  alone.curves[0].at = 0;
  const char* separator = "(";
  FlattenPath(alone, deviation, [&](const ZBR_PT& p, std::size_t, double) {
    text += separator;
    AppendPoint(text, p);
    separator = ", ";
  });
  text += ')';
}

// One edge of an outline: arcs of circles by three points, or five all around; other curves by chords.
void AppendCurve(std::string& text, const Curve& curve, const ZBR_PT& from, const ZBR_PT& to, double deviation) {
  constexpr double kAlmostWhole = 6.0;  // radians: three points tell no whole circle
  if (!curve.IsCircular()) return AppendChords(text, curve, from, to, deviation);
  const int parts = std::abs(curve.t1 - curve.t0) > kAlmostWhole ? 4 : 2;
  text += "CIRCULARSTRING (";
  AppendPoint(text, from);
  for (int k = 1; k <= parts; ++k) {
    text += ", ";
    AppendPoint(text, k == parts ? to : curve.At(curve.t0 + (curve.t1 - curve.t0) * k / parts));
  }
  text += ')';
}

void AppendOutline(std::string& text, const Path& path, double deviation) {
  const bool isCompound = path.points.size() > 1;
  if (isCompound) text += "COMPOUNDCURVE (";
  auto curve = path.curves.begin();
  bool inLine = false;
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    const ZBR_PT &from = path.points[i], &to = path.points[i + 1 < path.points.size() ? i + 1 : 0];
    const bool isCurve = curve != path.curves.end() && curve->at == i;
    if (inLine && isCurve) text += ')';
    if (i > 0 && (isCurve || !inLine)) text += ", ";
    if (isCurve) {
      AppendCurve(text, *curve++, from, to, deviation);
    } else {
      if (!inLine) {
        text += '(';
        AppendPoint(text, from);
      }
      text += ", ";
      AppendPoint(text, to);
    }
    inLine = !isCurve;
  }
  if (inLine) text += ')';
  if (isCompound) text += ')';
}

void AppendCurvedLayer(std::string& text, const Layer& layer, double deviation) {
  const bool isOne = layer.loops.size() == 1;
  if (!isOne) text += "MULTISURFACE (";
  auto outline = layer.outlines.begin();
  for (const auto& loop : layer.loops) {
    if (loop != layer.loops.front()) text += ", ";
    text += "CURVEPOLYGON (";
    AppendOutline(text, *outline++, deviation);
    for (std::size_t hole = 0; hole < loop->children().size(); ++hole) {
      text += ", ";
      AppendOutline(text, *outline++, deviation);
    }
    text += ')';
  }
  text += isOne ? "\n" : ")\n";
}

}  // namespace

std::string WriteWktCurves(const std::vector<Layer>& layers, double deviation) {
  std::string text;
  Extent extent;
  for (const Layer& layer : layers) {
    for (const Path& outline : layer.outlines) extent.Add(TrueExtentOf(outline));
  }
  const double chords = WithDefaults({deviation > 0 ? deviation : -1.0, -1.0}, extent).deviation;
  for (const Layer& layer : layers) {
    if (layer.outlines.empty()) {
      text += WriteWkt({layer});
    } else {
      AppendCurvedLayer(text, layer, chords);
    }
  }
  return text;
}

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
