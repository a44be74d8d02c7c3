// Comparison of results, with the table of the differences that are understood.
//
// GEOS is the yardstick: no difference from it is excused. The two others give up exactness, each in its way: Clipper 6 computes on
// the integer grid of its input and joins pieces that touch at a point; Boost.Geometry 1.74 rounds to an integer grid of its own,
// coarser than the workloads', and now and then loses or adds small pieces.

#include "agreement.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

// Part of the operands' areas by which areas may differ: rounding in sums of millions of terms, and of points for those who round.
constexpr double kAreaTolerance = 1e-9;
constexpr double kRoundedAreaTolerance = 1e-6;

struct KnownDifference {
  std::string_view peer;
  std::string_view family;     // empty: all
  std::string_view operation;  // empty: all
  bool areaToo;                // else only the number of loops
  std::string_view reason;
};

constexpr KnownDifference kKnownDifferences[] = {
    {"clipper", "grid", "xor", true, "wrong where very many edges are shared"},
    {"clipper", "", "xor", false, "joins pieces that touch at a point"},
    {"clipper", "coast", "", false, "loses slivers by its rounding"},
    {"boost", "coast", "", true, "loses or adds pieces by its rounding"},
    {"boost", "comb", "", true, "loses or adds pieces by its rounding"},
};

// The results on grids touch themselves at very many corners. Whether that makes one loop or two is a convention, and each library
// has its own. So is it whether the parts of a symmetric difference that share a border are one loop or two.
bool LoopsComparable(std::string_view family, std::string_view operation) {
  return family != "grid" && !(family == "borders" && operation == "xor");
}

bool StartsWithOrAny(std::string_view text, std::string_view pattern) {
  return pattern.empty() || text.starts_with(pattern);
}

bool Matches(const KnownDifference& known, const Comparison& comparison) {
  return comparison.peer.starts_with(known.peer) && StartsWithOrAny(comparison.family, known.family) &&
         StartsWithOrAny(comparison.operation, known.operation);
}

std::string Text(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.12g", number);
  return text;
}

void RequireArea(const char* what, double area, double expected, double tolerance) {
  if (std::abs(area - expected) <= tolerance) return;
  throw std::runtime_error(std::string(what) + ": area " + Text(area) + " instead of " + Text(expected));
}

}  // namespace

std::string CompareResults(const Comparison& comparison) {
  const auto& [peer, family, operation, result, expected, operandArea] = comparison;
  const bool rounds = peer.starts_with("clipper") || peer == "boost";
  const double tolerance = operandArea * (rounds ? kRoundedAreaTolerance : kAreaTolerance);
  const bool sameArea = std::abs(result.area - expected.area) <= tolerance;  // false for NaN
  if (sameArea && (result.loops == expected.loops || !LoopsComparable(family, operation))) return {};

  const std::string note = "area " + Text(result.area) + " and " + std::to_string(result.loops) + " loops, ours " +
                           Text(expected.area) + " and " + std::to_string(expected.loops);
  for (const KnownDifference& known : kKnownDifferences) {
    if (Matches(known, comparison) && (sameArea || known.areaToo)) return note + " (" + std::string(known.reason) + ")";
  }
  throw std::runtime_error(note);
}

void RequireAreaIdentities(const std::vector<Summary>& results, double areaA, double areaB) {
  const auto area = [&](Op op) { return results[static_cast<std::size_t>(op)].area; };
  const double tolerance = kAreaTolerance * (areaA + areaB);
  const double common = area(Op::kIntersection);
  RequireArea("union and intersection", area(Op::kUnion) + common, areaA + areaB, tolerance);
  RequireArea("a-b and intersection", area(Op::kAMinusB) + common, areaA, tolerance);
  RequireArea("b-a and intersection", area(Op::kBMinusA) + common, areaB, tolerance);
  RequireArea("xor and twice the intersection", area(Op::kXor) + 2.0 * common, areaA + areaB, tolerance);
}

}  // namespace bench
