// Peak memory of a Boolean, and of building a mesh, above the loaded inputs, results included, for our library and its peers.
//
// Each measurement is a process of its own, forked when the input is loaded and the freed memory is given back: its resident set
// then starts as the parent's, and its high-water mark counts what the run touches beyond that. Prints, as comma-separated values,
// family, size, operation, peer, and the peak in MiB. For Linux.

#include <sys/wait.h>
#include <unistd.h>

#include <malloc.h>

#include <cstdio>
#include <exception>
#include <iterator>
#include <string>
#include <vector>

#include "mesh_peer.h"
#include "peer.h"
#include "process_status.h"
#include "selection.h"

namespace bench {
namespace {

const std::vector<Sizes> kSizes = {
    {"star", {10'000}, {100'000}},    {"coast", {100'000}, {1'000'000}}, {"countries", {10'000}, {100'000}},
    {"borders", {10'000}, {100'000}}, {"revision", {10'000}, {100'000}}, {"tiles", {1'000}, {10'000}},
    {"holes", {1'000}, {10'000}},     {"comb", {200}, {1'000}},          {"grid", {32}, {128}},
    {"mesh", {100'000}, {1'000'000}},
};

// Runs in the forked process; returns its exit code.
template <class Work>
int MeasureHere(const Work& work, const std::string& name) {
  const double before = StatusMib("VmRSS");
  try {
    work();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
    return 1;
  }
  std::printf("%s,%.1f\n", name.c_str(), StatusMib("VmHWM") - before);
  std::fflush(stdout);
  return 0;
}

// Whether the measurement succeeded.
template <class Work>
bool MeasureForked(const Work& work, const std::string& name) {
  malloc_trim(0);
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) _exit(MeasureHere(work, name));
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool MeasureFamily(const PairFamily& family, std::size_t size) {
  bool good = true;
  for (const Entry<BooleanPeer>& entry : BooleanPeers()) {
    const auto peer = entry.make();
    peer->Load(family.make(size));
    const auto measure = [&](const std::string& operation, const std::vector<Op>& ops) {
      good &= MeasureForked([&] { peer->Run(ops); },
                            std::string(family.name) + "," + std::to_string(size) + "," + operation + "," + entry.name);
    };
    for (const Op op : kAllOps) {
      if (!IsLeftOut(entry.name, family.name, OpName(op), size)) measure(OpName(op), {op});
    }
    if (&entry == &BooleanPeers().front()) measure("all", std::vector<Op>(std::begin(kAllOps), std::end(kAllOps)));
  }
  return good;
}

bool MeasureMeshes(std::size_t size) {
  bool good = true;
  const zbr::drawing::Mesh mesh = MeshInput(size, false);
  for (const Entry<MeshPeer>& entry : MeshPeers()) {
    const auto peer = entry.make();
    peer->Load(mesh);
    good &= MeasureForked([&] { peer->Run(); }, "mesh," + std::to_string(size) + ",ordered," + entry.name);
  }
  return good;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bench::Selection selection = bench::ParseSelection(argc, argv, bench::kSizes);
  bool good = true;
  for (const bench::Sizes& sizes : bench::kSizes) {
    if (!selection.Wants(sizes.family)) continue;
    if (sizes.family == "mesh") {
      for (const std::size_t size : selection.Of(sizes)) good &= bench::MeasureMeshes(size);
    }
    for (const bench::PairFamily& family : bench::PairFamilies()) {
      if (family.name != sizes.family) continue;
      for (const std::size_t size : selection.Of(sizes)) good &= bench::MeasureFamily(family, size);
    }
  }
  return good ? 0 : 1;
}
