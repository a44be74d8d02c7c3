// Checks the generated inputs: that they are valid (with GEOS), and that they are the same bits on every machine (with digests).
//
//   check_workloads               every family at a moderate size, against the stored digest
//   check_workloads FAMILY SIZE   that input alone; the digest is only printed
//
// Prints one line per input and fails if any is wrong.

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "geos_geometry.h"
#include "portable_numbers.h"
#include "workloads.h"

namespace bench {
namespace {

struct Stored {
  std::string_view family;
  std::size_t size;
  std::uint64_t digest;
};

constexpr Stored kStored[] = {
    {"star", 20'000, 0xbe1a1d0203cb235c},     {"coast", 20'000, 0x41dac7e2f111bfe5},     {"tiles", 5'000, 0x28b879d77061fde0},
    {"holes", 5'000, 0x3651a3bff6209446},     {"comb", 1'000, 0x03a2d45cfef06eb3},       {"combr", 1'000, 0xdca24e31b3f83440},
    {"grid", 200, 0xfea4d10476924b1f},        {"countries", 20'000, 0x07b5aa461ce085bc}, {"borders", 20'000, 0x607483e870308810},
    {"revision", 20'000, 0x6c5e0cfd0a29fe64}, {"nest", 500, 0x48e8f46adf869714},         {"nestw", 5'003, 0xe44650bc1b6788cd},
};

// The regions of a family: two, or one for the families of nesting. None if there is no such family.
std::vector<Region> MakeRegions(std::string_view name, std::size_t size) {
  for (const PairFamily& family : PairFamilies()) {
    if (family.name != name) continue;
    RegionPair pair = family.make(size);
    return {std::move(pair.a), std::move(pair.b)};
  }
  for (const NestFamily& family : NestFamilies()) {
    if (family.name == name) return {family.make(size)};
  }
  return {};
}

std::uint64_t Bits(double value) {
  std::uint64_t bits = 0;
  static_assert(sizeof bits == sizeof value);
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

std::uint64_t Digest(const std::vector<Region>& regions) {
  std::uint64_t digest = 0;
  const auto add = [&](const Ring& ring) {
    digest = Mix(digest + ring.size());
    for (const ZBR_PT& p : ring) digest = Mix(Mix(digest + Bits(p.x())) + Bits(p.y()));
  };
  for (const Region& region : regions) {
    for (const Polygon& polygon : region) {
      add(polygon.outer);
      for (const Ring& hole : polygon.holes) add(hole);
    }
  }
  return digest;
}

std::string Fault(const GeosContext& geos, const Region& region) {
  const GeosGeometry geometry = MakeGeometry(geos, region);
  if (GEOSisValid_r(geos.handle(), geometry.get()) == 1) return {};
  char* reason = GEOSisValidReason_r(geos.handle(), geometry.get());
  const std::string text = reason != nullptr ? reason : "cannot be examined";
  GEOSFree_r(geos.handle(), reason);
  return text;
}

// Whether the input is valid. GEOS accepts rings that touch at single points, so touching is excluded by the families' making.
bool Check(std::string_view name, std::size_t size, std::uint64_t& digest) {
  const GeosContext geos;
  const std::vector<Region> regions = MakeRegions(name, size);
  std::size_t edges = 0;
  std::size_t rings = 0;
  std::string fault = regions.empty() ? "unknown family" : "";
  for (const Region& region : regions) {
    edges += CountEdges(region);
    rings += CountRings(region);
    if (fault.empty()) fault = Fault(geos, region);
  }
  digest = Digest(regions);
  std::printf("%-9.*s %8zu  edges %8zu  rings %7zu  digest %016" PRIx64 "  %s\n", static_cast<int>(name.size()), name.data(), size,
              edges, rings, digest, fault.empty() ? "valid" : fault.c_str());
  return fault.empty();
}

bool CheckStored() {
  bool good = true;
  for (const Stored& stored : kStored) {
    std::uint64_t digest = 0;
    good &= Check(stored.family, stored.size, digest);
    if (digest == stored.digest) continue;
    std::printf("          the digest should be %016" PRIx64 "\n", stored.digest);
    good = false;
  }
  return good;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    if (argc == 1) return bench::CheckStored() ? 0 : 1;
    std::uint64_t digest = 0;
    if (argc == 3) return bench::Check(argv[1], std::strtoull(argv[2], nullptr, 10), digest) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "check_workloads: %s\n", error.what());
    return 1;
  }
  std::fprintf(stderr, "usage: check_workloads [FAMILY SIZE]\n");
  return 2;
}
