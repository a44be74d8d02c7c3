// Judges combinations of planar regions by winding numbers alone.
//
// Nothing here decides how boundaries meet. The plane is cut into thin horizontal slabs; along a line in each of them the edges
// that cross it are sorted and the winding numbers of A, B and the result are counted. Where the result's winding number is not 1
// inside the asked region and 0 outside, the line runs through a difference. Rounding errors of the crossings move the ends of such
// a stretch by rounding errors, nothing more: of a right result only slivers along its boundary are left, whatever the input.
#pragma once

#include <vector>

#include "support/shapes.h"

// Which winding numbers are inside.
enum JudgeFill { kFillEvenOdd, kFillNonZero, kFillPositive, kFillNegative };

bool IsInside(int winding, JudgeFill fill);
bool IsInResult(ZBR_BOOLEAN_OPE op, bool inA, bool inB);

struct Verdict {
  double area = 0.0;      // of the difference; where a result covers twice, twice
  double depth = 0.0;     // how far the difference reaches from the operands' boundaries, at the places looked at
  ZBR_PT place;           // where it reaches that far
  double expected = 0.0;  // area of the region asked for
};

class RegionJudge {
 public:
  RegionJudge(const std::vector<Ring>& a, const std::vector<Ring>& b, JudgeFill fillA = kFillEvenOdd,
              JudgeFill fillB = kFillEvenOdd);

  // `result`: outer rings counter-clockwise, holes clockwise.
  Verdict Judge(ZBR_BOOLEAN_OPE op, const std::vector<Ring>& result) const;

  // Whether the result differs from the region by more than points moved by up to `tolerance` explain: a difference as wide as
  // kSlack tolerances along all boundaries together, or a place kDepthSlack tolerances away from any boundary. A crumb may be
  // missing wherever it is: engines drop areas that are next to nothing.
  bool IsWrong(const Verdict& verdict, double tolerance) const;

  double Perimeter() const { return perimeter_; }
  double Extent() const { return extent_; }  // the longer side of the operands' box

 private:
  // From the lower to the upper end; `step` is what crossing it from left to right adds to the winding number.
  struct Edge {
    ZBR_PT low, high;
    int owner, step;
    long double XAt(long double y) const;
  };
  static void Append(const std::vector<Ring>& rings, int owner, std::vector<Edge>& edges);
  void AppendCrossingHeights();
  double DistanceFromOperands(const ZBR_PT& p, double atLeast) const;
  void Integrate(const std::vector<const Edge*>& active, long double y, long double thickness, ZBR_BOOLEAN_OPE op,
                 Verdict& verdict) const;

  // Stretches narrower than kNarrow times the extent have no depth: a spike without width is no difference.
  static constexpr double kNarrow = 1e-9;
  // A boundary moved by t covers t times its length, and operands and result may both be moved; a right angle reaches 1.4 t.
  static constexpr double kSlack = 2.0;
  static constexpr double kDepthSlack = 4.0;
  static constexpr double kCrumb = 1e-11;  // in parts of the squared extent

  JudgeFill fill_[2];
  std::vector<Edge> edges_;      // of the operands, without level ones: no line crosses those
  std::vector<ZBR_PT> sides_;    // pairs of ends of all edges of the operands
  std::vector<double> heights_;  // of their vertices and crossings
  double perimeter_ = 0.0;
  double extent_ = 0.0;
};
