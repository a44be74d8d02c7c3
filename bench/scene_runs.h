// The frame of the benchmarks that process whole scenes: arguments, clock, memory, rows of output, processes.
//
// Each library has a scene in a process of its own, whose high-water mark of memory is then the library's, and which is stopped
// when it takes too long. For Linux.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hidden_scenes.h"

namespace bench {

struct SceneOptions {
  bool quick = false;
  int repetitions = 3;
  unsigned peerSeconds = 60;  // of CPU time that one run of a peer may take; 0: no peers
  std::string meshFolder;
  std::optional<std::string> once;    // a scene
  std::vector<std::string> families;  // none: all
  std::vector<std::string> files;     // measured too, and nothing else unless families are named
};

// Runs the program that the arguments ask for; returns its exit code. `prefix` is what the families' names begin with,
// measure(scene) returns whether all went well, once(name) serves profilers.
struct SceneProgram {
  std::string name;
  std::string prefix;
  unsigned peerSeconds = 60;
  std::function<bool(const HiddenScene&, const SceneOptions&)> measure;
  std::function<void(const std::string&)> once;
};
int RunScenes(const SceneProgram& program, int argc, char** argv);

double CpuSeconds();

template <class Work>
double Time(const Work& work) {
  const double start = CpuSeconds();
  work();
  return CpuSeconds() - start;
}

double Median(std::vector<double> values);

// Gives freed memory back and lets the high-water mark start again from what is left, which is returned in MiB.
double ResetPeak();

// Prints the rows of one scene and library.
class Report {
 public:
  Report(const HiddenScene& scene, std::string library) : scene_(scene), library_(std::move(library)) {}
  void SetSize(std::size_t triangles, std::size_t edges) {
    triangles_ = triangles;
    edges_ = edges;
  }
  void Row(const char* operation, double value, const char* unit) const;
  // Of the whole process at its peak, and of that what was added since ResetPeak returned `loaded`.
  void Memory(double loaded) const;

 private:
  const HiddenScene& scene_;
  std::string library_;
  std::size_t triangles_ = 0;
  std::size_t edges_ = 0;
};

// Ends this process when it has used so much more CPU time; 0 lifts the limit.
void LimitCpu(unsigned seconds);

// How a child process ended.
enum class Outcome { kGood, kFailed, kTooLong };

// Runs `measure` in a child process; an exception's message goes to standard error, behind `name`.
Outcome Forked(const std::string& name, const std::function<void()>& measure);

}  // namespace bench
