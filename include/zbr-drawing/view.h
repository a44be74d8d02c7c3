// Where a model is seen from.
//
//   const View front = *NamedView("front");
//   const View oblique = LookAlong({1, 2, -1}, {0, 0, 1});   // direction of looking; what is drawn upwards
//   const ZBR_PT3 p = oblique.In(point);                      // p.x() to the right, p.y() up, p.z() to the viewer
//
//   const View near = LookFrom({9, -5, 3}, {0, 0, 1}, {0, 0, 1});  // the eye, what is in the middle of the picture, upwards
//
// Lengths stay as they are: views are parallel projections, but for those from an eye.
#pragma once

#include <zbr/spatial.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::drawing {

// What is at this distance from the eye, along the line of sight, is drawn in its size.
struct Perspective {
  ZBR_PT3 eye;
  double distance = 1.0;     // positive
  double fieldOfView = 0.0;  // degrees across the picture, which is square and cut off there; 0: all that is in front of the eye

  // What is closer to the eye is not seen.
  double Nearest() const { return distance * kNearest; }
  static constexpr double kNearest = 0.02;
};

// The axes of a drawing in the model's coordinates: of length 1, at right angles to each other, right-handed.
struct View {
  ZBR_PT3 right{1, 0, 0}, up{0, 1, 0}, toViewer{0, 0, 1};
  std::optional<Perspective> perspective = std::nullopt;

  // Whether it looks along an axis of the model, as the views of a sheet do; else it shows several sides at once, as a picture
  // does.
  bool IsPrincipal() const;

  // Coordinates along these axes: x to the right, y up, z to the viewer; and back. They are those of the drawing but in
  // perspective.
  ZBR_PT3 In(const ZBR_PT3& p) const { return ZBR_PT3(right.InnerProduct(p), up.InnerProduct(p), toViewer.InnerProduct(p)); }
  ZBR_PT3 Out(const ZBR_PT3& p) const { return right * p.x() + up * p.y() + toViewer * p.z(); }
};

// The view of someone looking along `direction`, with `up` drawn upwards. Fails when a vector is zero or not finite, or when both
// have the same direction.
View LookAlong(const ZBR_PT3& direction, const ZBR_PT3& up);

// The view from an eye to a point, with `up` drawn upwards. Fails as LookAlong does, and for a field of view beyond 170 degrees.
View LookFrom(const ZBR_PT3& eye, const ZBR_PT3& at, const ZBR_PT3& up, double fieldOfView = 0.0);

// Names of the standard views: front, back, left, right, top, bottom, iso, dimetric. With z up, the front is seen along y, the
// right side from positive x; with y up, the front is seen against z.
const std::vector<std::string>& ViewNames();
std::optional<View> NamedView(std::string_view name, bool yUp = false);

}  // namespace zbr::drawing
