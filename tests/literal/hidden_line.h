// Hidden-line removal and chaining in their literal form: every pair of triangles, every pair of segment ends, no tree, no early
// way out that could matter. Slow; it states the rules.
//
// Seen along -z: of two points over the same place the one with the larger z hides the other. Edge i of a triangle runs from pt[i]
// to pt[i + 1].
#pragma once

#include <vector>

#include <zbr/hidden_line.h>
#include <zbr/outline.h>

#include "literal/plane.h"

namespace literal {

// A stretch of an edge: two parameters and the points there.
struct Stretch {
  ZBR_PT3 ps, pe;
  double s = 0.0, e = 0.0;
};
using Stretches = std::vector<Stretch>;

// Whether two numbers agree within eps, as the sums round.
inline bool Near(double a, double b, double eps) {
  return b - eps <= a && a <= b + eps;
}

void Optimize(Stretches& a, double eps);
void Intersect(Stretches& a, const Stretches& b, double eps);
// What b0..b1 leaves of a0..a1: 0 nothing, 1 r0..r1, 2 a0..r0 and r1..a1.
int Difference(double a0, double a1, double b0, double b1, double& r0, double& r1, double eps);

enum State { kGeneral = 1, kVertical = 2, kInvalid = 3 };

struct Triangle {
  // From the caller.
  ZBR_PT3 pt[3];
  int idx = -1;
  int adj[3] = {-1, -1, -1};
  int adjEdge[3] = {-1, -1, -1};
  bool draw[3] = {false, false, false};
  bool skip = false;
  // Found by Classify.
  int shell = -1;
  ZBR_PT3 normal;  // unit, or zero
  double d = 0.0;
  bool clockwise = false;
  int state = 0;
  int edgeState[3] = {0, 0, 0};
  ZBR_PT3 min, max;
  // Of a vertical triangle: its long edge, whether the other two pass above it, place of the middle vertex along the wider axis.
  int longEdge = -1;
  bool upper = false;
  double ratio = -1.0;
  // What is left of each edge.
  Stretches seen[3];
  bool visible = false;  // some edge has something left
};

struct Shell {
  std::vector<Triangle> tris;
  ZBR_PT3 min, max;
};

// The shells as the caller filled them. Numbers missing idx by position, as processing does.
std::vector<Shell> FromZbr(const ZBR_HL_SHELL* shells, unsigned count);

void Classify(Triangle& t, const Tol& tol);
// What o hides of t, compared within 1e-7.
void HideByTriangle(Triangle& t, const Triangle& o);
// Every shell by itself, then each by each.
void HideAll(std::vector<Shell>& shells, const Tol& tol);

// Chains records as zbrOptimizeSegs does; returns the number of open polylines.
int Chain(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out, const Tol& tol);
// The segments that zbrOptimizeHiddenLine chains.
std::vector<ZBR_HL_OPT_PT> SeenEnds(const std::vector<Shell>& shells);

}  // namespace literal
