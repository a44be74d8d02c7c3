// Stretches that run along an occluder's edge in projection.
//
// Both lie in one upright plane, where "hidden" is a comparison of heights along a line: the stretch loses the range over which the
// other edge runs above it. Where the two coincide in space the line is drawn once, by the triangle that keeps it; a line is only
// ever given up to a keeper that draws it. A vertical triangle leaves its coincident lines to one that is not, never the other way
// round.
//
// The cases of a stretch p-q and an edge a-b; tests carry the same labels:
//   Apart       no common range, or the edge wholly lower: p-q stays
//   Same        the same ends: p-q goes if o keeps the line
//   Lower       the edge nowhere above p-q: it stays
//   Coincident  the edge in p-q: the common range goes if o keeps the line
//   Higher      the edge above p-q: the common range goes
//   Crossing    the same up to where the edge passes through p-q
#include <algorithm>
#include <cmath>

#include "core/spatial_inline.h"
#include "core/tolerance_state.h"
#include "hiddenline/occlusion.h"

namespace zbr {
namespace {

struct Range {
  double lo;
  double hi;
};

bool IsAlongX(const ZBR_PT3& p, const ZBR_PT3& q) {
  return std::fabs(q.y() - p.y()) < std::fabs(q.x() - p.x());
}

double Coordinate(const ZBR_PT3& p, bool alongX) {
  return alongX ? p.x() : p.y();
}

int SignOf(double d, double eps) {
  if (d > eps) return 1;
  return d < -eps ? -1 : 0;
}

// Whether self gives the coincident edge up to o, whose edge k it is.
bool GivesUp(const ZBR_HL_TRI& self, const ZBR_HL_TRI& o, int k) {
  if (self.IsTriVertical() == o.IsTriVertical()) return KeepsLine(o, k, self);
  return self.IsTriVertical() && o.dispj[k];
}

void AppendWithout(const ZBR_PT3& p, const ZBR_PT3& q, Range hidden, Intervals& out) {
  double r0 = 0.0;
  double r1 = 0.0;
  switch (zbrDifferenceOfRealSeg(0.0, 1.0, hidden.lo, hidden.hi, r0, r1)) {
    case 1:
      out.emplace_back(PointAt(p, q, r0), PointAt(p, q, r1), r0, r1);
      break;
    case 2:
      out.emplace_back(p, PointAt(p, q, r0), 0.0, r0);
      out.emplace_back(PointAt(p, q, r1), q, r1, 1.0);
      break;
    default:
      break;
  }
}

}  // namespace

bool IsApart(const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o) {
  const ZBR_PT3& a = o.pt[k];
  const ZBR_PT3& b = o.pt[(k + 1) % 3];
  if (std::min(p.z(), q.z()) > std::max(a.z(), b.z())) return true;
  const auto at = [alongX = IsAlongX(p, q)](const ZBR_PT3& v) { return Coordinate(v, alongX); };
  const double low = std::max(std::min(at(p), at(q)), std::min(at(a), at(b)));
  return !(low < std::min(std::max(at(p), at(q)), std::max(at(a), at(b))));
}

// Over a level edge the heights at the ends of the wall's edges are what BesideEdge compares: none is above, and of each edge one
// is lower.
bool IsLowerWall(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& wall) {
  if (p.z() != q.z()) return false;
  const double eps = t_tolerance.eps;
  int reaching = 0;
  for (const ZBR_PT3& v : wall.pt) {
    const double above = v.z() - p.z();
    if (above > eps) return false;
    reaching += above < -2.0 * eps ? 0 : 1;
  }
  return reaching < 2;
}

int BesideEdge(const ZBR_HL_TRI& self, const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o, Intervals& out) {
  const Tolerance& tol = t_tolerance;
  const ZBR_PT3& a = o.pt[k];
  const ZBR_PT3& b = o.pt[(k + 1) % 3];
  const bool alongX = IsAlongX(p, q);
  const double fromP = Coordinate(p, alongX);
  const double toQ = Coordinate(q, alongX);
  const double fromA = Coordinate(a, alongX);
  const double toB = Coordinate(b, alongX);
  const auto keepWhole = [&] {
    out.emplace_back(p, q, 0.0, 1.0);
    return 1;
  };
  out.clear();
  if (IsApart(p, q, k, o)) return keepWhole();  // Apart
  const bool same =
      (SamePoint(p, a, tol.eps2) && SamePoint(q, b, tol.eps2)) || (SamePoint(p, b, tol.eps2) && SamePoint(q, a, tol.eps2));
  if (same) return GivesUp(self, o, k) ? 0 : keepWhole();  // Same

  const double atA = (fromA - fromP) / (toQ - fromP);
  const double atB = (toB - fromP) / (toQ - fromP);
  const double overA = (a.z() - p.z()) - (q.z() - p.z()) * atA;
  const double overB = (b.z() - p.z()) - (q.z() - p.z()) * atB;
  const int signA = SignOf(overA, tol.eps);
  const int signB = SignOf(overB, tol.eps);
  if (signA <= 0 && signB <= 0) {
    if (signA != 0 || signB != 0 || !GivesUp(self, o, k)) return keepWhole();  // Lower
    ZBR_HL_TRI::HiddenLine_DifferenceOfSeg(p, q, a, b, out);                   // Coincident
    return static_cast<int>(out.size());
  }
  Range hidden{atA, atB};          // Higher
  if (signA <= 0 || signB <= 0) {  // Crossing
    const double level = atA + overA / (overA - overB) * (atB - atA);
    (signA <= 0 ? hidden.lo : hidden.hi) = level;
  }
  if (WithinTol(hidden.hi - hidden.lo, tol.eps2)) return keepWhole();
  AppendWithout(p, q, hidden, out);
  return static_cast<int>(out.size());
}

int BesideVertical(const ZBR_HL_TRI& self, const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& o, Intervals& out,
                   const Scratch& lists) {
  out.clear();
  int found = 0;
  for (int k = 0; k < 3; ++k) {
    if (o.edge_state[k] != kGeneral) continue;
    if (BesideEdge(self, p, q, k, o, lists.edge[found]) == 0) return 0;
    ++found;
  }
  if (found == 0) {
    out.emplace_back(p, q, 0.0, 1.0);
    return 1;
  }
  for (int k = 1; k < found; ++k) zbrIntervalIntersection(lists.edge[0], lists.edge[k], lists.work);
  out = lists.edge[0];
  return static_cast<int>(out.size());
}

}  // namespace zbr

