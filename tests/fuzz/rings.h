// Rings out of a fuzzer's bytes: any, or those of the drawn families.
#pragma once

#include <algorithm>
#include <vector>

#include "fuzz/bytes.h"
#include "support/judge.h"
#include "support/random_shapes.h"

// A few rings of a few points each, which cross as they like.
inline std::vector<Ring> AnyRings(Bytes& bytes, bool wild) {
  std::vector<Ring> rings(static_cast<std::size_t>(bytes.Below(4)));
  for (Ring& ring : rings) {
    for (int n = bytes.Below(10); n > 0; --n) ring.push_back(bytes.Point(wild));
  }
  return rings;
}

inline OperandPair Drawn(Bytes& bytes, const char* family) {
  Random random(bytes.Word(2));
  return FamilyNamed(family).draw(random);
}

// Whether the rings wind once around what they enclose: outer ones counter-clockwise, holes clockwise, none over another.
inline bool IsRegion(const std::vector<Ring>& rings) {
  const RegionJudge judge(rings, {}, kFillNonZero);
  return !judge.IsWrong(judge.Judge(ZBR_BOOL_OR, rings), 1e-9 * judge.Extent());
}
