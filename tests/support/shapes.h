// Loop lists in a text form that a person can read, and copies of them in disguise.
//
// Text: numbers in pairs, separated by blanks or commas; a ring ends at ';'.
// "0 0, 4 0, 4 4; 1 1, 2 1, 2 2" is a list of two triangles. What ToText prints for a failed case can be pasted into a test.
#pragma once

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <zbr/zbr.h>

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;
using Ring = std::vector<ZBR_PT>;

constexpr double kBooleanEps = 1e-9;
constexpr std::array<ZBR_BOOLEAN_OPE, 5> kOps = {ZBR_BOOL_A_MINUS_B, ZBR_BOOL_B_MINUS_A, ZBR_BOOL_OR, ZBR_BOOL_AND, ZBR_BOOL_XOR};

std::shared_ptr<ZBR_LOOP> MakeLoop(Ring points);
LoopList MakeLoops(const std::vector<Ring>& rings);
// The rings of the text as a flat list, in order, not nested and not set up.
LoopList ParseLoops(const std::string& text);
std::shared_ptr<ZBR_LOOP> ParseLoop(const std::string& text);
// The same, nested by zbrMakeLoopTree with the Boolean's tolerance. A ';' inside a ring list needs no order: nesting finds holes.
LoopList ParseRegion(const std::string& text);
LoopList Nest(const std::vector<Ring>& rings);

std::string ToText(const LoopList& loops);
// Every ring of a list, children behind their loop.
std::vector<Ring> RingsOf(const LoopList& loops);
std::vector<Ring> RingsOf(const ZBR_REGION& region);
// The rings as one polygon each, in order.
ZBR_REGION RegionOf(const std::vector<Ring>& rings);
// Of loops and their children, each summed up near its own first point: far from the origin as exact as near it.
double NetArea(const LoopList& loops);

// visit(ring, edge, start, end) for every edge.
template <class Visit>
void ForEachEdge(const std::vector<Ring>& rings, Visit visit) {
  for (std::size_t r = 0; r < rings.size(); ++r) {
    for (std::size_t i = 0; i < rings[r].size(); ++i)
      visit(static_cast<int>(r), i, rings[r][i], rings[r][(i + 1) % rings[r].size()]);
  }
}

// How far the edge from p to q is from the stretch that it is said to come from, of these rings: both ends' distances.
double DistanceFromSource(const std::vector<Ring>& rings, const ZBR_EDGE_SOURCE& source, const ZBR_PT& p, const ZBR_PT& q);

// The axis-parallel square from (x, y) with the given side, counter-clockwise.
Ring Square(double x, double y, double side);

// The same rings written another way: every ring started elsewhere, some reversed, the list shuffled.
std::vector<Ring> Disguise(std::vector<Ring> rings, std::mt19937_64& random);
// Every point p becomes p * scale + shift.
std::vector<Ring> Moved(std::vector<Ring> rings, double scale, const ZBR_PT& shift);
