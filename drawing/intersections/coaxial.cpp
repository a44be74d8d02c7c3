// Idea: cylinders about one axis are one surface, or apart. Where facets of a pin pass through those of its bore, one is divided
// more coarsely than the other, and the lines tell of nothing else. A facet is of a cylinder when one of its edges is a chord of a
// circle, its plane is parallel to that circle's axis, its corners are as far from the axis as the circle is, and its other edges
// do not show: those of a prism do. Difficulty: where the pin sticks out, its facets pass through the plate at the mouth of the
// bore too. Those lines stay, as the rim is hidden in the pin there, and stand for it: lines and what is seen of the rim's chords
// follow each other around one circle.
#include "drawing/intersections/coaxial.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

// How far off an axis may be that counts as the same one, as a part of the distance between chord and arc.
constexpr double kOfChordHeight = 0.02;

struct CylinderFacet {
  const Circle* circle;
  double height;  // of the arc over the chord
};

double FromAxis(const Circle& circle, const ZBR_PT3& p) {
  return circle.axis.OuterProduct(p - circle.centre).Length();
}

class CoaxialFacets {
 public:
  CoaxialFacets(const Model& model, const Circles& circles) : model_(model), circles_(circles), tolerance_(PlaneTolerance(model)) {}

  bool MeetIn(const IntersectionLine& line) const {
    const std::optional<CylinderFacet> a = FacetAt(line.triangles[0]);
    if (!a) return false;
    const std::optional<CylinderFacet> b = FacetAt(line.triangles[1]);
    return b && AreCoaxial(*a, *b);
  }

  double Tolerance(double height) const { return std::max(tolerance_, kOfChordHeight * height); }

  // The cylinder that a triangle of the model is a facet of.
  std::optional<CylinderFacet> FacetAt(std::uint32_t t) const {
    const std::size_t shell = model_.ShellOf(t);
    const ZBR_ZBREPT& triangle = *model_.Shell(shell).GetTriangle(static_cast<int>(t - model_.shellBegin[shell]));
    std::optional<CylinderFacet> facet;
    for (std::size_t i = 0; i < 3; ++i) {
      const ZBR_ZBREPE& edge = EdgeOf(triangle, i);
      const std::uint32_t k = circles_.ofEdge[model_.edgeBegin[shell] + static_cast<std::size_t>(edge.GetIndex())];
      if (k == kNoCircle) {
        if (edge.GetShow()) return std::nullopt;
        continue;
      }
      const Circle& circle = circles_.all[k];
      const ZBR_PT3 middle = (VertexOf(triangle, i).GetPt() + VertexOf(triangle, (i + 1) % 3).GetPt()) * 0.5;
      facet = CylinderFacet{&circle, circle.radius - middle.Distance(circle.centre)};
    }
    return facet && LiesOn(triangle, t, *facet) ? facet : std::nullopt;
  }

 private:
  bool LiesOn(const ZBR_ZBREPT& triangle, std::uint32_t t, const CylinderFacet& facet) const {
    const Circle& circle = *facet.circle;
    const double tolerance = Tolerance(facet.height);
    if (std::abs(model_.normals[t].InnerProduct(circle.axis)) * circle.radius > tolerance) return false;
    for (std::size_t i = 0; i < 3; ++i) {
      const double distance = FromAxis(circle, VertexOf(triangle, i).GetPt());
      if (std::abs(distance - circle.radius) > tolerance) return false;
    }
    return true;
  }

  bool AreCoaxial(const CylinderFacet& a, const CylinderFacet& b) const {
    const double tolerance = Tolerance(std::max(a.height, b.height));
    const double apart = a.circle->centre.Distance(b.circle->centre) + a.circle->radius;
    return a.circle->axis.OuterProduct(b.circle->axis).Length() * apart <= tolerance &&
           FromAxis(*a.circle, b.circle->centre) <= tolerance;
  }

  const Model& model_;
  const Circles& circles_;
  const double tolerance_;
};

// The rims of shells, to be looked up by their centres.
class Rims {
 public:
  Rims(const Model& model, const Circles& circles) : circles_(circles) {
    for (std::uint32_t s = 0; s < model.ShellCount(); ++s) {
      for (std::uint32_t e = model.edgeBegin[s]; e < model.edgeBegin[s + 1]; ++e) {
        const std::uint32_t circle = circles.ofEdge[e];
        if (circle != kNoCircle) rims_.push_back({Along(circles.all[circle].centre), circle, s});
      }
    }
    std::sort(rims_.begin(), rims_.end());
    rims_.erase(std::unique(rims_.begin(), rims_.end()), rims_.end());
  }

  // The circle that is a shell's rim in the plane of the line and otherwise the facet's; kNoCircle if there is none.
  std::uint32_t Find(const CylinderFacet& facet, const IntersectionLine& line, std::uint32_t shell, double tolerance) const {
    const Circle& own = *facet.circle;
    const ZBR_PT3 centre = own.centre + own.axis * own.axis.InnerProduct(line.ends[0].place - own.centre);
    const double low = Along(centre) - tolerance, high = Along(centre) + tolerance;
    const auto first = std::partition_point(rims_.begin(), rims_.end(), [&](const Rim& rim) { return rim.along < low; });
    for (auto rim = first; rim != rims_.end() && rim->along <= high; ++rim) {
      const Circle& circle = circles_.all[rim->circle];
      const auto isInPlane = [&](const IntersectionEnd& end) {
        return std::abs(circle.axis.InnerProduct(end.place - circle.centre)) <= tolerance;
      };
      if (rim->shell == shell && circle.centre.Distance(centre) <= tolerance && std::abs(circle.radius - own.radius) <= tolerance &&
          circle.axis.OuterProduct(own.axis).Length() * circle.radius <= tolerance && isInPlane(line.ends[0]) &&
          isInPlane(line.ends[1]))
        return rim->circle;
    }
    return kNoCircle;
  }

 private:
  struct Rim {
    double along;
    std::uint32_t circle, shell;
    auto operator<=>(const Rim&) const = default;
  };

  // Along a direction of length 1 in which holes in rows and columns are apart.
  static double Along(const ZBR_PT3& p) { return 0.48 * p.x() + 0.64 * p.y() + 0.6 * p.z(); }

  const Circles& circles_;
  std::vector<Rim> rims_;
};

}  // namespace

std::vector<ChordSides::Crossing> FindCrossingsOfRims(const Model& model, const Circles& circles,
                                                      const std::vector<IntersectionLine>& lines) {
  const CoaxialFacets facets(model, circles);
  std::optional<Rims> rims;
  std::vector<ChordSides::Crossing> found;
  for (const IntersectionLine& line : lines) {
    for (std::size_t side = 0; side < 2; ++side) {
      const std::optional<CylinderFacet> facet = facets.FacetAt(line.triangles[side]);
      if (!facet) continue;
      if (!rims) rims.emplace(model, circles);
      const auto shell = static_cast<std::uint32_t>(model.ShellOf(line.triangles[1 - side]));
      const std::uint32_t circle = rims->Find(*facet, line, shell, facets.Tolerance(facet->height));
      if (circle == kNoCircle) continue;
      found.push_back({line.triangles, shell, {0, circle, line.ends[0].place, line.ends[1].place}});
      break;
    }
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.triangles < b.triangles; });
  return found;
}

void DropCoaxial(const Model& model, const Circles& circles, std::vector<IntersectionLine>& lines) {
  const CoaxialFacets facets(model, circles);
  std::erase_if(lines, [&](const IntersectionLine& line) { return facets.MeetIn(line); });
}

}  // namespace zbr::drawing
