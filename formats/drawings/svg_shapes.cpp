#include "formats/drawings/svg_shapes.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "formats/drawings/svg_path.h"
#include "formats/drawings/svg_values.h"

namespace zbr::formats {
namespace {

using drawing::Curve;
using drawing::Path;
using Paths = std::optional<std::vector<Path>>;

// The lengths of an element; whether any is malformed is asked at the end.
class Lengths {
 public:
  Lengths(const XmlElement& element, const SvgViewport& viewport) : element_(element), viewport_(viewport) {}

  double X(const char* name) { return Value(name, viewport_.width).value_or(0.0); }
  double Y(const char* name) { return Value(name, viewport_.height).value_or(0.0); }
  double Width() { return Size("width", viewport_.width).value_or(0.0); }
  double Height() { return Size("height", viewport_.height).value_or(0.0); }
  std::optional<double> RadiusX(const char* name) { return Size(name, viewport_.width); }
  std::optional<double> RadiusY(const char* name) { return Size(name, viewport_.height); }
  double Radius() {
    return Size("r", std::sqrt((viewport_.width * viewport_.width + viewport_.height * viewport_.height) / 2)).value_or(0.0);
  }
  bool AreGood() const { return good_; }

 private:
  // A negative one is malformed.
  std::optional<double> Size(const char* name, double whole) {
    const std::optional<double> size = Value(name, whole);
    good_ = good_ && !(size && *size < 0);
    return size;
  }

  std::optional<double> Value(const char* name, double whole) {
    const std::string& text = element_.Attribute(name);
    if (text.empty() || text == "auto") return std::nullopt;
    const std::optional<SvgLength> length = ParseSvgLength(text);
    good_ = good_ && length;
    return length ? std::optional<double>(length->InUserUnits(whole)) : std::nullopt;
  }

  const XmlElement& element_;
  const SvgViewport& viewport_;
  bool good_ = true;
};

std::vector<Path> WholeEllipse(double x, double y, double rx, double ry) {
  if (!(rx > 0) || !(ry > 0)) return {};
  Curve ellipse;
  ellipse.centre.Set(x, y);
  ellipse.u.Set(rx, 0);
  ellipse.v.Set(0, ry);
  ellipse.t1 = drawing::kFullTurn;
  Path path;
  path.points = {ellipse.At(0)};
  path.curves = {ellipse};
  path.closed = true;
  return {path};
}

// Corners are quarters of an ellipse, where there are any.
std::vector<Path> Rectangle(Lengths& lengths) {
  const double x = lengths.X("x"), y = lengths.Y("y"), width = lengths.Width(), height = lengths.Height();
  const std::optional<double> rx = lengths.RadiusX("rx"), ry = lengths.RadiusY("ry");
  if (!(width > 0) || !(height > 0)) return {};
  const double a = std::clamp(rx.value_or(ry.value_or(0.0)), 0.0, width / 2);
  const double b = std::clamp(ry.value_or(rx.value_or(0.0)), 0.0, height / 2);
  const double right = x + width, bottom = y + height;
  SvgPathMaker maker;
  const auto corner = [&](double toX, double toY) { maker.ArcTo(a, b, 0.0, false, true, ZBR_PT(toX, toY)); };
  maker.MoveTo(ZBR_PT(x + a, y));
  maker.LineTo(ZBR_PT(right - a, y));
  corner(right, y + b);
  maker.LineTo(ZBR_PT(right, bottom - b));
  corner(right - a, bottom);
  maker.LineTo(ZBR_PT(x + a, bottom));
  corner(x, bottom - b);
  maker.LineTo(ZBR_PT(x, y + b));
  corner(x + a, y);
  maker.Close();
  return maker.Take();
}

Paths Points(const XmlElement& element, bool closes) {
  const std::optional<std::vector<double>> numbers = SvgNumberList(element.Attribute("points"));
  if (!numbers || numbers->size() % 2 != 0) return std::nullopt;
  SvgPathMaker maker;
  for (std::size_t i = 0; i < numbers->size(); i += 2) {
    const ZBR_PT p((*numbers)[i], (*numbers)[i + 1]);
    i == 0 ? maker.MoveTo(p) : maker.LineTo(p);
  }
  if (closes) maker.Close();
  return maker.Take();
}

}  // namespace

bool IsSvgShape(std::string_view name) {
  static constexpr std::array<std::string_view, 7> kShapes = {"path", "rect", "circle", "ellipse", "line", "polyline", "polygon"};
  return std::find(kShapes.begin(), kShapes.end(), name) != kShapes.end();
}

Paths SvgShapePaths(const XmlElement& element, const SvgViewport& viewport) {
  if (element.name == "path") return ParseSvgPath(element.Attribute("d"));
  if (element.name == "polyline" || element.name == "polygon") return Points(element, element.name == "polygon");
  Lengths lengths(element, viewport);
  std::vector<Path> paths;
  if (element.name == "rect") {
    paths = Rectangle(lengths);
  } else if (element.name == "line") {
    SvgPathMaker maker;
    maker.MoveTo(ZBR_PT(lengths.X("x1"), lengths.Y("y1")));
    maker.LineTo(ZBR_PT(lengths.X("x2"), lengths.Y("y2")));
    paths = maker.Take();
  } else {
    const double x = lengths.X("cx"), y = lengths.Y("cy");
    const bool isCircle = element.name == "circle";
    const double rx = isCircle ? lengths.Radius() : lengths.RadiusX("rx").value_or(lengths.RadiusY("ry").value_or(0.0));
    const double ry = isCircle ? rx : lengths.RadiusY("ry").value_or(rx);
    paths = WholeEllipse(x, y, rx, ry);
  }
  return lengths.AreGood() ? Paths(std::move(paths)) : std::nullopt;
}

}  // namespace zbr::formats
