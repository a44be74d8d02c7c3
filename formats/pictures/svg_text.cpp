// Coordinates, paths and texts of SVG.
#include "formats/pictures/svg_text.h"

#include <zbr-drawing/contours.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "formats/text/utf8.h"

namespace zbr::formats {
namespace {

constexpr double kMergeDistance = 0.05;  // pixels: far below what a screen or a printer shows

void AppendPx(std::string& text, double value) {
  std::array<char, 64> buffer;
  const double hundredths = std::round(value * 100.0) / 100.0 + 0.0;
  text.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), hundredths).ptr);
}

void AppendPoint(std::string& text, char command, const ZBR_PT& p) {
  text += command;
  AppendPx(text, p.x());
  text += ' ';
  AppendPx(text, p.y());
}

// Points too close to the one before are left out, but for one that would leave nothing to see.
void AppendPoints(std::string& text, const std::vector<ZBR_PT>& points, const PageMap& map) {
  ZBR_PT last = map(points.front());
  AppendPoint(text, 'M', last);
  bool any = false;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const ZBR_PT q = map(points[i]);
    if (q.Distance(last) < kMergeDistance && (any || i + 1 < points.size())) continue;
    AppendPoint(text, 'L', q);
    last = q;
    any = true;
  }
}

// A number of the page, and a blank before it.
void AppendNumber(std::string& text, double value) {
  text += ' ';
  AppendPx(text, value);
}

// The part of an ellipse from t0 to t1, at most half a turn. Counter-clockwise is what the page calls the negative direction.
void AppendArc(std::string& text, const Curve& axes, bool isReversed, const ZBR_PT& to, const PageMap& map) {
  constexpr double kDegrees = 360.0 / kFullTurn;
  text += 'A';
  AppendPx(text, Hypot(axes.u.x(), axes.u.y()) * map.PixelsPerUnit());
  AppendNumber(text, Hypot(axes.v.x(), axes.v.y()) * map.PixelsPerUnit());
  AppendNumber(text, axes.IsCircular() ? 0.0 : -Atan2(axes.u.y(), axes.u.x()) * kDegrees);
  text += isReversed ? " 0 1" : " 0 0";
  const ZBR_PT q = map(to);
  AppendNumber(text, q.x());
  AppendNumber(text, q.y());
}

// A stretch of a spline: Bezier curves where the page knows them, which it does up to the third degree and without weights.
void AppendSpline(std::string& text, const Curve& curve, const ZBR_PT& to, const PageMap& map) {
  constexpr std::array<char, 4> kCommands = {' ', 'L', 'Q', 'C'};
  const auto degree = static_cast<std::size_t>(curve.spline->degree);
  if (degree >= kCommands.size() || !curve.spline->weights.empty()) {
    Path alone;
    alone.points = {curve.At(curve.t0), to};
    alone.curves = {curve};
    alone.curves[0].at = 0;
    FlattenPath(alone, kMergeDistance / map.PixelsPerUnit(), [&](const ZBR_PT& p, std::size_t i, double part) {
      if (i > 0 || part > 0) AppendPoint(text, 'L', map(p));
    });
    return;
  }
  const Spline stretch = Trimmed(*curve.spline, curve.t0, curve.t1);
  for (std::size_t i = 1; i < stretch.control.size(); ++i) {
    const ZBR_PT q = map(i + 1 < stretch.control.size() ? stretch.control[i] : to);
    AppendPoint(text, i % degree == 1 || degree == 1 ? kCommands[degree] : ' ', q);
  }
}

// A curve, but for where it starts. Ellipses in parts of less than half a turn.
void AppendCurve(std::string& text, const Curve& curve, const ZBR_PT& to, const PageMap& map) {
  constexpr double kLongest = 3.0;
  if (curve.spline != nullptr) return AppendSpline(text, curve, to, map);
  const double sweep = curve.t1 - curve.t0;
  const int parts = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kLongest)));
  const bool isReversed = (curve.u.x() * curve.v.y() - curve.u.y() * curve.v.x()) * sweep < 0;
  const Curve axes = OnAxes(curve);
  for (int i = 1; i <= parts; ++i) AppendArc(text, axes, isReversed, i == parts ? to : curve.At(curve.t0 + sweep * i / parts), map);
}

