// Path data of SVG as paths of a drawing.
#pragma once

#include <zbr-drawing/drawing.h>

#include <optional>
#include <string_view>
#include <vector>

namespace zbr::formats {

// A path made edge by edge.
class SvgPathMaker {
 public:
  void MoveTo(const ZBR_PT& p);
  void LineTo(const ZBR_PT& p);
  void BezierTo(const std::vector<ZBR_PT>& controls);  // behind the current point; the last one is the end
  // Of an ellipse with these half axes, the first one turned by this angle; too short ones grow.
  void ArcTo(double rx, double ry, double degrees, bool isLarge, bool isPositive, const ZBR_PT& p);
  void Close();
  std::vector<drawing::Path> Take();

  const ZBR_PT& current() const { return current_; }

 private:
  void Start();
  void AddCurve(drawing::Curve curve, const ZBR_PT& end);

  std::vector<drawing::Path> paths_;
  bool isOpen_ = false;  // the last one goes on
  ZBR_PT start_, current_;
};

// The paths that a "d" attribute describes; nothing where it is malformed.
std::optional<std::vector<drawing::Path>> ParseSvgPath(std::string_view text);

}  // namespace zbr::formats
