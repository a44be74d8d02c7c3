// Nesting of flat lists of rings, in an order that tells nothing, for our library and its peers.
//
// Names read family/size/nest/peer; the counter `units` is the number of rings. Before a peer is timed, area and number of loops of
// its result are compared with those of the region from which the rings were taken.

#include <benchmark/benchmark.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "peer.h"
#include "run_benchmarks.h"
#include "selection.h"

namespace bench {
namespace {

const std::vector<Sizes> kSizes = {
    {"nest", {300, 1'000}, {2'000, 10'000}},
    {"nestw", {1'000, 10'000}, {10'000, 100'000}},
};

// All coordinates are small integers: every library's sum of areas is exact to this part.
constexpr double kAreaTolerance = 1e-12;

void Compare(RingsPeer& peer, const Region& region) {
  peer.Run();
  const Summary result = peer.Describe();
  peer.Drop();
  const double area = Area(region);
  if (std::abs(result.area - area) > kAreaTolerance * area) {
    throw std::runtime_error("area " + std::to_string(result.area) + ", expected " + std::to_string(area));
  }
  if (result.loops != CountRings(region)) {
    throw std::runtime_error(std::to_string(result.loops) + " loops, expected " + std::to_string(CountRings(region)));
  }
}

void Measure(benchmark::State& state, const NestFamily& family, std::size_t size, const Entry<RingsPeer>& entry) {
  try {
    const Region region = family.make(size);
    const auto peer = entry.make();
    peer->Load(ShuffledRings(region));
    Compare(*peer, region);
    for (auto _ : state) {
      peer->Run();
      state.PauseTiming();
      peer->Drop();
      state.ResumeTiming();
    }
    state.counters["units"] = static_cast<double>(size);
    state.SetLabel("ring");
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void Register(const NestFamily& family, std::size_t size) {
  for (const Entry<RingsPeer>& peer : NestPeers()) {
    if (IsLeftOut(peer.name, family.name, "nest", size)) continue;
    const std::string name = std::string(family.name) + "/" + std::to_string(size) + "/nest/" + peer.name;
    benchmark::RegisterBenchmark(name.c_str(), [&family, size, &peer](benchmark::State& state) {
      Measure(state, family, size, peer);
    })->Unit(benchmark::kMillisecond);
  }
}

void RegisterAll(const Selection& selection) {
  for (const Sizes& sizes : kSizes) {
    if (!selection.Wants(sizes.family)) continue;
    for (const NestFamily& family : NestFamilies()) {
      if (family.name != sizes.family) continue;
      for (const std::size_t size : selection.Of(sizes)) Register(family, size);
    }
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunBenchmarks(argc, argv, bench::kSizes, bench::RegisterAll);
}
