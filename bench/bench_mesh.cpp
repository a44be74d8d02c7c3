// Building triangle meshes with their edges, for our library and its peers, and the table of edges by itself.
//
// Names read mesh/triangles/operation/peer; the counter `units` is the number of triangles. Operations: "ordered" and "mixed" build
// a mesh (see MeshInput); "map" enters the edges of the mixed one into a table from pairs of vertices, where our peer is
// std::unordered_map. The number of edges is compared with Euler's formula.

#include <zbr/mesh.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "mesh_peer.h"
#include "run_benchmarks.h"
#include "selection.h"

namespace bench {
namespace {

const std::vector<Sizes> kSizes = {{"mesh", {10'000, 100'000}, {100'000, 1'000'000}}};

// Of a torus.
void CheckEdges(std::size_t edges, const zbr::drawing::Mesh& mesh) {
  const std::size_t expected = mesh.points.size() + mesh.triangles.size();
  if (edges == expected) return;
  throw std::runtime_error(std::to_string(edges) + " edges, expected " + std::to_string(expected));
}

void MeasureMesh(benchmark::State& state, const zbr::drawing::Mesh& mesh, MeshPeer& peer) {
  peer.Load(mesh);
  peer.Run();
  CheckEdges(peer.CountEdges(), mesh);
  peer.Drop();
  for (auto _ : state) {
    peer.Run();
    state.PauseTiming();
    peer.Drop();
    state.ResumeTiming();
  }
}

// std::unordered_map with the interface of our table.
class StandardMap {
 public:
  void SetVertexCnt(std::size_t) {}
  void Reserve(std::size_t n) { edges_.reserve(n); }
  int FindOrAdd(int a, int b) {
    const auto key = std::uint64_t{static_cast<std::uint32_t>(b)} << 32U | static_cast<std::uint32_t>(a);
    return edges_.emplace(key, static_cast<int>(edges_.size())).first->second;
  }

 private:
  std::unordered_map<std::uint64_t, int> edges_;
};

// Returns the number of different edges.
template <class Map>
std::size_t EnterEdges(Map& map, const zbr::drawing::Mesh& mesh) {
  int edges = 0;
  map.SetVertexCnt(mesh.points.size());
  map.Reserve(mesh.points.size() + mesh.triangles.size());
  for (const auto& corners : mesh.triangles) {
    for (std::size_t k = 0; k < 3; ++k) {
      const auto [a, b] = std::minmax(corners[k], corners[(k + 1) % 3]);
      if (map.FindOrAdd(static_cast<int>(a), static_cast<int>(b)) == edges) ++edges;
    }
  }
  return static_cast<std::size_t>(edges);
}

template <class Map>
void MeasureMap(benchmark::State& state, const zbr::drawing::Mesh& mesh) {
  for (auto _ : state) {
    auto map = std::make_unique<Map>();
    CheckEdges(EnterEdges(*map, mesh), mesh);
    state.PauseTiming();
    map.reset();
    state.ResumeTiming();
  }
}

// `measure` takes the state and the input.
template <class Measure>
void Register(std::size_t size, const std::string& operation, const std::string& peer, const Measure& measure) {
  const std::string name = "mesh/" + std::to_string(size) + "/" + operation + "/" + peer;
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    try {
      const zbr::drawing::Mesh mesh = MeshInput(size, operation != "ordered");
      measure(state, mesh);
      state.counters["units"] = static_cast<double>(mesh.triangles.size());
      state.SetLabel("triangle");
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
    }
  })->Unit(benchmark::kMillisecond);
}

void RegisterAll(const Selection& selection) {
  for (const std::size_t size : selection.Of(kSizes.front())) {
    for (const char* order : {"ordered", "mixed"}) {
      for (const Entry<MeshPeer>& entry : MeshPeers()) {
        Register(size, order, entry.name,
                 [&entry](auto& state, const zbr::drawing::Mesh& mesh) { MeasureMesh(state, mesh, *entry.make()); });
      }
    }
    Register(size, "map", "zbr", MeasureMap<ZBR_ZBREP_EDGE_MAP>);
    Register(size, "map", "std", MeasureMap<StandardMap>);
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunBenchmarks(argc, argv, bench::kSizes, bench::RegisterAll);
}
