// Boolean cases of other projects, read in place from a folder of JSON lines.
// usage: zbr-corpus FOLDER [--list]
//
// A record has operands a, b and perhaps more (lists of polygons, a polygon a list of rings), an operation, a fill rule and an
// area computed independently. Three things are done with each:
//   regions   where the operands are regions, the area must agree;
//   cleaned   other operands are also combined after GEOS has made regions of their rings by parity, and the area must agree with
//             that of GEOS's own combination;
//   run       all are combined as they are, and used to clip each other's boundaries: whatever the rings are like, the library
//             must come back, with nested rings of finite points, the same twice, and with pieces that make up what was clipped.
// Fails when a region or a run is wrong. Cleaned operands may touch themselves in points that are only nearly the same, which the
// library does not promise to get right; they are counted. --list tells why records are not regions.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

#include "geos/geos_region.h"
#include "support/expect.h"

namespace {

using Json = nlohmann::json;

struct Record {
  std::string suite, id, fill;
  std::vector<std::vector<Ring>> operands;
  ZBR_BOOLEAN_OPE op = ZBR_BOOL_OR;
  double area = std::nan("");  // not a number when there is none
  bool valid = false;          // what the record says of its operands
  bool unary = false;
};

struct Count {
  int records = 0, regions = 0, regionsAgree = 0, cleaned = 0, cleanedAgree = 0, runs = 0;
  std::map<std::string, int> reasons;
};

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

Record ReadRecord(const Json& json) {
  Record record{json["suite"], json["id"], json["fill"], {ReadRings(json["a"]), ReadRings(json["b"])}};
  if (json.contains("more")) {
    for (const Json& more : json["more"]) record.operands.push_back(ReadRings(more));
  }
  const double scale = GoodScale(record.operands);
  for (auto& rings : record.operands) rings = Moved(std::move(rings), scale, {0.0, 0.0});
  record.op = OperationNamed(json["op"]);
  const Json& check = json["check"];
  if (check.contains("area") && check["area"].is_number()) record.area = check["area"].get<double>() * scale * scale;
  record.valid = check.value("valid", false);
  record.unary = json.value("unary", false);
  return record;
}

// Why nesting the rings does not give the region that the fill rule means; empty when it does.
std::string WhyNoRegion(const Record& record, const std::vector<LoopList>& nested, const Geos& geos) {
  if (record.fill == "positive" || record.fill == "negative") return "the fill rule asks for the direction of rings";
  if (std::isnan(record.area)) return "no area to compare with";
  if (record.fill == "ogc") return record.valid ? "" : "rings cross or overlap, or holes lie outside";
  for (std::size_t k = 0; k < nested.size(); ++k) {
    if (nested[k].empty()) continue;
    if (!geos.RingsAreApart(MakeLoops(record.operands[k]))) return "rings cross or touch themselves or each other";
    if (record.fill != "nonzero") continue;
    for (const auto& loop : nested[k]) {
      if (!loop->children().empty()) return "the fill rule fills rings in rings";
    }
  }
  return "";
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

LoopList CombineAll(const Record& record, const std::vector<LoopList>& regions) {
  LoopList result = regions[0];
  for (std::size_t k = 1; k < regions.size() && !record.unary; ++k) result = Combine(result, regions[k], record.op);
  return result;
}

double Perimeter(const LoopList& loops) {
  double sum = 0.0;
  for (const Ring& ring : RingsOf(loops)) {
    for (std::size_t i = 0; i < ring.size(); ++i) sum += ring[i].Distance(ring[(i + 1) % ring.size()]);
  }
  return sum;
}

// What rounding may do to the area of a combination.
double Slack(const std::vector<LoopList>& regions) {
  double slack = 0.0;
  for (const LoopList& region : regions) slack += 1e-9 * (std::abs(NetArea(region)) + Perimeter(region));
  return slack;
}

// Appends the rings of the polygons that g is made of; collections may hold collections.
void AppendRings(GEOSContextHandle_t context, const GEOSGeometry* g, std::vector<Ring>& rings) {
  if (GEOSGeomTypeId_r(context, g) != GEOS_POLYGON) {
    for (int k = 0; k < GEOSGetNumGeometries_r(context, g); ++k) {
      const GEOSGeometry* const part = GEOSGetGeometryN_r(context, g, k);
      if (part != g) AppendRings(context, part, rings);
    }
    return;
  }
  for (int i = -1; i < GEOSGetNumInteriorRings_r(context, g) && GEOSisEmpty_r(context, g) == 0; ++i) {
    const GEOSGeometry* const line = i < 0 ? GEOSGetExteriorRing_r(context, g) : GEOSGetInteriorRingN_r(context, g, i);
    const GEOSCoordSequence* const points = GEOSGeom_getCoordSeq_r(context, line);
    Ring& ring = rings.emplace_back(static_cast<std::size_t>(GEOSGeomGetNumPoints_r(context, line)) - 1);
    for (std::size_t v = 0; v < ring.size(); ++v) {
      double x = 0.0;
      double y = 0.0;
      GEOSCoordSeq_getXY_r(context, points, static_cast<unsigned>(v), &x, &y);
      ring[v].Set(x, y);
    }
  }
}

// What an odd number of the rings [from, to) surrounds; joined in halves, as that costs least.
Geos::Geometry ParityRegion(const std::vector<Ring>& rings, std::size_t from, std::size_t to, const Geos& geos) {
  if (from == to || (to - from == 1 && rings[from].size() < 3)) return geos.Region({});
  if (to - from == 1) return geos.Region(MakeLoops({rings[from]}));
  const std::size_t middle = from + (to - from) / 2;
  const Geos::Geometry low = ParityRegion(rings, from, middle, geos);
  const Geos::Geometry high = ParityRegion(rings, middle, to, geos);
  return low && high ? geos.Operate(ZBR_BOOL_XOR, low, high) : nullptr;
}

// Combines what GEOS makes of the operands. Nothing when GEOS fails.
bool RunCleaned(const Record& record, const Geos& geos, bool& agrees) {
  std::vector<LoopList> regions;
  Geos::Geometry expected;
  for (const auto& rings : record.operands) {
    Geos::Geometry region = ParityRegion(rings, 0, rings.size(), geos);
    if (!region) return false;
    std::vector<Ring> cleaned;
    AppendRings(region.get_deleter().context, region.get(), cleaned);
    regions.push_back(Nest(cleaned));
    if (!expected) {
      expected = std::move(region);
    } else if (!record.unary) {
      expected = geos.Operate(record.op, expected, region);
    }
    if (!expected) return false;
  }
  const double want = geos.Area(expected);
  const double got = NetArea(CombineAll(record, regions));
  agrees = std::abs(got - want) <= Slack(regions);
  if (!agrees) std::printf("%s %s: cleaned, %.17g instead of %.17g\n", record.suite.c_str(), record.id.c_str(), got, want);
  return true;
}

// Nesting keeps what it is given when no ring has an area.
bool IsFiniteRegion(const LoopList& loops) {
  const std::vector<Ring> rings = RingsOf(loops);
  const bool finite = std::all_of(rings.begin(), rings.end(), [](const Ring& ring) {
    return std::all_of(ring.begin(), ring.end(), [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); });
  });
  const bool flat = std::all_of(loops.begin(), loops.end(), [](const auto& loop) { return std::abs(loop->area()) <= kBooleanEps; });
  return finite && (flat || IsNested(loops, kBooleanEps));
}

double Length(const std::vector<ZBR_SEG3>& segs) {
  double sum = 0.0;
  for (const ZBR_SEG3& s : segs) sum += s.s().Distance(s.e());
  return sum;
}

// Clips the boundary of B by A: the pieces must be as long as the boundary.
bool ClipsWell(const LoopList& A, const LoopList& B) {
  std::vector<ZBR_SEG3> segs;
  for (const Ring& ring : RingsOf(B)) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ZBR_PT& q = ring[(i + 1) % ring.size()];
      segs.emplace_back(ZBR_PT3(ring[i].x(), ring[i].y(), 0.0), ZBR_PT3(q.x(), q.y(), 0.0));
    }
  }
  std::vector<ZBR_SEG3> inside;
  std::vector<ZBR_SEG3> outside;
  const int count = zbrClipSegs(segs, A, inside, &outside);
  return count == static_cast<int>(inside.size()) &&
         std::abs(Length(inside) + Length(outside) - Length(segs)) <= 1e-9 * Length(segs);
}

