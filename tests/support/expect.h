// Checks on Boolean results that every suite shares.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/shapes.h"

struct BooleanResults {
  std::array<LoopList, 5> loops;  // in the order of kOps
  std::vector<ZBR_CROSS> crosses;
  ZBR_BOOLEAN_STATUS status;
};

// All five operations with one call.
BooleanResults RunAll(const LoopList& A, const LoopList& B);
std::array<double, 5> AreasOf(const BooleanResults& results);

// What a check of the library (check.h in its folders) says: null, or what is wrong.
testing::AssertionResult Holds(const char* fault);
// What holds for every region that zbrMakeLoopTree leaves: zbr::RegionFault.
testing::AssertionResult IsNested(const LoopList& loops, double eps);

// |A| + |B| = |A or B| + |A and B| and its kin, on areas in the order of kOps, within `slack`.
testing::AssertionResult AreasAgree(double areaA, double areaB, const std::array<double, 5>& areas, double slack);

// "operands" for a failure message: both regions in the text form.
std::string Describe(const LoopList& A, const LoopList& B);
std::string Describe(const std::vector<Ring>& a, const std::vector<Ring>& b);

// Expects the five areas in the order of kOps, and, where a token reads "area:outer+holes", the numbers of loops too:
//   ExpectBoolean("0 0, 2 0, 2 2, 0 2", "1 0, 3 0, 3 2, 1 2", "2:1+0 2 6 2 4");
// The same is expected with operands exchanged, rings reversed, started elsewhere and shuffled, moved and scaled by powers of two.
void ExpectBoolean(const std::string& a, const std::string& b, const std::string& expected);
