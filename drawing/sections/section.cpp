// Planes of sections: as text, and how they are looked at.
#include <zbr-drawing/section.h>

#include <zbr-drawing/failure.h>
#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

namespace zbr::drawing {
namespace {

// Sine of the angle to the upward axis below which a plane counts as level.
constexpr double kLevel = 1e-9;

struct Side {
  char axis;
  const char* view;
};
constexpr std::array<Side, 3> kZUp = {{{'X', "right"}, {'Y', "front"}, {'Z', "top"}}};
constexpr std::array<Side, 3> kYUp = {{{'X', "right"}, {'Y', "top"}, {'Z', "front"}}};

// To the viewer; not yet of length 1. None: it is no direction.
std::optional<ZBR_PT3> DirectionOf(std::string_view text, bool yUp) {
  for (const Side& side : yUp ? kYUp : kZUp) {
    if (text.size() == 1 && (text[0] == side.axis || text[0] == side.axis - 'A' + 'a')) return NamedView(side.view, yUp)->toViewer;
  }
  std::array<double, 3> parts{};
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t comma = i < 2 ? text.find(',') : text.size();
    const auto value = comma > text.size() ? std::nullopt : ParseNumber(text.substr(0, comma));
    if (!value) return std::nullopt;
    parts[i] = *value;
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return ZBR_PT3(parts[0], parts[1], parts[2]);
}

bool IsAxis(std::string_view text) {
  return text.size() == 1;
}

}  // namespace

SectionPlane ParseSection(const std::string& text, bool yUp) {
  const auto fail = [&](const std::string& why) { return Failure(Quoted(text) + why); };
  const std::string usage = " is no plane such as X=10, Y=5..20 or 1,0,1=7.5";
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) throw fail(usage);
  const std::string_view direction = std::string_view(text).substr(0, equals), places = std::string_view(text).substr(equals + 1);
  const auto normal = DirectionOf(direction, yUp);
  const std::size_t dots = places.find("..");
  const auto first = ParseNumber(places.substr(0, dots));
  const auto second = dots == std::string_view::npos ? first : ParseNumber(places.substr(dots + 2));
  if (!normal || !first || !second) throw fail(usage);
  const double length = normal->Length();
  if (!std::isnormal(length)) throw fail(" has a direction of no length");
  SectionPlane plane;
  plane.normal = *normal * (1.0 / length);
  // Along an axis places are coordinates, which grow away from the viewer in views such as from the front.
  const bool isTurned = IsAxis(direction) && normal->x() + normal->y() + normal->z() < 0;
  const double a = isTurned ? -*first : *first, b = isTurned ? -*second : *second;
  plane.offset = std::max(a, b);
  if (dots == std::string_view::npos) return plane;
  plane.depth = std::max(a, b) - std::min(a, b);
  if (!(plane.depth > 0)) throw fail(" has no room between its planes");
  return plane;
}

View SectionView(const SectionPlane& plane, bool yUp) {
  const ZBR_PT3 up = yUp ? ZBR_PT3(0, 1, 0) : ZBR_PT3(0, 0, 1);
  if (plane.normal.OuterProduct(up).Length() > kLevel) return LookAlong(-plane.normal, up);
  return *NamedView(plane.normal.InnerProduct(up) > 0 ? "top" : "bottom", yUp);
}

std::string SectionName(std::size_t i) {
  constexpr std::string_view kLetters = "ABCDEFGHJKLMNPRSTUVWXYZ";
  if (i >= kLetters.size()) throw Failure("there are letters for " + std::to_string(kLetters.size()) + " sections only");
  return {kLetters[i], '-', kLetters[i]};
}

}  // namespace zbr::drawing
