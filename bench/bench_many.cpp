// The families of many small rings: pairs, each combined by itself, and rings that are united. Every peer's result is compared with
// ours before it is timed.

#include "bench_many.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "agreement.h"
#include "boolean_sizes.h"
#include "peer.h"
#include "selection.h"

namespace bench {
namespace {

// One input and one operation, for which all peers are asked in turn.
template <class Peer, class Input>
struct Task {
  std::string family;
  std::size_t size = 0;
  Op op = Op::kUnion;
  std::function<Input()> make;
  std::function<void(Peer&)> run;
  const std::vector<Entry<Peer>>* entries = nullptr;
  std::optional<Summary> ours;  // of the first of them
};

double AreaOf(const std::vector<Ring>& rings) {
  double sum = 0.0;
  for (const Ring& ring : rings) sum += Area(ring);
  return sum;
}

double AreaOf(const std::vector<RegionPair>& pairs) {
  double sum = 0.0;
  for (const RegionPair& pair : pairs) sum += Area(pair.a) + Area(pair.b);
  return sum;
}

template <class Peer, class Input>
Summary ResultOf(const Task<Peer, Input>& task, Peer& peer) {
  task.run(peer);
  const Summary result = peer.Describe();
  peer.Drop();
  return result;
}

template <class Peer, class Input>
void Measure(benchmark::State& state, Task<Peer, Input>& task, const Entry<Peer>& entry) {
  try {
    const Input input = task.make();
    const auto peer = entry.make();
    peer->Load(input);
    const Summary result = ResultOf(task, *peer);
    if (!task.ours) {
      const auto ours = task.entries->front().make();
      ours->Load(input);
      task.ours = ResultOf(task, *ours);
    }
    const std::string note = CompareResults({entry.name, task.family, OpName(task.op), result, *task.ours, AreaOf(input)});
    for (auto _ : state) {
      task.run(*peer);
      state.PauseTiming();
      peer->Drop();
      state.ResumeTiming();
    }
    const Units units = UnitsOf(task.family, task.size, input);
    state.counters["units"] = units.count;
    state.SetLabel(units.name + (note.empty() ? "" : "; " + note));
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

template <class Peer, class Input>
void Register(const Task<Peer, Input>& task) {
  const auto shared = std::make_shared<Task<Peer, Input>>(task);
  for (const Entry<Peer>& entry : *task.entries) {
    if (IsLeftOut(entry.name, task.family, OpName(task.op), task.size)) continue;
    const std::string name = task.family + "/" + std::to_string(task.size) + "/" + OpName(task.op) + "/" + entry.name;
    benchmark::RegisterBenchmark(name.c_str(), [shared, &entry](benchmark::State& state) {
      Measure(state, *shared, entry);
    })->Unit(benchmark::kMillisecond);
  }
}

}  // namespace

void RegisterMany(std::string_view family, const std::vector<std::size_t>& sizes) {
  for (const std::size_t size : sizes) {
    if (family == "pairs") {
      for (const Op op : kFirstOps) {
        Register<PairsPeer, std::vector<RegionPair>>({std::string(family),
                                                      size,
                                                      op,
                                                      [size] { return MakePairs(size); },
                                                      [op](PairsPeer& peer) { peer.Run(op); },
                                                      &PairsPeers(),
                                                      {}});
      }
    }
    for (const RingsFamily& rings : RingsFamilies()) {
      if (rings.name != family) continue;
      Register<RingsPeer, std::vector<Ring>>({std::string(family),
                                              size,
                                              Op::kUnion,
                                              [&rings, size] { return rings.make(size); },
                                              [](RingsPeer& peer) { peer.Run(); },
                                              &UnionPeers(),
                                              {}});
    }
  }
}

}  // namespace bench
