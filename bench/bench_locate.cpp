// Many points against one region: a coastline of the given number of edges, and a square with a quarter as many holes, which has as
// many edges. Building the index and asking are measured apart.
//
// Names read family/size/build/peer and family/size/query/peer; the counter `units` is the number of edges, or of points asked
// about. Before a peer is timed, all its answers are compared with those of our test without an index. Libraries without an index
// are asked about fewer points and take no part in building.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "peer.h"
#include "portable_numbers.h"
#include "run_benchmarks.h"
#include "selection.h"

namespace bench {
namespace {

const std::vector<Sizes> kSizes = {
    {"locate-ring", {1'000, 10'000}, {10'000, 100'000}},
    {"locate-region", {1'000, 10'000}, {10'000, 100'000}},
};

constexpr std::size_t kPoints = 100'000;
constexpr std::size_t kComparedPoints = 200;  // about 40 us each without an index on 100,000 edges

bool HasIndex(std::string_view peer) {
  return peer == "zbr" || peer == "geos";
}

Region MakeRegion(std::string_view family, std::size_t edges) {
  return family == "locate-ring" ? MakeCoast(edges).a : MakeHoles(edges / 4).a;
}

// Points spread evenly over the region's bounding box.
std::vector<ZBR_PT> MakePoints(const Region& region) {
  ZBR_PT low = region.front().outer.front();
  ZBR_PT high = low;
  for (const Polygon& polygon : region) {
    for (const ZBR_PT& p : polygon.outer) {
      low.Set(std::min(low.x(), p.x()), std::min(low.y(), p.y()));
      high.Set(std::max(high.x(), p.x()), std::max(high.y(), p.y()));
    }
  }
  Random random(41);
  std::vector<ZBR_PT> points;
  points.reserve(kPoints);
  for (std::size_t i = 0; i < kPoints; ++i) {
    const double x = random.Between(low.x(), high.x());
    points.emplace_back(x, random.Between(low.y(), high.y()));
  }
  return points;
}

struct Job {
  std::string_view family;
  std::size_t size;
  const Entry<LocatePeer>* peer;
};

std::unique_ptr<LocatePeer> MakeLoaded(const Entry<LocatePeer>& entry, const Region& region, const std::vector<ZBR_PT>& points) {
  auto peer = entry.make();
  peer->Load(region, points);
  peer->Build();
  return peer;
}

// The answers of libraries with an index are compared among each other too, on all points.
void Compare(const LocatePeer& peer, const Region& region, const std::vector<ZBR_PT>& points, std::size_t asked) {
  const auto compareWith = [&](const Entry<LocatePeer>& entry, std::size_t count) {
    std::vector<char> expected(count);
    std::vector<char> answers(count);
    MakeLoaded(entry, region, points)->Query(0, count, expected.data());
    peer.Query(0, count, answers.data());
    const auto differing = std::mismatch(answers.begin(), answers.end(), expected.begin()).first;
    if (differing != answers.end()) {
      throw std::runtime_error("differs from " + entry.name + " at point " + std::to_string(differing - answers.begin()));
    }
  };
  for (const Entry<LocatePeer>& entry : LocatePeers()) {
    compareWith(entry, HasIndex(entry.name) ? asked : std::min(asked, kComparedPoints));
  }
}

void MeasureQuery(benchmark::State& state, const Job& job) {
  try {
    const Region region = MakeRegion(job.family, job.size);
    const std::vector<ZBR_PT> points = MakePoints(region);
    const auto peer = MakeLoaded(*job.peer, region, points);
    const std::size_t asked = HasIndex(job.peer->name) ? kPoints : kComparedPoints;
    Compare(*peer, region, points, asked);
    std::vector<char> answers(asked);
    for (auto _ : state) {
      peer->Query(0, asked, answers.data());
      benchmark::DoNotOptimize(answers.data());
    }
    state.counters["units"] = static_cast<double>(asked);
    state.SetLabel("point");
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void MeasureBuild(benchmark::State& state, const Job& job) {
  try {
    const Region region = MakeRegion(job.family, job.size);
    const auto peer = MakeLoaded(*job.peer, region, MakePoints(region));
    for (auto _ : state) peer->Build();
    state.counters["units"] = static_cast<double>(CountEdges(region));
    state.SetLabel("edge");
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void RegisterAll(const Selection& selection) {
  for (const Sizes& sizes : kSizes) {
    if (!selection.Wants(sizes.family)) continue;
    for (const std::size_t size : selection.Of(sizes)) {
      for (const Entry<LocatePeer>& peer : LocatePeers()) {
        const Job job = {sizes.family, size, &peer};
        const std::string prefix = std::string(sizes.family) + "/" + std::to_string(size) + "/";
        benchmark::RegisterBenchmark((prefix + "query/" + peer.name).c_str(), [job](benchmark::State& state) {
          MeasureQuery(state, job);
        })->Unit(benchmark::kMillisecond);
        if (!HasIndex(peer.name)) continue;
        benchmark::RegisterBenchmark((prefix + "build/" + peer.name).c_str(), [job](benchmark::State& state) {
          MeasureBuild(state, job);
        })->Unit(benchmark::kMillisecond);
      }
    }
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunBenchmarks(argc, argv, bench::kSizes, bench::RegisterAll);
}
