// Boolean combinations of generated regions: every operation alone, and all five at once, for our library and its peers.
//
// Names read family/size/operation/peer. The counter `units` is what a time is divided by, the label says what it counts: input
// edges, or crossings for the combs. Before a peer is timed its result is compared with ours, and ours are held against the
// identities between the areas of the five; a difference is an error of that benchmark, or a note behind the label where it is
// one that the peer is known for.

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "agreement.h"
#include "bench_many.h"
#include "boolean_sizes.h"
#include "peer.h"
#include "run_benchmarks.h"
#include "selection.h"

namespace bench {
namespace {

const std::vector<Op> kEveryOp(std::begin(kAllOps), std::end(kAllOps));

struct Job {
  const PairFamily* family;
  std::size_t size;
  const Entry<BooleanPeer>* peer;
  std::string operation;
  std::vector<Op> ops;
};

// The input that is being measured, with our results for it, and the one peer that holds it. Benchmarks run in the order of their
// registration, input by input and peer by peer, so that one of each is enough.
class Stage {
 public:
  // The job's peer, loaded with the job's input, after its result has been compared.
  BooleanPeer& Prepare(const Job& job) {
    if (family_ != job.family || size_ != job.size) SetInput(job);
    if (entry_ != job.peer) SetPeer(job);
    if (compared_ != job.operation) Compare(job);
    return *peer_;
  }
  // What the comparison found worth telling.
  const std::string& note() const { return note_; }
  Units units() const { return UnitsOf(family_->name, size_, pair_); }

 private:
  void SetInput(const Job& job) {
    peer_.reset();
    entry_ = nullptr;
    family_ = nullptr;
    pair_ = job.family->make(job.size);
    areaA_ = Area(pair_.a);
    areaB_ = Area(pair_.b);
    const auto ours = BooleanPeers().front().make();
    ours->Load(pair_);
    ours->Run(kEveryOp);
    reference_ = ours->Describe();
    RequireAreaIdentities(reference_, areaA_, areaB_);
    family_ = job.family;
    size_ = job.size;
  }

  void SetPeer(const Job& job) {
    compared_.clear();
    peer_ = job.peer->make();
    peer_->Load(pair_);
    entry_ = job.peer;
  }

  void Compare(const Job& job) {
    note_.clear();
    peer_->Run(job.ops);
    const std::vector<Summary> results = peer_->Describe();
    peer_->Drop();
    for (std::size_t k = 0; k < job.ops.size(); ++k) {
      const Summary& expected = reference_[static_cast<std::size_t>(job.ops[k])];
      note_ += CompareResults({entry_->name, family_->name, OpName(job.ops[k]), results[k], expected, areaA_ + areaB_});
    }
    compared_ = job.operation;
  }

  const PairFamily* family_ = nullptr;
  std::size_t size_ = 0;
  RegionPair pair_;
  double areaA_ = 0.0;
  double areaB_ = 0.0;
  std::vector<Summary> reference_;  // in the order of kAllOps
  const Entry<BooleanPeer>* entry_ = nullptr;
  std::unique_ptr<BooleanPeer> peer_;
  std::string compared_;
  std::string note_;
};

void Measure(benchmark::State& state, const Job& job) {
  static Stage stage;
  try {
    BooleanPeer& peer = stage.Prepare(job);
    for (auto _ : state) {
      peer.Run(job.ops);
      state.PauseTiming();
      peer.Drop();
      state.ResumeTiming();
    }
    const Units units = stage.units();
    state.counters["units"] = units.count;
    state.SetLabel(units.name + (stage.note().empty() ? "" : "; " + stage.note()));
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void Register(const Job& job) {
  if (IsLeftOut(job.peer->name, job.family->name, job.operation, job.size)) return;
  const std::string name =
      std::string(job.family->name) + "/" + std::to_string(job.size) + "/" + job.operation + "/" + job.peer->name;
  benchmark::RegisterBenchmark(name.c_str(), [job](benchmark::State& state) {
    Measure(state, job);
  })->Unit(benchmark::kMillisecond);
}

// Only ours shares work between operations; five in one call are five calls for the others.
void RegisterInput(const PairFamily& family, std::size_t size) {
  for (const Entry<BooleanPeer>& peer : BooleanPeers()) {
    for (const Op op : kAllOps) Register({&family, size, &peer, OpName(op), {op}});
    if (&peer == &BooleanPeers().front()) Register({&family, size, &peer, "all", kEveryOp});
  }
}

void RegisterAll(const Selection& selection) {
  for (const Sizes& sizes : BooleanSizes()) {
    if (!selection.Wants(sizes.family)) continue;
    RegisterMany(sizes.family, selection.Of(sizes));
    for (const PairFamily& family : PairFamilies()) {
      if (family.name != sizes.family) continue;
      for (const std::size_t size : selection.Of(sizes)) RegisterInput(family, size);
    }
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunBenchmarks(argc, argv, bench::BooleanSizes(), bench::RegisterAll);
}
