// Removal of hidden lines from triangle shells, for our library and its peer, and what comes before and after it.
//
// usage: bench_hidden [--quick] [--repetitions N] [--peer-seconds S] [--meshes FOLDER] [FAMILY...]
//        bench_hidden --once SCENE
// The first form prints, as comma-separated values: family, scene, triangles, drawable edges, operation, library, value, unit. The
// second removes the hidden lines of one scene once, for profilers (valgrind --toggle-collect='*HiddenLine_Shells*'): a scene is
// KIND:SIZE or a file.
//
// Each library has a scene in a process of its own, whose high-water mark of memory is then the library's. Times are CPU seconds,
// medians, and every repetition starts from a freshly loaded scene. A peer that takes too long is stopped. For Linux.

#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <zbr/hidden_line.h>
#include <zbr/outline.h>
#include <zbr/tolerance.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "hidden_remover.h"
#include "hidden_scenes.h"
#include "process_status.h"

namespace bench {
namespace {

constexpr double kCreaseDegrees = 30.0;
const char* const kFamilies[] = {"hidden-boxes", "hidden-torus", "hidden-gear", "hidden-gears", "hidden-models"};

struct Options {
  bool quick = false;
  int repetitions = 3;
  unsigned peerSeconds = 60;  // that one run of a peer may take, by the clock on the wall; 0: no peer
  std::string meshFolder = BENCH_MESH_FOLDER;
  std::optional<std::string> once;    // a scene
  std::vector<std::string> families;  // none: all
};

double CpuSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Work>
double Time(const Work& work) {
  const double start = CpuSeconds();
  work();
  return CpuSeconds() - start;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Gives freed memory back and lets the high-water mark start again from what is left, which is returned in MiB.
double ResetPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;
  return StatusMib("VmRSS");
}

// Prints the rows of one scene and library.
class Report {
 public:
  Report(const HiddenScene& scene, const char* library) : scene_(scene), library_(library) {}
  void SetSize(std::size_t triangles, std::size_t edges) {
    triangles_ = triangles;
    edges_ = edges;
  }
  void Row(const char* operation, double value, const char* unit) const {
    std::printf("%s,%s,%zu,%zu,%s,%s,%.9g,%s\n", scene_.family.c_str(), scene_.name.c_str(), triangles_, edges_, operation,
                library_, value, unit);
  }

