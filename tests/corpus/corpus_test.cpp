// Boolean cases of other projects, read in place from a folder of JSON lines.
//
// A record has operands a, b and perhaps more (lists of polygons, a polygon a list of rings), an operation, a fill rule and an
// area computed independently. Where the operands are regions the area must agree; on the others the library must come back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "geos/geos_region.h"
#include "support/expect.h"

namespace {

using Json = nlohmann::json;

std::vector<Ring> ReadRings(const Json& polygons) {
  std::vector<Ring> rings;
  for (const Json& polygon : polygons) {
    for (const Json& points : polygon) {
      Ring& ring = rings.emplace_back();
      for (const Json& p : points) ring.emplace_back(p[0].get<double>(), p[1].get<double>());
    }
  }
  return rings;
}

// The power of two that brings the largest coordinate to a few thousand: exact, and far from the Boolean's absolute tolerance.
double GoodScale(const std::vector<std::vector<Ring>>& operands) {
  double largest = 0.0;
  for (const auto& rings : operands) {
    for (const Ring& ring : rings) {
      for (const ZBR_PT& p : ring) largest = std::max({largest, std::abs(p.x()), std::abs(p.y())});
    }
  }
  return largest > 0.0 ? std::ldexp(1.0, 12 - std::ilogb(largest)) : 1.0;
}

ZBR_BOOLEAN_OPE OperationNamed(const std::string& name) {
  if (name == "union") return ZBR_BOOL_OR;
  if (name == "intersection") return ZBR_BOOL_AND;
  return name == "xor" ? ZBR_BOOL_XOR : ZBR_BOOL_A_MINUS_B;
}

// Whether nesting the rings gives the region that the fill rule means.
bool IsRegion(const Json& record, const std::vector<LoopList>& regions, const Geos& geos) {
  const std::string fill = record["fill"];
  if (fill == "ogc") return record["check"].value("valid", false);
  for (const LoopList& region : regions) {
    if (region.empty()) continue;
    if (!geos.RingsAreApart(region) || fill == "positive" || fill == "negative") return false;
    for (const auto& loop : region) {
      if (fill == "nonzero" && !loop->children().empty()) return false;
    }
  }
  return true;
}

// Combines one operand more. A symmetric difference may have loops that share an edge, which an operand must not have: it is put
// together from the two differences.
LoopList Combine(const LoopList& A, const LoopList& B, ZBR_BOOLEAN_OPE op) {
  LoopList result;
  if (op != ZBR_BOOL_XOR) {
    zbrBooleanLoops(A, B, op, result);
    return result;
  }
  LoopList other;
  zbrBooleanLoops(A, B, ZBR_BOOL_A_MINUS_B, result);
  zbrBooleanLoops(A, B, ZBR_BOOL_B_MINUS_A, other);
  return Combine(result, other, ZBR_BOOL_OR);
}

double Perimeter(const LoopList& loops) {
  double sum = 0.0;
  for (const Ring& ring : RingsOf(loops)) {
    for (std::size_t i = 0; i < ring.size(); ++i) sum += ring[i].Distance(ring[(i + 1) % ring.size()]);
  }
  return sum;
}

struct Count {
  int agree = 0, differ = 0, onlyRun = 0;
};

TEST(Corpus, AreasAgreeOnRegions) {
  const Geos geos;
  std::map<std::string, Count> suites;
  for (const auto& file : std::filesystem::directory_iterator(ZBR_POLYGON_CORPUS)) {
    if (file.path().extension() != ".jsonl") continue;
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      const Json record = Json::parse(line);
      std::vector<std::vector<Ring>> operands = {ReadRings(record["a"]), ReadRings(record["b"])};
      if (record.contains("more")) {
        for (const Json& more : record["more"]) operands.push_back(ReadRings(more));
      }
      const double scale = GoodScale(operands);
      std::vector<LoopList> regions;
      for (const auto& rings : operands) regions.push_back(Nest(Moved(rings, scale, {0.0, 0.0})));

      LoopList result = regions[0];
      double slack = 0.0;
      for (const LoopList& region : regions) slack += 1e-9 * (NetArea(region) + Perimeter(region));
      for (std::size_t k = 1; k < regions.size() && !record.value("unary", false); ++k) {
        result = Combine(result, regions[k], OperationNamed(record["op"]));
      }
      Count& count = suites[record["suite"]];
      const Json& area = record["check"].value("area", Json());
      if (!area.is_number() || !IsRegion(record, regions, geos)) {
        ++count.onlyRun;
        continue;
      }
      const double got = NetArea(result);
      const bool agrees = std::abs(got - area.get<double>() * scale * scale) <= slack;
      ++(agrees ? count.agree : count.differ);
      EXPECT_TRUE(agrees) << record["suite"] << ' ' << record["id"] << ": " << got / (scale * scale) << ", not " << area;
    }
  }
  for (const auto& [suite, count] : suites) {
    std::printf("[ corpus   ] %s: %d agree, %d differ, %d not regions (run only)\n", suite.c_str(), count.agree, count.differ,
                count.onlyRun);
    EXPECT_GT(count.agree, 0) << suite;
  }
}

}  // namespace
