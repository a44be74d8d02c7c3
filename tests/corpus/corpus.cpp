// Boolean cases of other projects, read in place from a folder of JSON lines.
// usage: zbr-corpus FOLDER [--list | --digest]
//
// A record has operands a, b and perhaps more (lists of polygons, a polygon a list of rings), an operation, a fill rule and an
// area computed independently. Regions as flat arrays take all of them as they are; loop lists those whose rule is parity. Where a
// record's operands are what its rule asks for the area must agree, else the answer must be a region at least. --list names the
// records without an area to compare with; --digest prints a digest of the bits of every result instead, to compare machines.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

#include "support/expect.h"

namespace {

using Json = nlohmann::json;

struct Record {
  std::string suite, id, fill;
  std::vector<std::vector<Ring>> operands;
  ZBR_BOOLEAN_OPE op = ZBR_BOOL_OR;
  double area = std::nan("");  // not a number when there is none
};

struct Count {
  int records = 0, regions = 0, regionsAgree = 0, loops = 0, loopsAgree = 0;
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

Record ReadRecord(const Json& json) {
  const std::map<std::string, ZBR_BOOLEAN_OPE> ops = {
      {"union", ZBR_BOOL_OR}, {"intersection", ZBR_BOOL_AND}, {"xor", ZBR_BOOL_XOR}};
  Record record{json["suite"], json["id"], json["fill"], {ReadRings(json["a"])}};
  const bool unary = json.value("unary", false);
  if (!unary) record.operands.push_back(ReadRings(json["b"]));
  if (!unary && json.contains("more")) {
    for (const Json& more : json["more"]) record.operands.push_back(ReadRings(more));
  }
  const auto op = ops.find(json["op"]);
  record.op = op == ops.end() ? ZBR_BOOL_A_MINUS_B : op->second;
  const Json& check = json["check"];
  const bool counts = record.fill != "ogc" || check.value("valid", false);  // rings that cross have no area by this rule
  if (counts && check.contains("area") && check["area"].is_number()) record.area = check["area"].get<double>();
  return record;
}

ZBR_FILL_RULE RuleOf(const Record& record) {
  if (record.fill == "nonzero") return ZBR_FILL_NON_ZERO;
  if (record.fill == "positive") return ZBR_FILL_POSITIVE;
  return record.fill == "negative" ? ZBR_FILL_NEGATIVE : ZBR_FILL_EVEN_ODD;
}

ZBR_REGION Combine(const Record& record) {
  ZBR_REGION_OPTIONS options;
  options.fill_a = options.fill_b = RuleOf(record);
  ZBR_REGION result;
  zbrMakeValidRegion(RegionOf(record.operands[0]).view(), result, options);
  options.fill_a = ZBR_FILL_EVEN_ODD;
  for (std::size_t k = 1; k < record.operands.size(); ++k) {
    result = zbrCombineRegions(result, RegionOf(record.operands[k]), record.op, options);
  }
  return result;
}

// In a size far from the absolute tolerance, which a power of two reaches without rounding.
double AreaOfLoops(const Record& record, const ZBR_REGION& region) {
  constexpr double kLeastSide = 1e-30;  // of what is nothing
  double box[4];
  region.GetBounds(box[0], box[1], box[2], box[3]);
  const double side = std::max({kLeastSide, std::abs(box[0]), std::abs(box[1]), std::abs(box[2]), std::abs(box[3])});
  const double scale = std::ldexp(1.0, 12 - std::ilogb(side));
  LoopList result = Nest(Moved(record.operands[0], scale, {}));
  for (std::size_t k = 1; k < record.operands.size(); ++k) {
    zbrBooleanLoops(result, Nest(Moved(record.operands[k], scale, {})), record.op, result);
  }
  return NetArea(result) / (scale * scale);
}

// Returns whether all that must hold does.
bool Run(const Record& record, bool list, Count& count) {
  const ZBR_REGION region = Combine(record);
  const bool isRegion = IsNested(zbrLoopsOfRegion(region.view()), 0.0) && std::isfinite(region.area());
  // What is narrower than 1e-12 of the operands' extent is nothing.
  double largest = 0.0;
  for (const auto& rings : record.operands) {
    ForEachEdge(rings, [&](int, std::size_t, const ZBR_PT& p, const ZBR_PT&) {
      largest = std::max({largest, std::abs(p.x()), std::abs(p.y())});
    });
  }
  const double slack = 1e-9 * (std::abs(record.area) + region.perimeter() + region.area()) + 1e-11 * largest * largest;
  ++count.records;
  const auto tell = [&](const char* what, double area) {
    std::printf("%s %s: %s, %.17g instead of %.17g\n", record.suite.c_str(), record.id.c_str(), what, area, record.area);
  };
  if (!isRegion) tell("no region", region.area());
  if (std::isnan(record.area)) {
    if (list) tell("nothing to compare with", region.area());
    return isRegion;
  }
  const bool agrees = std::abs(region.area() - record.area) <= slack;
  ++count.regions;
  count.regionsAgree += agrees ? 1 : 0;
  if (!agrees) tell("flat", region.area());
  if (RuleOf(record) != ZBR_FILL_EVEN_ODD) return isRegion && agrees;
  const double area = AreaOfLoops(record, region);
  const bool loopsAgree = std::abs(area - record.area) <= slack;
  ++count.loops;
  count.loopsAgree += loopsAgree ? 1 : 0;
  if (!loopsAgree) tell("loops", area);
  return isRegion && agrees && loopsAgree;
}

// FNV-1a over the bytes of coordinates and offsets.
std::uint32_t DigestOf(const ZBR_REGION& region) {
  std::uint32_t hash = 2166136261U;
  const auto add = [&](const auto& items) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(items.data());
    for (std::size_t i = 0; i < items.size() * sizeof(items[0]); ++i) hash = (hash ^ bytes[i]) * 16777619U;
  };
  add(region.points());
  add(region.ring_offsets());
  add(region.polygon_offsets());
  return hash;
}

void DigestFolder(const std::filesystem::path& folder) {
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".jsonl") continue;
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      const Record record = ReadRecord(Json::parse(line));
      std::printf("%s/%s %08x\n", record.suite.c_str(), record.id.c_str(), DigestOf(Combine(record)));
    }
  }
}

bool RunFolder(const std::filesystem::path& folder, bool list) {
  std::map<std::string, Count> suites;
  bool good = true;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".jsonl") continue;
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      const Record record = ReadRecord(Json::parse(line));
      good &= Run(record, list, suites[record.suite]);
    }
  }
  for (const auto& [suite, c] : suites) {
    std::printf("%s: %d records; %d of %d regions and %d of %d loop lists agree\n", suite.c_str(), c.records, c.regionsAgree,
                c.regions, c.loopsAgree, c.loops);
    good &= c.regions > 0;
  }
  if (suites.empty()) std::fprintf(stderr, "%s: no records\n", folder.string().c_str());
  return good && !suites.empty();
}

}  // namespace

int main(int argc, char** argv) {
  const bool list = argc == 3 && std::string_view(argv[2]) == "--list";
  const bool digest = argc == 3 && std::string_view(argv[2]) == "--digest";
  if (argc != 2 && !list && !digest) {
    std::fprintf(stderr, "usage: %s FOLDER [--list | --digest]\n", argv[0]);
    return 2;
  }
  try {
    if (digest) {
      DigestFolder(argv[1]);
      return 0;
    }
    return RunFolder(argv[1], list) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
    return 2;
  }
}
