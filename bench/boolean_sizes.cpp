#include "boolean_sizes.h"

namespace bench {

const std::vector<Sizes>& BooleanSizes() {
  static const std::vector<Sizes> sizes = {
      {"star", {10'000, 100'000}, {100'000, 1'000'000}},
      {"coast", {10'000, 100'000}, {100'000, 1'000'000}},
      {"countries", {10'000, 100'000}, {100'000, 1'000'000}},
      {"borders", {10'000, 100'000}, {100'000, 1'000'000}},
      {"revision", {10'000, 100'000}, {100'000, 1'000'000}},
      {"tiles", {1'000, 10'000}, {10'000, 100'000}},
      {"holes", {1'000, 10'000}, {10'000, 100'000}},
      {"comb", {200, 400}, {1000, 2000}},
      {"combr", {200, 400}, {1000, 2000}},
      {"grid", {32, 128}, {128, 512}},
      {"pairs", {1'000, 10'000}, {10'000, 100'000}},
      {"circles", {300, 1'000}, {1'000, 10'000}},
      {"rects", {300, 1'000}, {1'000, 10'000}},
  };
  return sizes;
}

Units UnitsOf(std::string_view family, std::size_t size, const RegionPair& pair) {
  const double half = 0.5 * static_cast<double>(size);
  if (family.starts_with("comb")) return {"crossing", half * half};
  return {"edge", static_cast<double>(CountEdges(pair.a) + CountEdges(pair.b))};
}

Units UnitsOf(std::string_view, std::size_t, const std::vector<Ring>& rings) {
  std::size_t edges = 0;
  for (const Ring& ring : rings) edges += ring.size();
  return {"edge", static_cast<double>(edges)};
}

Units UnitsOf(std::string_view, std::size_t, const std::vector<RegionPair>& pairs) {
  return {"pair", static_cast<double>(pairs.size())};
}

}  // namespace bench
