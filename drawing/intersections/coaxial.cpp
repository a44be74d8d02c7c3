// Idea: cylinders about one axis are one surface, or apart. Where facets of a pin pass through those of its bore, one is divided
// more coarsely than the other, and the lines tell of nothing else. A facet is of a cylinder when one of its edges is a chord of a
// circle, its plane is parallel to that circle's axis, its corners are as far from the axis as the circle is, and its other edges
// do not show: those of a prism do. Difficulty: where the pin sticks out, its facets pass through the plate at the mouth of the
// bore too. Those lines stay, as the rim is hidden in the pin there.
#include "drawing/intersections/coaxial.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

// How far off an axis may be that counts as the same one, as a part of the distance between chord and arc.
constexpr double kOfChordHeight = 0.02;

struct CylinderFacet {
  const Circle* circle;
  double height;  // of the arc over the chord
};

class CoaxialFacets {
 public:
  CoaxialFacets(const Model& model, const Circles& circles) : model_(model), circles_(circles), tolerance_(PlaneTolerance(model)) {}

  bool MeetIn(const IntersectionLine& line) const {
    const std::optional<CylinderFacet> a = FacetAt(line.triangles[0]);
    if (!a) return false;
    const std::optional<CylinderFacet> b = FacetAt(line.triangles[1]);
    return b && AreCoaxial(*a, *b);
  }

 private:
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

  static double FromAxis(const Circle& circle, const ZBR_PT3& p) { return circle.axis.OuterProduct(p - circle.centre).Length(); }
  double Tolerance(double height) const { return std::max(tolerance_, kOfChordHeight * height); }

  const Model& model_;
  const Circles& circles_;
  const double tolerance_;
};

}  // namespace

void DropCoaxial(const Model& model, const Circles& circles, std::vector<IntersectionLine>& lines) {
  const CoaxialFacets facets(model, circles);
  std::erase_if(lines, [&](const IntersectionLine& line) { return facets.MeetIn(line); });
}

}  // namespace zbr::drawing