void AppendPath(std::string& text, const Path& path, const PageMap& map) {
  const std::size_t edges = path.EdgeCount();
  auto curve = path.curves.begin();
  AppendPoint(text, 'M', map(path.points.front()));
  for (std::size_t i = 0; i < edges; ++i) {
    const ZBR_PT& from = path.points[i];
    const ZBR_PT& to = path.points[i + 1 < path.points.size() ? i + 1 : 0];
    const bool isCurve = curve != path.curves.end() && curve->at == i;
    const bool isWhole = path.points.size() == 1;
    const bool isTiny = !isWhole && map(from).Distance(map(to)) < kMergeDistance &&
                        !(isCurve && map(curve->At((curve->t0 + curve->t1) / 2)).Distance(map(from)) >= kMergeDistance);
    if (isCurve && !isTiny) {
      AppendCurve(text, *curve, to, map);
    } else if (i + 1 < path.points.size()) {
      AppendPoint(text, 'L', map(to));
    }
    if (isCurve) ++curve;
  }
  text += path.closed ? "Z\n" : "\n";
}

}  // namespace

PageMap::PageMap(const Extent& extent, double width, double height) : boxMiddle_(width / 2, height / 2) {
  if (extent.empty()) return;
  middle_.Set(extent.xmin / 2 + extent.xmax / 2, extent.ymin / 2 + extent.ymax / 2);
  const double halfWidth = extent.xmax / 2 - extent.xmin / 2;
  const double halfHeight = extent.ymax / 2 - extent.ymin / 2;
  if (halfWidth > 0 || halfHeight > 0) scale_ = 1.0 / std::max(halfWidth / (width / 2), halfHeight / (height / 2));
}

ZBR_PT PageMap::operator()(const ZBR_PT& p) const {
  return ZBR_PT(boxMiddle_.x() + (p.x() - middle_.x()) * scale_, boxMiddle_.y() - (p.y() - middle_.y()) * scale_);
}

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size();) {
    const auto [code, length] = CharacterAt(text, i);
    const char c = text[i];
    if (code < 0x20) {
      escaped += c == '\n' || c == '\r' || c == '\t' ? ' ' : '?';
    } else if (c == '&' || c == '<' || c == '>' || c == '"') {
      escaped += c == '&' ? "&amp;" : (c == '<' ? "&lt;" : (c == '>' ? "&gt;" : "&quot;"));
    } else {
      escaped += text.substr(i, length);
    }
    i += length;
  }
  return escaped;
}

std::string Px(double value) {
  std::string text;
  AppendPx(text, value);
  return text;
}

std::string PathData(const LoopList& loops, const PageMap& map) {
  std::string text;
  ForEachRing(loops, [&](const ZBR_LOOP& ring) {
    if (ring.pt().empty()) return;
    AppendPoints(text, ring.pt(), map);
    text += "Z\n";
  });
  return text;
}

std::string PathData(const Layer& layer, const PageMap& map) {
  if (layer.outlines.empty()) return PathData(layer.loops, map);
  return PathData(layer.outlines, map);
}

std::string PathData(const std::vector<Path>& paths, const PageMap& map) {
  std::string text;
  for (const Path& path : paths) {
    if (!path.points.empty()) AppendPath(text, path, map);
  }
  return text;
}

std::string PathData(const std::vector<ZBR_PT>& line, const PageMap& map) {
  if (line.empty()) return "";
  const bool isClosed = line.size() > 2 && line.front().x() == line.back().x() && line.front().y() == line.back().y();
  std::string text;
  AppendPoints(text, line, map);
  return text + (isClosed ? "Z\n" : "\n");
}

std::string TextElement(double x, double y, const std::string& style, const std::string& text) {
  return "<text x=\"" + Px(x) + "\" y=\"" + Px(y) + "\" " + style + ">" + Escaped(text) + "</text>\n";
}

}  // namespace zbr::formats