int ZBR_HL_TRI::HiddenLine_EdgeByEdgeCoplaner(const ZBR_PT3& p, const ZBR_PT3& q, int k, const ZBR_HL_TRI& o,
                                              std::vector<ZBR_HL_INTERVAL>& out) {
  return zbr::BesideEdge(*this, ZBR_PT3(p), ZBR_PT3(q), k, o, out);  // copies: the points may be those of a record of `out`
}

int ZBR_HL_TRI::HiddenLine_EdgeByTriCoplaner(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_HL_TRI& o,
                                             std::vector<ZBR_HL_INTERVAL>& out) {
  return zbr::BesideVertical(*this, ZBR_PT3(p), ZBR_PT3(q), o, out, *zbr::ShellLists(shell));
}

int ZBR_HL_TRI::HiddenLine_DifferenceOfSeg(const ZBR_PT3& p, const ZBR_PT3& q, const ZBR_PT3& a, const ZBR_PT3& b,
                                           std::vector<ZBR_HL_INTERVAL>& out) {
  const bool alongX = std::fabs(q.x() - p.x()) > std::fabs(q.y() - p.y());
  const double from = zbr::Coordinate(p, alongX);
  const double length = zbr::Coordinate(q, alongX) - from;
  double r0 = 0.0;
  double r1 = 0.0;
  const int parts =
      zbrDifferenceOfRealSeg(from, zbr::Coordinate(q, alongX), zbr::Coordinate(a, alongX), zbr::Coordinate(b, alongX), r0, r1);
  if (parts == 0) return 0;
  // A start close to 0 and an end close to 1 become these exactly, so that an untouched end stays recognisable.
  const double eps = zbr::t_tolerance.eps;
  const double start = (r0 - from) / length;
  const double end = (r1 - from) / length;
  const double u0 = start <= eps ? 0.0 : start;
  const double u1 = end >= 1.0 - eps ? 1.0 : end;
  if (parts == 1) {
    out.emplace_back(zbr::PointAt(p, q, u0), zbr::PointAt(p, q, u1), u0, u1);
  } else {
    const ZBR_HL_INTERVAL rest(zbr::PointAt(p, q, u1), q, u1, 1.0);  // before p and q go, which may be those of a record of `out`
    out.emplace_back(p, zbr::PointAt(p, q, u0), 0.0, u0);
    out.push_back(rest);
  }
  return parts;
}
