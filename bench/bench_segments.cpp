// Sets of segments: removing repeats, clipping by a region.
//
// Names read family/size/operation/peer. Repeats, families segs-random (none) and segs-grid (most are): "dup" and "dup3" remove
// them from a planar and a spatial set, "same" those of another set of the same size; the counter `units` is the number of segments
// given. Our yardstick is std::sort by coordinates, without tolerance and order: what it leaves is compared in number.
//
// Clipping, families clip-REGION-EDGES: the operations are the kinds of lines (segment_inputs.h), `units` the number of segments
// given and inside pieces. A peer that handles line after line is given fewer of them. The length inside is compared.

#include <benchmark/benchmark.h>
#include <zbr/segments.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "clip_peer.h"
#include "run_benchmarks.h"
#include "segment_inputs.h"
#include "selection.h"

namespace bench {
namespace {

// Which lines, of which sizes, over which region.
struct ClipCase {
  Sizes sizes;
  std::string_view region;
  std::size_t edges;
  const char* lines;
};

const std::vector<std::size_t> kQuick = {10'000, 100'000};
const std::vector<std::size_t> kFull = {10'000, 100'000, 1'000'000};

// A long line has one or two pieces over the coasts, and over the combs more than half as many as there are teeth.
const std::vector<ClipCase> kClipCases = {
    {{"clip-coast-1k", kQuick, kFull}, "coast", 1'000, "short"},
    {{"clip-coast-1k", kQuick, kFull}, "coast", 1'000, "long"},
    {{"clip-coast-1k", kQuick, kFull}, "coast", 1'000, "hatch"},
    {{"clip-coast-1k", kQuick, kFull}, "coast", 1'000, "chain"},
    {{"clip-coast-100k", kQuick, kFull}, "coast", 100'000, "short"},
    {{"clip-coast-100k", {1'000, 10'000}, {10'000, 100'000}}, "coast", 100'000, "long"},
    {{"clip-coast-100k", {1'000, 10'000}, {10'000, 100'000}}, "coast", 100'000, "hatch"},
    {{"clip-coast-100k", kQuick, kFull}, "coast", 100'000, "chain"},
    {{"clip-comb-1k", kQuick, kFull}, "comb", 1'000, "short"},
    {{"clip-comb-1k", {100, 1'000}, {1'000, 10'000}}, "comb", 1'000, "long"},
    {{"clip-comb-1k", {100, 1'000}, {1'000, 10'000}}, "comb", 1'000, "hatch"},
    {{"clip-comb-1k", kQuick, kFull}, "comb", 1'000, "chain"},
    {{"clip-comb-100k", kQuick, kFull}, "comb", 100'000, "short"},
    {{"clip-comb-100k", {10, 30}, {30, 300}}, "comb", 100'000, "long"},
    {{"clip-comb-100k", {10, 30}, {30, 300}}, "comb", 100'000, "hatch"},
    {{"clip-comb-100k", kQuick, kFull}, "comb", 100'000, "chain"},
};

// The families; the sizes of one that clips depend on the lines.
std::vector<Sizes> KnownSizes() {
  std::vector<Sizes> sizes = {{"segs-random", kQuick, kFull}, {"segs-grid", kQuick, kFull}};
  for (const ClipCase& c : kClipCases) {
    if (sizes.back().family != c.sizes.family) sizes.push_back(c.sizes);
  }
  return sizes;
}

// Coordinates of the ends, the smaller end first.
std::array<double, 4> Key(const ZBR_SEG& s) {
  const std::array<double, 4> there = {s.s().x(), s.s().y(), s.e().x(), s.e().y()};
  const std::array<double, 4> back = {there[2], there[3], there[0], there[1]};
  return std::min(there, back);
}

std::array<double, 6> Key(const ZBR_SEG3& s) {
  const std::array<double, 6> there = {s.s().x(), s.s().y(), s.s().z(), s.e().x(), s.e().y(), s.e().z()};
  const std::array<double, 6> back = {there[3], there[4], there[5], there[0], there[1], there[2]};
  return std::min(there, back);
}

template <class Segment>
auto SortedKeys(const std::vector<Segment>& segments) {
  std::vector<decltype(Key(segments.front()))> keys;
  keys.reserve(segments.size());
  for (const Segment& s : segments) keys.push_back(Key(s));
  std::sort(keys.begin(), keys.end());
  return keys;
}

// The operations of either side: they return the number of segments left. The vector is a copy, made outside the clock.
template <class Segment>
std::size_t OurDup(const std::vector<Segment>&, std::vector<Segment>& segments) {
  zbrRemoveDupSeg(segments);
  return segments.size();
}

template <class Segment>
std::size_t SortedDup(const std::vector<Segment>&, std::vector<Segment>& segments) {
  const auto keys = SortedKeys(segments);
  std::size_t different = keys.empty() ? 0 : 1;
  for (std::size_t i = 1; i < keys.size(); ++i) different += keys[i] != keys[i - 1] ? 1 : 0;
  return different;
}

template <class Segment>
std::size_t OurSame(const std::vector<Segment>& ref, std::vector<Segment>& segments) {
  zbrRemoveSameSeg(ref, segments);
  return segments.size();
}

template <class Segment>
std::size_t SortedSame(const std::vector<Segment>& ref, std::vector<Segment>& segments) {
  const auto refKeys = SortedKeys(ref);
  const auto keys = SortedKeys(segments);
  auto at = refKeys.begin();
  std::size_t left = 0;
  for (const auto& key : keys) {
    while (at != refKeys.end() && *at < key) ++at;
    left += at == refKeys.end() || *at != key ? 1 : 0;
  }
  return left;
}

// What a set operation is measured with.
template <class Segment>
struct SetJob {
  std::string name;
  std::size_t (*run)(const std::vector<Segment>& ref, std::vector<Segment>& segments);
  std::size_t (*other)(const std::vector<Segment>& ref, std::vector<Segment>& segments);  // must leave as many
  bool withRef;
};

template <class Segment>
void MeasureSet(benchmark::State& state, const SetJob<Segment>& job, const std::vector<Segment>& segments,
                const std::vector<Segment>& ref) {
  std::vector<Segment> copy = segments;
  std::vector<Segment> another = segments;
  const std::size_t left = job.run(ref, copy);
  const std::size_t expected = job.other(ref, another);
  if (left != expected) {
    state.SkipWithError((std::to_string(left) + " segments left, expected " + std::to_string(expected)).c_str());
    return;
  }
  for (auto _ : state) {
    state.PauseTiming();
    copy = segments;
    state.ResumeTiming();
    benchmark::DoNotOptimize(job.run(ref, copy));
  }
  state.counters["units"] = static_cast<double>(segments.size() + ref.size());
  state.SetLabel("segment");
}

template <class Segment, class MakeSegments>
void RegisterSet(const SetJob<Segment>& job, std::size_t size, MakeSegments make) {
  benchmark::RegisterBenchmark(job.name.c_str(), [=](benchmark::State& state) {
    const std::vector<Segment> ref = job.withRef ? make(size, 2) : std::vector<Segment>();
    MeasureSet(state, job, make(size, 1), ref);
  })->Unit(benchmark::kMillisecond);
}

void RegisterSets(const Sizes& sizes, std::size_t size) {
  const auto make = sizes.family == "segs-random" ? RandomSegments : GridSegments;
  const auto lift = [make](std::size_t n, std::uint64_t seed) { return Lifted(make(n, seed)); };
  const std::string prefix = std::string(sizes.family) + "/" + std::to_string(size) + "/";
  RegisterSet<ZBR_SEG>({prefix + "dup/zbr", OurDup, SortedDup, false}, size, make);
  RegisterSet<ZBR_SEG>({prefix + "dup/std", SortedDup, OurDup, false}, size, make);
  RegisterSet<ZBR_SEG3>({prefix + "dup3/zbr", OurDup, SortedDup, false}, size, lift);
  RegisterSet<ZBR_SEG3>({prefix + "dup3/std", SortedDup, OurDup, false}, size, lift);
  RegisterSet<ZBR_SEG>({prefix + "same/zbr", OurSame, SortedSame, true}, size, make);
  RegisterSet<ZBR_SEG>({prefix + "same/std", SortedSame, OurSame, true}, size, make);
}

// Pieces at most the tolerance long, 1e-5, are not cut off by us; the integer peer rounds.
constexpr double kLengthTolerance = 1e-5;

ClipResult ClipOnce(ClipPeer& peer, const ClipInput& input) {
  peer.Load(input);
  peer.Run();
  const ClipResult result = peer.Describe();
  peer.Drop();
  return result;
}

// The number of lines that a peer gets: where it handles one after the other, each costs as much as the region has edges.
std::size_t AskedLines(const ClipCase& c, std::size_t size, const std::string& peer) {
  constexpr std::size_t kEdgesLookedAt = 5'000'000;
  const bool oneByOne = peer == "geos" && c.lines != std::string_view("chain");
  return oneByOne ? std::min(size, kEdgesLookedAt / c.edges) : size;
}

void MeasureClip(benchmark::State& state, const ClipCase& c, std::size_t size, const Entry<ClipPeer>& entry) {
  try {
    const ClipInput input = MakeClipInput(c.region, c.edges, c.lines, AskedLines(c, size, entry.name));
    const ClipResult ours = ClipOnce(*MakeZbrClip(), input);
    const auto peer = entry.make();
    const ClipResult result = ClipOnce(*peer, input);
    if (!(std::abs(result.length - ours.length) <= kLengthTolerance * ours.length) || ours.pieces == 0) {
      throw std::runtime_error("length inside " + std::to_string(result.length) + ", ours is " + std::to_string(ours.length));
    }
    for (auto _ : state) {
      peer->Run();
      state.PauseTiming();
      peer->Drop();
      state.ResumeTiming();
    }
    state.counters["units"] = static_cast<double>(input.segments.size() + ours.pieces);
    state.SetLabel("segment+piece");
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

void RegisterClip(const ClipCase& c, std::size_t size) {
  for (const Entry<ClipPeer>& peer : ClipPeers()) {
    if (IsLeftOut(peer.name, c.sizes.family, c.lines, size)) continue;
    const std::string name = std::string(c.sizes.family) + "/" + std::to_string(size) + "/" + c.lines + "/" + peer.name;
    benchmark::RegisterBenchmark(name.c_str(), [&c, size, &peer](benchmark::State& state) {
      MeasureClip(state, c, size, peer);
    })->Unit(benchmark::kMillisecond);
  }
}

void RegisterAll(const Selection& selection) {
  for (const Sizes& sizes : KnownSizes()) {
    if (sizes.family.substr(0, 4) != "segs" || !selection.Wants(sizes.family)) continue;
    for (const std::size_t size : selection.Of(sizes)) RegisterSets(sizes, size);
  }
  for (const ClipCase& c : kClipCases) {
    if (!selection.Wants(c.sizes.family)) continue;
    for (const std::size_t size : selection.Of(c.sizes)) RegisterClip(c, size);
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunBenchmarks(argc, argv, bench::KnownSizes(), bench::RegisterAll);
}
