// Where a model is seen from.
//
//   const View front = *NamedView("front");
//   const View oblique = LookAlong({1, 2, -1}, {0, 0, 1});   // direction of looking; what is drawn upwards
//   const ZBR_PT3 p = oblique.In(point);                      // p.x() to the right, p.y() up, p.z() to the viewer
//
// Lengths stay as they are: views are parallel projections, without perspective.
#pragma once

#include <zbr/spatial.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::drawing {

// The axes of a drawing in the model's coordinates: of length 1, at right angles to each other, right-handed.
struct View {
  ZBR_PT3 right{1, 0, 0}, up{0, 1, 0}, toViewer{0, 0, 1};

  // Whether it looks along an axis of the model, as the views of a sheet do; else it shows several sides at once, as a picture
  // does.
  bool IsPrincipal() const;

  // Coordinates in the drawing: x to the right, y up, z to the viewer; and back.
  ZBR_PT3 In(const ZBR_PT3& p) const { return ZBR_PT3(right.InnerProduct(p), up.InnerProduct(p), toViewer.InnerProduct(p)); }
  ZBR_PT3 Out(const ZBR_PT3& p) const { return right * p.x() + up * p.y() + toViewer * p.z(); }
};

// The view of someone looking along `direction`, with `up` drawn upwards. Fails when a vector is zero or not finite, or when both
// have the same direction.
View LookAlong(const ZBR_PT3& direction, const ZBR_PT3& up);

// Names of the standard views: front, back, left, right, top, bottom, iso, dimetric. With z up, the front is seen along y, the
// right side from positive x; with y up, the front is seen against z.
const std::vector<std::string>& ViewNames();
std::optional<View> NamedView(std::string_view name, bool yUp = false);

}  // namespace zbr::drawing
