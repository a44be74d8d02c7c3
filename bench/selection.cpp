// Arguments of the benchmark programs, and the table of peers left out.

#include "selection.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace bench {
namespace {

// The largest size at which an operation of a peer is measured, mostly because its time grows steeply. An empty operation stands
// for all, a star for any end of a family's name.
struct Limit {
  std::string_view peer;
  std::string_view family;
  std::string_view operation;
  std::size_t largest;
  std::string_view reason;
};

constexpr Limit kLimits[] = {
    {"clipper-tree", "star", "", 0, "as the flat result: few loops, nothing to nest"},
    {"clipper-tree", "coast", "", 0, "as star"},
    {"clipper-tree", "revision", "", 0, "as star"},
    {"clipper-tree", "borders", "", 0, "39 us an edge at 10k: quadratic in the pieces that touch"},
    {"boost", "countries", "xor", 100'000, "three times its other operations already at 10k"},
    {"boost", "borders", "xor", 100'000, "as countries"},
    {"clipper", "star", "", 100'000, "75 s for the union at 1M"},
    {"clipper", "comb", "xor", 1'000, "4 s at 1000, where all crossings lie on axis-parallel edges; it grows as n^5"},
    {"clipper-tree", "comb", "xor", 1'000, "as the flat result"},
    {"clipper-tree", "grid", "", 128, "4 s for the xor at 128, quadratic in the holes"},
    {"boost", "coast", "xor", 100'000, "66 s at 1M"},
    {"boost", "tiles", "", 4'000, "1 s at 4000, 4 s for the xor; grows as n^2.5"},
    {"boost", "holes", "", 4'000, "as tiles"},
    {"boost", "comb", "xor", 200, "52 s at 400"},
    {"boost", "comb", "", 400, "2 s at 400, quadratic in crossings"},
    {"boost", "combr", "xor", 200, "41 s at 400"},
    {"boost", "combr", "", 400, "as comb"},
    {"boost", "grid", "", 128, "0.3 s at 128, quadratic"},
    {"geos", "nest", "", 2'000, "50 s at 10k: finding each hole's owner is quadratic"},
    {"geos", "nestw", "", 10'000, "as nest: more than a minute at 100k"},
    {"geos", "clip-*", "chain", 10'000, "4 s at 100k over 1k edges: the line crosses itself"},
    {"clipper", "clip-*", "chain", 10'000, "as geos"},
    {"clipper", "clip-*", "short", 10'000, "6 s at 100k over 1k edges: the sweep stops where lines cross each other"},
    {"clipper", "clip-*", "long", 1'000, "38 s at 10k over 1k edges, for the same reason"},
    {"clipper", "clip-*", "hatch", 10'000, "2 s at 10k over 1k edges, quadratic in the lines that stand side by side"},
};

bool Covers(std::string_view pattern, std::string_view family) {
  if (pattern.back() != '*') return pattern == family;
  pattern.remove_suffix(1);
  return family.substr(0, pattern.size()) == pattern;
}

[[noreturn]] void Usage(const char* program, const std::vector<Sizes>& known) {
  std::fprintf(stderr, "usage: %s [--quick] [--benchmark_...] [FAMILY...]\nfamilies:", program);
  for (const Sizes& sizes : known) std::fprintf(stderr, " %.*s", static_cast<int>(sizes.family.size()), sizes.family.data());
  std::fprintf(stderr, "\n");
  std::exit(2);
}

}  // namespace

bool Selection::Wants(std::string_view family) const {
  return families.empty() || std::find(families.begin(), families.end(), family) != families.end();
}

Selection ParseSelection(int argc, char** argv, const std::vector<Sizes>& known) {
  Selection selection;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--quick") {
      selection.quick = true;
    } else if (std::any_of(known.begin(), known.end(), [&](const Sizes& sizes) { return sizes.family == argument; })) {
      selection.families.emplace_back(argument);
    } else {
      Usage(argv[0], known);
    }
  }
  return selection;
}

bool IsLeftOut(std::string_view peer, std::string_view family, std::string_view operation, std::size_t n) {
  static std::array<bool, std::size(kLimits)> told = {};
  for (std::size_t i = 0; i < std::size(kLimits); ++i) {
    const Limit& limit = kLimits[i];
    if (limit.peer != peer || !Covers(limit.family, family) || n <= limit.largest) continue;
    if (!limit.operation.empty() && limit.operation != operation) continue;
    if (!told[i]) {
      std::fprintf(stderr, "left out: %s on %s %s, sizes above %zu: %s\n", limit.peer.data(), limit.family.data(),
                   limit.operation.empty() ? "(all operations)" : limit.operation.data(), limit.largest, limit.reason.data());
    }
    told[i] = true;
    return true;
  }
  return false;
}

}  // namespace bench
