// Regions out of a fuzzer's bytes: sound ones, whose combinations are certain, and any rings.
#pragma once

#include <algorithm>
#include <vector>

#include "fuzz/bytes.h"
#include "support/shapes.h"

// A linear map with whole coefficients and determinant 1: lattices stay lattices, and areas what they are.
struct Skew {
  explicit Skew(Bytes& bytes);
  ZBR_PT operator()(const ZBR_PT& p) const { return {m[0] * p.x() + m[1] * p.y(), m[2] * p.x() + m[3] * p.y()}; }
  const int* m;
};

// Cells of a small board, filled or not.
class Cells {
 public:
  static constexpr int kSide = 6;

  // Without saddles, no two filled cells meet in a corner alone, and rings do not touch.
  Cells(Bytes& bytes, bool saddles);
  bool At(int i) const { return filled_[i]; }
  bool At(int x, int y) const { return x >= 0 && y >= 0 && x < kSide && y < kSide && filled_[y * kSide + x]; }
  int Area() const { return static_cast<int>(std::count(filled_, filled_ + kSide * kSide, true)); }
  // The unit steps along the boundary, material on the left.
  std::vector<ZBR_SEG> Steps() const;
  // Their rings, if there are no saddles. With all points, or, as the bytes want, with corners alone.
  std::vector<Ring> Rings(const Skew& skew, const ZBR_PT& shift, Bytes& bytes) const;

 private:
  bool filled_[kSide * kSide] = {};
};

// A few rings of a few points each, which cross as they like.
std::vector<Ring> AnyRings(Bytes& bytes, bool wild);

// Whether no ring passes a point twice, no two edges cross, and of each two rings one lies on one side of the other.
bool IsSimple(const LoopList& region);
