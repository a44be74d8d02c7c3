// Very many short strings, handed to our block allocator and its peers.
//
// Names read alloc/strings/operation/peer; the counter `units` is the number of strings, which have 4 to 40 bytes. Operations:
// "strings" copies them into a fresh allocator; "strings-again" takes everything back and copies them once more; "buffers" and
// "buffers-again" only ask for the room. Peers: std::pmr::monotonic_buffer_resource without alignment, and malloc, where taking
// back means to free each.

#include <benchmark/benchmark.h>
#include <zbr/allocator.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <memory_resource>
#include <string>
#include <utility>
#include <vector>

#include "portable_numbers.h"
#include "run_benchmarks.h"
#include "selection.h"

namespace bench {
namespace {

const std::vector<Sizes> kSizes = {{"alloc", {100'000, 1'000'000}, {1'000'000, 10'000'000}}};

constexpr unsigned int kBlockSize = 1U << 16U;

class ZbrBuffers {
 public:
  explicit ZbrBuffers(std::size_t) {}
  void* Get(std::size_t size) { return alloc_.GetBuffer(static_cast<unsigned int>(size)); }
  char* Push(const char* s) { return alloc_.PushString(s); }
  void TakeBack() { alloc_.clear(); }

 private:
  ZBR_CSimpleAlloc alloc_{kBlockSize};
};

template <class Buffers>
char* PushBy(Buffers& buffers, const char* s) {
  const std::size_t size = std::strlen(s) + 1;
  return static_cast<char*>(std::memcpy(buffers.Get(size), s, size));
}

class PmrBuffers {
 public:
  explicit PmrBuffers(std::size_t) {}
  void* Get(std::size_t size) { return resource_.allocate(size, 1); }
  char* Push(const char* s) { return PushBy(*this, s); }
  void TakeBack() { resource_.release(); }

 private:
  std::pmr::monotonic_buffer_resource resource_{kBlockSize};
};

class MallocBuffers {
 public:
  explicit MallocBuffers(std::size_t count) { given_.reserve(count); }
  MallocBuffers(const MallocBuffers&) = delete;
  MallocBuffers& operator=(const MallocBuffers&) = delete;
  ~MallocBuffers() { TakeBack(); }
  void* Get(std::size_t size) { return given_.emplace_back(std::malloc(size)); }
  char* Push(const char* s) { return PushBy(*this, s); }
  void TakeBack() {
    for (void* buffer : given_) std::free(buffer);
    given_.clear();
  }

 private:
  std::vector<void*> given_;
};

// The strings, which repeat after kKinds of them so that reading them costs little.
class Strings {
 public:
  static constexpr std::size_t kKinds = 1U << 14U;

  Strings() {
    Random random(1);
    for (std::size_t i = 0; i < kKinds; ++i) {
      strings_.emplace_back(4 + random.Below(37), static_cast<char>('a' + i % 26));
    }
  }
  const std::string& operator[](std::size_t i) const { return strings_[i % kKinds]; }

 private:
  std::vector<std::string> strings_;
};

// What is measured: whether strings are copied or room is only asked for, and whether after everything was taken back.
struct Copied {
  template <class Buffers>
  static void* Put(Buffers& buffers, const std::string& s) {
    return buffers.Push(s.c_str());
  }
};
struct AskedFor {
  template <class Buffers>
  static void* Put(Buffers& buffers, const std::string& s) {
    return buffers.Get(s.size());
  }
};

template <class Work, class Buffers>
void Fill(Buffers& buffers, const Strings& strings, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) benchmark::DoNotOptimize(Work::Put(buffers, strings[i]));
}

template <class Work, class Buffers>
void MeasureFresh(benchmark::State& state, const Strings& strings, std::size_t count) {
  auto buffers = std::make_unique<Buffers>(count);
  for (auto _ : state) {
    state.PauseTiming();
    buffers = std::make_unique<Buffers>(count);
    state.ResumeTiming();
    Fill<Work>(*buffers, strings, count);
  }
}

template <class Work, class Buffers>
void MeasureAgain(benchmark::State& state, const Strings& strings, std::size_t count) {
  Buffers buffers(count);
  Fill<Work>(buffers, strings, count);
  for (auto _ : state) {
    buffers.TakeBack();
    Fill<Work>(buffers, strings, count);
  }
}

using Measure = void (*)(benchmark::State&, const Strings&, std::size_t);

template <class Buffers>
void Register(std::size_t count, const std::string& peer) {
  constexpr std::pair<const char*, Measure> kOperations[] = {
      {"strings", MeasureFresh<Copied, Buffers>},
      {"strings-again", MeasureAgain<Copied, Buffers>},
      {"buffers", MeasureFresh<AskedFor, Buffers>},
      {"buffers-again", MeasureAgain<AskedFor, Buffers>},
  };
  for (const auto& [operation, measure] : kOperations) {
    const std::string name = "alloc/" + std::to_string(count) + "/" + operation + "/" + peer;
    benchmark::RegisterBenchmark(name.c_str(), [=, run = measure](benchmark::State& state) {
      run(state, Strings(), count);
      state.counters["units"] = static_cast<double>(count);
      state.SetLabel("string");
    })->Unit(benchmark::kMillisecond);
  }
}

void RegisterAll(const Selection& selection) {
  for (const std::size_t count : selection.Of(kSizes.front())) {
    Register<ZbrBuffers>(count, "zbr");
    Register<PmrBuffers>(count, "pmr");
    Register<MallocBuffers>(count, "malloc");
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunBenchmarks(argc, argv, bench::kSizes, bench::RegisterAll);
}