bool RunsWell(const Record& record, const std::vector<LoopList>& regions, const LoopList& result) {
  return IsFiniteRegion(result) && ToText(CombineAll(record, regions)) == ToText(result) && ClipsWell(regions[0], regions[1]) &&
         ClipsWell(regions[1], regions[0]) && zbr_EpsE(1e-5) && !zbr_EpsE(1.001e-5);
}

// Returns whether all that must hold does.
bool Run(const Record& record, const Geos& geos, bool list, Count& count) {
  std::vector<LoopList> regions;
  for (const auto& rings : record.operands) regions.push_back(Nest(rings));
  const LoopList result = CombineAll(record, regions);
  const char* const suite = record.suite.c_str();
  const char* const id = record.id.c_str();
  ++count.records;
  const bool runs = RunsWell(record, regions, result);
  count.runs += runs ? 1 : 0;
  if (!runs) std::printf("%s %s: no sound answer\n", suite, id);

  const std::string why = WhyNoRegion(record, regions, geos);
  bool agrees = true;
  if (why.empty()) {
    ++count.regions;
    agrees = std::abs(NetArea(result) - record.area) <= Slack(regions);
    count.regionsAgree += agrees ? 1 : 0;
    if (!agrees) std::printf("%s %s: %.17g instead of %.17g\n", suite, id, NetArea(result), record.area);
    return runs && agrees;
  }
  ++count.reasons[why];
  if (list) std::printf("%s %s: %s\n", suite, id, why.c_str());
  if (RunCleaned(record, geos, agrees)) {
    ++count.cleaned;
    count.cleanedAgree += agrees ? 1 : 0;
  }
  return runs;
}

bool RunFolder(const std::filesystem::path& folder, bool list) {
  const Geos geos;
  std::map<std::string, Count> suites;
  bool good = true;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".jsonl") continue;
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      const Record record = ReadRecord(Json::parse(line));
      good &= Run(record, geos, list, suites[record.suite]);
    }
  }
  for (const auto& [suite, c] : suites) {
    std::printf("%s: %d records; %d of %d regions agree; %d of %d cleaned; %d of %d run\n", suite.c_str(), c.records,
                c.regionsAgree, c.regions, c.cleanedAgree, c.cleaned, c.runs, c.records);
    for (const auto& [reason, n] : c.reasons) std::printf("  %4d  %s\n", n, reason.c_str());
    good &= c.regions > 0 && 2 * c.cleanedAgree >= c.cleaned;
  }
  if (suites.empty()) std::fprintf(stderr, "%s: no records\n", folder.c_str());
  return good && !suites.empty();
}

}  // namespace

int main(int argc, char** argv) {
  const bool list = argc == 3 && std::string_view(argv[2]) == "--list";
  if (argc != 2 && !list) {
    std::fprintf(stderr, "usage: %s FOLDER [--list]\n", argv[0]);
    return 2;
  }
  try {
    return RunFolder(argv[1], list) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
    return 2;
  }
}
