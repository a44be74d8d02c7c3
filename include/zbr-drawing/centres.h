// Centres of the circles that a view shows, and the axes that they lie on: where a drawing has its centre lines.
//
//   for (const CentreMark& mark : FindCentres(model, circles, view).marks) Cross(mark.centre, mark.radius);
//
// DrawViews (views.h) finds them if asked to, and LayOut (sheet.h) draws them.
#pragma once

#include <zbr-drawing/circles.h>
#include <zbr-drawing/model.h>
#include <zbr/planar.h>

#include <vector>

namespace zbr::drawing {

struct ViewLines;

// Circles seen face-on, the largest of those around one centre. In the view's x and y, in the unit of the model.
struct CentreMark {
  ZBR_PT centre;
  double radius = 0.0;
};

// An axis as the view shows it, from the first to the last of the circles around it; of circles seen at a slant, which are
// ellipses, to the far sides of these. The longer axis of the nearest one is a centre line as well, a cross with it.
struct CentreAxis {
  ZBR_PT from, to;
  double radius = 0.0;  // of the largest circle
};

struct Centres {
  std::vector<CentreMark> marks;
  std::vector<CentreAxis> axes;
};

// Of circles that at least half of is left: the rounded corners of a plate have no centre lines; and that lines of the view have
// edges of, or that belong to what its section cuts along the axis or across. `seen`: of visible lines alone, as if the view had no
// hidden ones.
Centres FindCentres(const Model& model, const Circles& circles, const ViewLines& view, bool seen = false);

}  // namespace zbr::drawing