 private:
  const HiddenScene& scene_;
  const char* library_;
  std::size_t triangles_ = 0;
  std::size_t edges_ = 0;
};

// Times of the steps, one entry per repetition.
struct Times {
  std::vector<double> model, scene, fourViews, remove, chain, hidden, hiddenDrawing;
};

void TimePreparation(const SceneInput& input, tool::Model& model, Times& times) {
  times.model.push_back(Time([&] { model = tool::MakeModel(input.mesh, kCreaseDegrees); }));
  times.scene.push_back(Time([&] { tool::MakeScene(model, input.view); }));
  times.fourViews.push_back(Time([&] {
    tool::Scene scene;
    for (const char* view : {"front", "right", "top", "iso"}) tool::MakeScene(model, tool::NamedView(view).value(), scene);
  }));
}

void TimeAfterwards(const tool::Scene& scene, Times& times) {
  const ZBR_TmpEps eps(tool::kSceneTolerance);
  const ZBR_HL_SHELL* shells = scene.shells.data();
  const unsigned count = scene.ShellCount();
  times.chain.push_back(Time([&] {
    std::vector<std::vector<ZBR_PT>> lines;
    zbrOptimizeHiddenLine(shells, lines, count);
  }));
  const auto hidden = [&](int mode) {
    std::vector<ZBR_SEG> segments;
    ZBR_HiddenLine::GetHiddenLineObj(shells, segments, mode, count);
  };
  times.hidden.push_back(Time([&] { hidden(0); }));
  times.hiddenDrawing.push_back(Time([&] { hidden(3); }));
}

// Memory: of the whole process at its peak, and of that what the removal added to the loaded scene.
void ReportMemory(const Report& report, double loaded) {
  const double peak = StatusMib("VmHWM");
  report.Row("memory", peak, "MiB");
  report.Row("memory-added", peak - loaded, "MiB");
}

void ReportLines(const Report& report, const DrawnLines& lines) {
  report.Row("visible", lines.visible, "length");
  report.Row("visible-junctions", lines.visibleJunctions, "length");
  report.Row("pieces", static_cast<double>(lines.pieces), "pieces");
}

void MeasureOurs(const HiddenScene& scene, const Options& options) {
  Report report(scene, "zbr");
  const SceneInput input = MakeSceneInput(scene.name);
  Times times;
  ZbrRemover remover;
  DrawnLines first;
  {
    const tool::Model model = tool::MakeModel(input.mesh, kCreaseDegrees);
    remover.Load(model, input.view);
    report.SetSize(model.TriangleCount(), remover.scene().drawable);
  }
  const double loaded = ResetPeak();
  times.remove.push_back(Time([&] { remover.Run(); }));
  ReportMemory(report, loaded);
  first = remover.Describe();
  TimeAfterwards(remover.scene(), times);

  tool::Model model;
  for (int k = 0; k < options.repetitions; ++k) {
    TimePreparation(input, model, times);
    if (k == 0) continue;
    remover.Load(model, input.view);
    times.remove.push_back(Time([&] { remover.Run(); }));
    if (remover.Describe().checksum != first.checksum) throw std::runtime_error(scene.name + ": two runs differ");
    TimeAfterwards(remover.scene(), times);
  }
  report.Row("remove", Median(times.remove), "s");
  ReportLines(report, first);
  report.Row("chain", Median(times.chain), "s");
  report.Row("hidden-0", Median(times.hidden), "s");
  report.Row("hidden-3", Median(times.hiddenDrawing), "s");
  report.Row("model", Median(times.model), "s");
  report.Row("scene", Median(times.scene), "s");
  report.Row("scenes-4", Median(times.fourViews), "s");
}

void MeasurePeer(const HiddenScene& scene, const Options& options, HiddenRemover& remover) {
  Report report(scene, "occt");
  const SceneInput input = MakeSceneInput(scene.name);
  std::vector<double> seconds;
  double loaded = 0.0;
  for (int k = 0; k < options.repetitions; ++k) {
    {
      const tool::Model model = tool::MakeModel(input.mesh, kCreaseDegrees);
      if (k == 0) report.SetSize(model.TriangleCount(), tool::MakeScene(model, input.view).drawable);
      remover.Load(model, input.view);
    }
    if (k == 0) loaded = ResetPeak();
    alarm(options.peerSeconds);
    seconds.push_back(Time([&] { remover.Run(); }));
    alarm(0);
    if (k == 0) ReportMemory(report, loaded);
    if (seconds.back() > 5.0) break;  // so long that the spread does not matter
  }
  const DrawnLines lines = remover.Describe();
  report.Row("remove", Median(seconds), "s");
  ReportLines(report, lines);
}

enum class Outcome { kGood, kFailed, kTooLong };

// Runs `measure` in a child process.
template <class Measure>
Outcome Forked(const std::string& name, const Measure& measure) {
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
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return Outcome::kTooLong;
  if (WIFSIGNALED(status)) std::fprintf(stderr, "%s: ended by signal %d\n", name.c_str(), WTERMSIG(status));
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Outcome::kGood : Outcome::kFailed;
}

std::unique_ptr<HiddenRemover> MakePeer() {
#ifdef BENCH_WITH_OPEN_CASCADE
  return MakeOpenCascadeRemover();
#else
  return nullptr;
#endif
}

bool MeasureScene(const HiddenScene& scene, const Options& options) {
  std::fprintf(stderr, "%s\n", scene.name.c_str());
  bool good = Forked(scene.name, [&] { MeasureOurs(scene, options); }) == Outcome::kGood;
  const auto peer = MakePeer();
  if (peer == nullptr || options.peerSeconds == 0) return good;
  const Outcome outcome = Forked(scene.name, [&] { MeasurePeer(scene, options, *peer); });
  if (outcome == Outcome::kTooLong) Report(scene, "occt").Row("stopped-after", options.peerSeconds, "s");
  return good && outcome != Outcome::kFailed;
}

void RunOnce(const std::string& name) {
  const SceneInput input = MakeSceneInput(name);
  ZbrRemover remover;
  remover.Load(tool::MakeModel(input.mesh, kCreaseDegrees), input.view);
  const double seconds = Time([&] { remover.Run(); });
  const DrawnLines lines = remover.Describe();
  std::printf("%s: %.3f ms, %zu triangles, %zu edges, %zu visible pieces, length %.6f, checksum %016llx\n", name.c_str(),
              seconds * 1e3, remover.scene().triangles.size(), remover.scene().drawable, lines.pieces, lines.visible,
              static_cast<unsigned long long>(lines.checksum));
}

[[noreturn]] void Usage() {
  std::fprintf(stderr,
               "usage: bench_hidden [--quick] [--repetitions N] [--peer-seconds S] [--meshes FOLDER] [FAMILY...]\n"
               "       bench_hidden --once SCENE     (boxes:N boxes-top:N lattice:N torus:N gear:N gears:K, or a mesh file)\n"
               "families:");
  for (const char* family : kFamilies) std::fprintf(stderr, " %s", family);
  std::fprintf(stderr, "\n");
  std::exit(2);
}

Options ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const auto value = [&]() -> const std::string& {
      if (i + 1 == arguments.size()) Usage();
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
    } else if (std::find(std::begin(kFamilies), std::end(kFamilies), argument) != std::end(kFamilies)) {
      options.families.push_back(argument);
    } else {
      Usage();
    }
  }
  return options;
}

bool RunAll(const Options& options) {
  bool good = true;
  for (const HiddenScene& scene : HiddenScenes(options.meshFolder)) {
    const auto& wanted = options.families;
    if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), scene.family) == wanted.end()) continue;
    if (scene.quick || !options.quick) good &= MeasureScene(scene, options);
  }
  return good;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bench::Options options = bench::ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
  if (!options.once) return bench::RunAll(options) ? 0 : 1;
  try {
    bench::RunOnce(*options.once);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_hidden: %s\n", error.what());
    return 2;
  }
  return 0;
}
