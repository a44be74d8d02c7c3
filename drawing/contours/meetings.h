// Where lines and curves meet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/contours/carriers.h"

namespace zbr::drawing {

// A straight edge, and the places where it is to be cut.
struct CutLine {
  ZBR_PT from, to;
  std::vector<CurveVertex> cuts;  // t from 0 at `from` to 1 at `to`
};

// Makes all places where circles meet lines and each other vertices of both, with equal coordinates. Places within `snap` of an end
// are that end. What touches within it meets in one place.
void FindMeetings(std::vector<CutLine>& lines, const std::vector<Stretch>& stretches, Carriers& carriers, double snap);

// Where a curve of any kind crosses another one or a line, searched from a place nearby; false where there is none near. `t` and
// `s` are the parameters on both, those to start with and those found.
bool FindCrossing(const Curve& a, const Curve& b, double& t, double& s, ZBR_PT& at);
bool FindCrossing(const Curve& a, const CutLine& line, double& t, double& s, ZBR_PT& at);

// The parameter of the point of a curve that is nearest to a place next to it, searched from t.
double NearestParameter(const Curve& curve, const ZBR_PT& p, double t);

}  // namespace zbr::drawing
