// Removal of hidden lines from triangle shells, and what comes before and after it: our library, beside it Open CASCADE, the time
// that a remover with a ray tracer needs at least, and a plain program.
//
// usage: bench_hidden [--quick] [--repetitions N] [--peer-seconds S] [--meshes FOLDER] [FAMILY or MESHFILE...]
//        bench_hidden --once [rays/|plain/|occt/]SCENE
// The first form prints, as comma-separated values: family, scene, triangles, drawable edges, operation, library, value, unit. The
// second removes the hidden lines of one scene once, for profilers (valgrind --toggle-collect='*HiddenLine_Shells*', or
// '*PlainGrid::Run*' of the plain program): a scene is KIND:SIZE or a file.
//
// Times are CPU seconds, medians, and every repetition starts from a freshly loaded scene.

#include <zbr/hidden_line.h>
#include <zbr/outline.h>
#include <zbr/tolerance.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "hidden_remover.h"
#include "hidden_scenes.h"
#include "scene_runs.h"

namespace bench {
namespace {

constexpr double kCreaseDegrees = 30.0;

struct Peer {
  const char* name;
  std::unique_ptr<HiddenRemover> (*make)();
};

constexpr Peer kPeers[] = {
    {"rays", MakeRaysBound},
    {"plain", MakePlainGrid},
#ifdef BENCH_WITH_OPEN_CASCADE
    {"occt", MakeOpenCascadeRemover},
#endif
};

// Times of the steps, one entry per repetition.
struct Times {
  std::vector<double> model, scene, fourViews, remove, removeAll, inPieces, chain, hidden, hiddenDrawing;
};

void TimePreparation(const SceneInput& input, zbr::drawing::Model& model, Times& times) {
  times.model.push_back(Time([&] { model = zbr::drawing::MakeModel(input.mesh, kCreaseDegrees); }));
  times.scene.push_back(Time([&] { zbr::drawing::MakeScene(model, input.view); }));
  times.fourViews.push_back(Time([&] {
    zbr::drawing::Scene scene;
    for (const char* view : {"front", "right", "top", "iso"})
      zbr::drawing::MakeScene(model, zbr::drawing::NamedView(view).value(), scene);
  }));
}

void TimeAfterwards(const zbr::drawing::Scene& scene, Times& times) {
  const ZBR_TmpEps eps(zbr::drawing::kSceneTolerance);
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

void ReportLines(const Report& report, const DrawnLines& lines) {
  report.Row("visible", lines.visible, "length");
  report.Row("visible-junctions", lines.visibleJunctions, "length");
  report.Row("pieces", static_cast<double>(lines.pieces), "pieces");
}

void MeasureOurs(const HiddenScene& scene, const SceneOptions& options) {
  Report report(scene, "zbr");
  const SceneInput input = MakeSceneInput(scene.name);
  Times times;
  ZbrRemover remover;
  DrawnLines first;
  {
    const zbr::drawing::Model model = zbr::drawing::MakeModel(input.mesh, kCreaseDegrees);
    remover.Load(model, input.view);
    report.SetSize(model.TriangleCount(), remover.scene().drawable);
  }
  const double loaded = ResetPeak();
  times.remove.push_back(Time([&] { remover.Run(); }));
  report.Memory(loaded);
  first = remover.Describe();
  TimeAfterwards(remover.scene(), times);

  zbr::drawing::Model model;
  for (int k = 0; k < options.repetitions; ++k) {
    TimePreparation(input, model, times);
    if (k == 0) continue;
    remover.Load(model, input.view);
    times.remove.push_back(Time([&] { remover.Run(); }));
    if (remover.Describe().checksum != first.checksum) throw std::runtime_error(scene.name + ": two runs differ");
    TimeAfterwards(remover.scene(), times);
    remover.Load(model, input.view);
    times.removeAll.push_back(Time([&] { times.inPieces.push_back(remover.RunInPieces()); }));
    if (remover.Describe().checksum != first.checksum) throw std::runtime_error(scene.name + ": in pieces it differs");
  }
  report.Row("remove", Median(times.remove), "s");
  if (!times.removeAll.empty()) report.Row("remove-all", Median(times.removeAll), "s");
  if (!times.inPieces.empty()) report.Row("remove-all-in-pieces", Median(times.inPieces), "part");
  ReportLines(report, first);
  report.Row("chain", Median(times.chain), "s");
  report.Row("hidden-0", Median(times.hidden), "s");
  report.Row("hidden-3", Median(times.hiddenDrawing), "s");
  report.Row("model", Median(times.model), "s");
  report.Row("scene", Median(times.scene), "s");
  report.Row("scenes-4", Median(times.fourViews), "s");
}

void MeasurePeer(const HiddenScene& scene, const SceneOptions& options, const Peer& peer) {
  Report report(scene, peer.name);
  const std::unique_ptr<HiddenRemover> made = peer.make();
  HiddenRemover& remover = *made;
  const SceneInput input = MakeSceneInput(scene.name);
  std::vector<double> seconds;
  double loaded = 0.0;
  for (int k = 0; k < options.repetitions; ++k) {
    {
      const zbr::drawing::Model model = zbr::drawing::MakeModel(input.mesh, kCreaseDegrees);
      if (k == 0) report.SetSize(model.TriangleCount(), zbr::drawing::MakeScene(model, input.view).drawable);
      remover.Load(model, input.view);
    }
    if (k == 0) loaded = ResetPeak();
    LimitCpu(options.peerSeconds);
    seconds.push_back(Time([&] { remover.Run(); }));
    LimitCpu(0);
    if (k == 0) report.Memory(loaded);
    if (seconds.back() > 5.0) break;  // so long that the spread does not matter
  }
  const DrawnLines lines = remover.Describe();
  report.Row("remove", Median(seconds), "s");
  ReportLines(report, lines);
}

bool MeasureScene(const HiddenScene& scene, const SceneOptions& options) {
  bool good = Forked(scene.name, [&] { MeasureOurs(scene, options); }) == Outcome::kGood;
  if (options.peerSeconds == 0) return good;
  for (const Peer& peer : kPeers) {
    const Outcome outcome = Forked(scene.name, [&] { MeasurePeer(scene, options, peer); });
    if (outcome == Outcome::kTooLong) Report(scene, peer.name).Row("stopped-after", options.peerSeconds, "s");
    good &= outcome != Outcome::kFailed;
  }
  return good;
}

// "plain/boxes:32" is the plain program's turn.
bool RunPeerOnce(const std::string& name) {
  for (const Peer& peer : kPeers) {
    const std::string prefix = peer.name + std::string("/");
    if (name.compare(0, prefix.size(), prefix) != 0) continue;
    const SceneInput input = MakeSceneInput(name.substr(prefix.size()));
    const std::unique_ptr<HiddenRemover> remover = peer.make();
    remover->Load(zbr::drawing::MakeModel(input.mesh, kCreaseDegrees), input.view);
    const double seconds = Time([&] { remover->Run(); });
    std::printf("%s: %.3f ms, length %.6f\n", name.c_str(), seconds * 1e3, remover->Describe().visible);
    return true;
  }
  return false;
}

void RunOnce(const std::string& name) {
  if (RunPeerOnce(name)) return;
  const SceneInput input = MakeSceneInput(name);
  ZbrRemover remover;
  remover.Load(zbr::drawing::MakeModel(input.mesh, kCreaseDegrees), input.view);
  const double seconds = Time([&] { remover.Run(); });
  const DrawnLines lines = remover.Describe();
  std::printf("%s: %.3f ms, %zu triangles, %zu edges, %zu visible pieces, length %.6f, checksum %016llx\n", name.c_str(),
              seconds * 1e3, remover.scene().triangles.size(), remover.scene().drawable, lines.pieces, lines.visible,
              static_cast<unsigned long long>(lines.checksum));
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunScenes({"bench_hidden", "hidden", 60, bench::MeasureScene, bench::RunOnce}, argc, argv);
}
