#include "support/expect.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include "loops/check.h"

namespace {

struct Expected {
  double area = 0.0;
  int outer = -1;  // -1: not asked
  int holes = -1;
};
using ExpectedAll = std::array<Expected, 5>;

ExpectedAll ParseExpected(const std::string& text) {
  ExpectedAll all;
  std::istringstream in(text);
  for (Expected& e : all) {
    std::string token;
    in >> token;
    const std::size_t colon = token.find(':');
    e.area = std::stod(token.substr(0, colon));
    if (colon == std::string::npos) continue;
    e.outer = std::stoi(token.substr(colon + 1));
    e.holes = std::stoi(token.substr(token.find('+') + 1));
  }
  return all;
}

// Points are rounded by up to a unit in the last place of their coordinates, which moves areas by as much times the boundary's
// length.
double AreaSlack(const std::vector<Ring>& rings) {
  double slack = 0.0;
  for (const Ring& ring : rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const double largest = std::max(std::abs(ring[i].x()), std::abs(ring[i].y()));
      slack += largest * std::numeric_limits<double>::epsilon() * ring[i].Distance(ring[(i + 1) % ring.size()]);
    }
  }
  return slack;
}

void ExpectOnce(const std::vector<Ring>& a, const std::vector<Ring>& b, const ExpectedAll& expected, double areaScale) {
  const LoopList A = Nest(a);
  const LoopList B = Nest(b);
  const double slack = 1e-9 + (AreaSlack(a) + AreaSlack(b)) / areaScale;
  const BooleanResults results = RunAll(A, B);
  const std::array<double, 5> areas = AreasOf(results);
  for (std::size_t k = 0; k < kOps.size(); ++k) {
    SCOPED_TRACE("operation " + std::to_string(kOps[k]) + " gave " + ToText(results.loops[k]) + "\n  on " + Describe(A, B));
    EXPECT_NEAR(areas[k] / areaScale, expected[k].area, slack);
    EXPECT_TRUE(IsNested(results.loops[k], kBooleanEps));
    if (expected[k].outer < 0) continue;
    int holes = 0;
    for (const auto& loop : results.loops[k]) holes += static_cast<int>(loop->children().size());
    EXPECT_EQ(static_cast<int>(results.loops[k].size()), expected[k].outer);
    EXPECT_EQ(holes, expected[k].holes);
  }
}

}  // namespace

BooleanResults RunAll(const LoopList& A, const LoopList& B) {
  BooleanResults results;
  std::array<ZBR_BOOLEAN_OPE, 5> ops = kOps;
  zbrBooleanLoops(A, B, ops.data(), results.loops.data(), 5, results.crosses, results.status);
  return results;
}

std::array<double, 5> AreasOf(const BooleanResults& results) {
  std::array<double, 5> areas;
  for (std::size_t k = 0; k < areas.size(); ++k) areas[k] = NetArea(results.loops[k]);
  return areas;
}

testing::AssertionResult Holds(const char* fault) {
  return fault == nullptr ? testing::AssertionSuccess() : testing::AssertionFailure() << fault;
}

testing::AssertionResult IsNested(const LoopList& loops, double eps) {
  constexpr double kSlack = 1e-6;  // of rounding, which is larger the larger the coordinates
  return Holds(zbr::RegionFault(loops, eps, kSlack * (loops.empty() ? 0.0 : loops[0]->xmax() - loops[0]->xmin())));
}

testing::AssertionResult AreasAgree(double areaA, double areaB, const std::array<double, 5>& areas, double slack) {
  const auto [aMinusB, bMinusA, either, both, one] = areas;
  const double gaps[] = {areaA + areaB - either - both, areaA - both - aMinusB, areaB - both - bMinusA, aMinusB + bMinusA - one};
  for (const double gap : gaps) {
    if (!(std::abs(gap) <= slack)) {
      return testing::AssertionFailure() << "areas " << areaA << ", " << areaB << " give " << testing::PrintToString(areas);
    }
  }
  return testing::AssertionSuccess();
}

std::string Describe(const LoopList& A, const LoopList& B) {
  return "A: " + ToText(A) + "\n  B: " + ToText(B);
}
std::string Describe(const std::vector<Ring>& a, const std::vector<Ring>& b) {
  return Describe(MakeLoops(a), MakeLoops(b));
}

void ExpectBoolean(const std::string& a, const std::string& b, const std::string& expected) {
  const std::vector<Ring> ringsA = RingsOf(ParseLoops(a));
  const std::vector<Ring> ringsB = RingsOf(ParseLoops(b));
  const ExpectedAll all = ParseExpected(expected);
  ExpectedAll swapped = all;
  std::swap(swapped[0], swapped[1]);
  ExpectOnce(ringsA, ringsB, all, 1.0);
  ExpectOnce(ringsB, ringsA, swapped, 1.0);
  for (std::uint64_t seed = 0; seed < 4; ++seed) {
    std::mt19937_64 random(seed);
    const double scale = std::ldexp(1.0, static_cast<int>(seed) * 3 - 4);
    const ZBR_PT shift(seed % 2 == 0 ? 1024.0 : -4096.0, seed < 2 ? 65536.0 : -512.0);
    SCOPED_TRACE("disguise " + std::to_string(seed));
    ExpectOnce(Moved(Disguise(ringsA, random), scale, shift), Moved(Disguise(ringsB, random), scale, shift), all, scale * scale);
    ExpectOnce(Disguise(ringsB, random), Disguise(ringsA, random), swapped, 1.0);
  }
}
