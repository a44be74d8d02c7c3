// First and repeated calls on the inputs of bench_boolean, peer by peer in turn.
//
// A program that combines two regions once pays for memory that it has not had before; one that does so all day does not. Each
// measurement is a process of its own, forked when the input is loaded: it runs once and then three times more. Rounds go through
// all peers before the next begins, so that what else the machine does falls on all alike. Prints, as comma-separated values,
// family, size, operation, peer, unit, and the medians over the rounds in nanoseconds of CPU time per unit: of the first call, and
// of the median of the others. For Linux.

#include <sys/wait.h>
#include <unistd.h>

#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "boolean_sizes.h"
#include "peer.h"
#include "selection.h"

namespace bench {
namespace {

constexpr int kRounds = 3;
constexpr int kRepeats = 3;

struct Times {
  double first = 0.0;
  double again = 0.0;
};

// A peer with its input: Run forms the result, Drop frees it.
struct Loaded {
  std::string peer;
  std::function<void()> run;
  std::function<void()> drop;
  std::vector<Times> rounds;
};

double CpuNanoseconds() {
  std::timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return 1e9 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec);
}

double TimeRun(const Loaded& loaded) {
  const double start = CpuNanoseconds();
  loaded.run();
  const double time = CpuNanoseconds() - start;
  loaded.drop();
  return time;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// In the forked process; returns its exit code.
int MeasureHere(const Loaded& loaded, int out) {
  try {
    Times times{TimeRun(loaded), 0.0};
    std::vector<double> again;
    for (int i = 0; i < kRepeats; ++i) again.push_back(TimeRun(loaded));
    times.again = Median(again);
    return write(out, &times, sizeof times) == sizeof times ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", loaded.peer.c_str(), error.what());
    return 1;
  }
}

// Whether the measurement succeeded.
bool MeasureForked(Loaded& loaded) {
  malloc_trim(0);
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return false;
  const pid_t child = fork();
  if (child == 0) _exit(MeasureHere(loaded, ends[1]));
  close(ends[1]);
  Times times;
  const bool isRead = child > 0 && read(ends[0], &times, sizeof times) == sizeof times;
  close(ends[0]);
  int status = 0;
  const bool isDone = child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (isRead && isDone) loaded.rounds.push_back(times);
  return isRead && isDone;
}

bool Measure(std::vector<Loaded> all, const std::string& name, const std::string& unit, double units) {
  bool good = true;
  for (int round = 0; round < kRounds; ++round) {
    for (Loaded& loaded : all) good &= MeasureForked(loaded);
  }
  for (const Loaded& loaded : all) {
    if (loaded.rounds.empty()) continue;
    std::vector<double> first;
    std::vector<double> again;
    for (const Times& times : loaded.rounds) {
      first.push_back(times.first / units);
      again.push_back(times.again / units);
    }
    std::printf("%s,%s,%s,%.1f,%.1f\n", name.c_str(), loaded.peer.c_str(), unit.c_str(), Median(first), Median(again));
  }
  std::fflush(stdout);
  return good;
}

// Loads all peers with one input and measures each operation.
template <class Peer, class Input, class Start>
bool MeasureInput(const std::vector<Entry<Peer>>& entries, const std::string& family, std::size_t size, const Input& input,
                  const std::vector<std::string>& operations, const Start& start) {
  std::vector<std::unique_ptr<Peer>> peers;
  for (const Entry<Peer>& entry : entries) {
    peers.push_back(entry.make());
    peers.back()->Load(input);
  }
  bool good = true;
  const Units units = UnitsOf(family, size, input);
  for (std::size_t op = 0; op < operations.size(); ++op) {
    std::vector<Loaded> all;
    for (std::size_t i = 0; i < peers.size(); ++i) {
      if (IsLeftOut(entries[i].name, family, operations[op], size)) continue;
      Peer& peer = *peers[i];
      all.push_back({entries[i].name, [&peer, &start, op] { start(peer, op); }, [&peer] { peer.Drop(); }, {}});
    }
    good &= Measure(std::move(all), family + "," + std::to_string(size) + "," + operations[op], units.name, units.count);
  }
  return good;
}

bool MeasureFamily(const Sizes& sizes, std::size_t size) {
  const std::string name(sizes.family);
  const std::vector<std::string> operations = {OpName(kFirstOps[0]), OpName(kFirstOps[1]), OpName(kFirstOps[2]),
                                               OpName(kFirstOps[3])};
  if (name == "pairs") {
    return MeasureInput(PairsPeers(), name, size, MakePairs(size), operations,
                        [](PairsPeer& peer, std::size_t op) { peer.Run(kFirstOps[op]); });
  }
  for (const RingsFamily& family : RingsFamilies()) {
    if (family.name == name) {
      return MeasureInput(UnionPeers(), name, size, family.make(size), {"union"}, [](RingsPeer& peer, std::size_t) { peer.Run(); });
    }
  }
  for (const PairFamily& family : PairFamilies()) {
    if (family.name == name) {
      return MeasureInput(BooleanPeers(), name, size, family.make(size), operations,
                          [](BooleanPeer& peer, std::size_t op) { peer.Run({kFirstOps[op]}); });
    }
  }
  return false;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bench::Selection selection = bench::ParseSelection(argc, argv, bench::BooleanSizes());
  bool good = true;
  for (const bench::Sizes& sizes : bench::BooleanSizes()) {
    if (!selection.Wants(sizes.family)) continue;
    for (const std::size_t size : selection.Of(sizes)) good &= bench::MeasureFamily(sizes, size);
  }
  return good ? 0 : 1;
}
