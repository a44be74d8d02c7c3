// The frame of the benchmarks that process whole scenes.

#include "scene_runs.h"

#include <malloc.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <utility>

#include "process_status.h"

namespace bench {
namespace {

const char* const kSceneFamilies[] = {"boxes", "torus", "gear", "gears", "models"};

[[noreturn]] void Usage(const SceneProgram& program) {
  std::fprintf(stderr,
               "usage: %s [--quick] [--repetitions N] [--peer-seconds S] [--meshes FOLDER] [FAMILY or MESHFILE...]\n"
               "       %s --once SCENE     (boxes:N boxes-top:N lattice:N torus:N gear:N gears:K, or a mesh file)\n"
               "families:",
               program.name.c_str(), program.name.c_str());
  for (const char* family : kSceneFamilies) std::fprintf(stderr, " %s-%s", program.prefix.c_str(), family);
  std::fprintf(stderr, "\n");
  std::exit(2);
}

bool IsFamily(const SceneProgram& program, const std::string& word) {
  return std::any_of(std::begin(kSceneFamilies), std::end(kSceneFamilies),
                     [&](const char* family) { return word == program.prefix + "-" + family; });
}

SceneOptions ParseOptions(const SceneProgram& program, const std::vector<std::string>& arguments) {
  SceneOptions options;
  options.meshFolder = BENCH_MESH_FOLDER;
  options.peerSeconds = program.peerSeconds;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const auto value = [&]() -> const std::string& {
      if (i + 1 == arguments.size()) Usage(program);
      return arguments[++i];
    };
    if (argument == "--quick") {
      options.quick = true;
    } else if (argument == "--repetitions") {
      options.repetitions = std::max(1, std::atoi(value().c_str()));
    } else if (argument == "--peer-seconds") {
      options.peerSeconds = static_cast<unsigned>(std::max(0, std::atoi(value().c_str())));
    } else if (argument == "--meshes") {
      options.meshFolder = value();
    } else if (argument == "--once") {
      options.once = value();
    } else if (IsFamily(program, argument)) {
      options.families.push_back(argument);
    } else if (access(argument.c_str(), R_OK) == 0) {
      options.files.push_back(argument);
    } else {
      Usage(program);
    }
  }
  return options;
}

std::vector<HiddenScene> WantedScenes(const SceneProgram& program, const SceneOptions& options) {
  std::vector<HiddenScene> wanted;
  for (HiddenScene& scene : HiddenScenes(program.prefix, options.meshFolder)) {
    const auto& families = options.families;
    const bool named = std::find(families.begin(), families.end(), scene.family) != families.end();
    const bool all = families.empty() && options.files.empty();
    if ((named || all) && (scene.quick || !options.quick)) wanted.push_back(std::move(scene));
  }
  for (const std::string& file : options.files) wanted.push_back({program.prefix + "-models", file, true});
  return wanted;
}

}  // namespace

int RunScenes(const SceneProgram& program, int argc, char** argv) {
  const SceneOptions options = ParseOptions(program, std::vector<std::string>(argv + 1, argv + argc));
  if (options.once) {
    try {
      program.once(*options.once);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s: %s\n", program.name.c_str(), error.what());
      return 2;
    }
    return 0;
  }
  bool good = true;
  for (const HiddenScene& scene : WantedScenes(program, options)) {
    std::fprintf(stderr, "%s\n", scene.name.c_str());
    good &= program.measure(scene, options);
  }
  return good ? 0 : 1;
}

double CpuSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

double ResetPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;
  return StatusMib("VmRSS");
}

void Report::Row(const char* operation, double value, const char* unit) const {
  std::printf("%s,%s,%zu,%zu,%s,%s,%.17g,%s\n", scene_.family.c_str(), scene_.name.c_str(), triangles_, edges_, operation,
              library_.c_str(), value, unit);
}

void Report::Memory(double loaded) const {
  const double peak = StatusMib("VmHWM");
  Row("memory", peak, "MiB");
  Row("memory-added", peak - loaded, "MiB");
}

void LimitCpu(unsigned seconds) {
  itimerval timer = {};
  timer.it_value.tv_sec = static_cast<time_t>(seconds);
  setitimer(ITIMER_PROF, &timer, nullptr);
}

Outcome Forked(const std::string& name, const std::function<void()>& measure) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    int code = 0;
    try {
      measure();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
      code = 1;
    }
    std::fflush(stdout);
    _exit(code);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return Outcome::kFailed;
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGPROF) return Outcome::kTooLong;
  if (WIFSIGNALED(status)) std::fprintf(stderr, "%s: ended by signal %d\n", name.c_str(), WTERMSIG(status));
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Outcome::kGood : Outcome::kFailed;
}

}  // namespace bench
