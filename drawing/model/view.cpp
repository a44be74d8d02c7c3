// Directions of views.
#include <zbr-drawing/view.h>

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zbr::drawing {
namespace {

// Sine of the angle between the two vectors of a view below which they count as parallel.
constexpr double kSmallestAngle = 1e-9;

struct Standard {
  const char* name;
  ZBR_PT3 toViewer, up;  // z is up, and the front is seen along y
};

// Isometric: all three axes equally short. Dimetric: the depth is half as long as width and height, which are 7 degrees off the
// horizontal and upright.
const std::array<Standard, 8>& Standards() {
  static const std::array<Standard, 8> kStandards = {{
      {"front", {0, -1, 0}, {0, 0, 1}},
      {"back", {0, 1, 0}, {0, 0, 1}},
      {"left", {-1, 0, 0}, {0, 0, 1}},
      {"right", {1, 0, 0}, {0, 0, 1}},
      {"top", {0, 0, 1}, {0, 1, 0}},
      {"bottom", {0, 0, -1}, {0, -1, 0}},
      {"iso", {1, -1, 1}, {0, 0, 1}},
      {"dimetric", {1, -std::sqrt(7.0), 1}, {0, 0, 1}},
  }};
  return kStandards;
}

ZBR_PT3 Direction(const ZBR_PT3& v, const char* name) {
  const double size = std::max({std::abs(v.x()), std::abs(v.y()), std::abs(v.z())});
  if (!std::isfinite(v.x()) || !std::isfinite(v.y()) || !std::isfinite(v.z())) throw Failure(std::string(name) + " is not finite");
  if (size == 0) throw Failure(std::string(name) + " is zero");
  const ZBR_PT3 scaled(v.x() / size, v.y() / size, v.z() / size);
  return scaled * (1.0 / scaled.Length());
}

ZBR_PT3 YUp(const ZBR_PT3& v) {
  return ZBR_PT3(v.x(), v.z(), -v.y());
}

}  // namespace

bool View::IsPrincipal() const {
  if (perspective) return false;
  const double largest = std::max({std::abs(toViewer.x()), std::abs(toViewer.y()), std::abs(toViewer.z())});
  return largest > 1.0 - kSmallestAngle;
}

View LookAlong(const ZBR_PT3& direction, const ZBR_PT3& up) {
  View view;
  view.toViewer = -Direction(direction, "the direction of view");
  const ZBR_PT3 right = Direction(up, "the upward direction").OuterProduct(view.toViewer);
  if (right.Length() < kSmallestAngle) throw Failure("the direction of view is the upward one; the upward one has to be another");
  view.right = right * (1.0 / right.Length());
  view.up = view.toViewer.OuterProduct(view.right);
  return view;
}

View LookFrom(const ZBR_PT3& eye, const ZBR_PT3& at, const ZBR_PT3& up, double fieldOfView) {
  constexpr double kWidest = 170.0;
  if (!(fieldOfView >= 0 && fieldOfView <= kWidest)) throw Failure("a field of view is at most 170 degrees wide");
  const ZBR_PT3 ahead = at - eye;
  if (ahead.x() == 0 && ahead.y() == 0 && ahead.z() == 0) throw Failure("the eye is at the very point that it looks at");
  View view = LookAlong(ahead, up);
  view.perspective = Perspective{eye, eye.Distance(at), fieldOfView};
  return view;
}

ZBR_PT3 UsualUp(const ZBR_PT3& direction, bool yUp) {
  const ZBR_PT3 up = yUp ? ZBR_PT3(0, 1, 0) : ZBR_PT3(0, 0, 1);
  const ZBR_PT3 ahead = Direction(direction, "the direction of view");
  if (ahead.OuterProduct(up).Length() >= kSmallestAngle) return up;
  return NamedView(ahead.InnerProduct(up) < 0 ? "top" : "bottom", yUp)->up;
}

const std::vector<std::string>& ViewNames() {
  static const std::vector<std::string> kNames = [] {
    std::vector<std::string> names;
    for (const Standard& standard : Standards()) names.emplace_back(standard.name);
    return names;
  }();
  return kNames;
}

std::optional<View> NamedView(std::string_view name, bool yUp) {
  for (const Standard& standard : Standards()) {
    if (standard.name != name) continue;
    return yUp ? LookAlong(-YUp(standard.toViewer), YUp(standard.up)) : LookAlong(-standard.toViewer, standard.up);
  }
  return std::nullopt;
}

}  // namespace zbr::drawing
