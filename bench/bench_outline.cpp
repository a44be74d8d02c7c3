// Outlines of triangle shells, beside the removal of their hidden lines and beside peers that unite the projected triangles.
//
// usage: bench_outline [--quick] [--repetitions N] [--peer-seconds S] [--meshes FOLDER] [FAMILY or MESHFILE...]
//        bench_outline --once SCENE
// The first form prints, as comma-separated values: family, scene, triangles, drawable edges, operation, library, value, unit. The
// second finds the outline of one scene once, of shells not processed, for profilers (valgrind --toggle-collect='*OutLineObj*').
//
// Times are CPU seconds, medians. Operations: "outline-fresh" is OutLineObj on shells that are not processed, which it then has to
// classify; "outline" on processed ones; "remove" the removal of the hidden lines, which processes them; "union" a peer's.

#include <zbr-drawing/scene.h>
#include <zbr/hidden_line.h>
#include <zbr/tolerance.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "hidden_scenes.h"
#include "outline_peer.h"
#include "scene_runs.h"
#include "zbr_loops.h"

namespace bench {
namespace {

constexpr double kCreaseDegrees = 30.0;

const LoopList& OutlineOf(const zbr::drawing::Scene& scene) {
  return scene.shells.front().outline_all;
}

void FindOutline(zbr::drawing::Scene& scene) {
  const ZBR_TmpEps eps(zbr::drawing::kSceneTolerance);
  ZBR_HiddenLine::OutLineObj(scene.shells.data(), scene.ShellCount());
}

void RemoveHiddenLines(zbr::drawing::Scene& scene) {
  const ZBR_TmpEps eps(zbr::drawing::kSceneTolerance);
  ZBR_HiddenLine::HiddenLine_Shells(scene.shells.data(), scene.ShellCount());
}

void HashRing(const Ring& ring, std::uint64_t& hash) {
  const auto add = [&](std::uint64_t value) { hash = (hash ^ value) * 0x100000001b3U; };
  add(ring.size());
  for (const ZBR_PT& p : ring) {
    add(std::bit_cast<std::uint64_t>(p.x()));
    add(std::bit_cast<std::uint64_t>(p.y()));
  }
}

// Of all points of the loops, to the bit.
std::uint64_t Checksum(const LoopList& loops) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const auto& loop : loops) {
    HashRing(loop->pt(), hash);
    for (const auto& hole : loop->children()) HashRing(hole->pt(), hash);
  }
  return hash;
}

std::size_t CountPoints(const LoopList& loops) {
  std::size_t points = 0;
  for (const auto& loop : loops) {
    points += loop->pt().size();
    for (const auto& hole : loop->children()) points += hole->pt().size();
  }
  return points;
}

void ReportResult(const Report& report, const Summary& result) {
  report.Row("area", result.area, "area");
  report.Row("loops", static_cast<double>(result.loops), "loops");
}

struct Times {
  std::vector<double> fresh, remove, processed;
};

// `scene` is freshly loaded. Returns the outline's checksum, which is the same before and after the removal.
std::uint64_t TimeOnce(const zbr::drawing::Model& model, const zbr::drawing::View& view, zbr::drawing::Scene& scene, Times& times) {
  times.fresh.push_back(Time([&] { FindOutline(scene); }));
  const std::uint64_t sum = Checksum(OutlineOf(scene));
  zbr::drawing::MakeScene(model, view, scene);
  times.remove.push_back(Time([&] { RemoveHiddenLines(scene); }));
  times.processed.push_back(Time([&] { FindOutline(scene); }));
  if (Checksum(OutlineOf(scene)) != sum) throw std::runtime_error("the outlines before and after the removal differ");
  return sum;
}

void MeasureOurs(const HiddenScene& scene, const SceneOptions& options) {
  Report report(scene, "zbr");
  const SceneInput input = MakeSceneInput(scene.name);
  const zbr::drawing::Model model = zbr::drawing::MakeModel(input.mesh, kCreaseDegrees);
  zbr::drawing::Scene made = zbr::drawing::MakeScene(model, input.view);
  report.SetSize(model.TriangleCount(), made.drawable);
  const double loaded = ResetPeak();
  FindOutline(made);
  report.Memory(loaded);
  ReportResult(report, Summarise(OutlineOf(made)));
  report.Row("points", static_cast<double>(CountPoints(OutlineOf(made))), "points");
  const std::uint64_t sum = Checksum(OutlineOf(made));

  Times times;
  for (int k = 0; k < options.repetitions; ++k) {
    zbr::drawing::MakeScene(model, input.view, made);
    if (TimeOnce(model, input.view, made, times) != sum) throw std::runtime_error("two runs differ");
  }
  report.Row("outline-fresh", Median(times.fresh), "s");
  report.Row("outline", Median(times.processed), "s");
  report.Row("remove", Median(times.remove), "s");
}

// The triangles whose union is the outline's inside, counter-clockwise.
std::vector<Ring> ProjectedTriangles(zbr::drawing::Scene& scene) {
  const ZBR_TmpEps eps(zbr::drawing::kSceneTolerance);
  for (ZBR_HL_SHELL& shell : scene.shells) {
    shell.GetMaxMin();
    shell.CheckTriangle();
  }
  std::vector<Ring> rings;
  for (const ZBR_HL_TRI& t : scene.triangles) {
    if (t.tri_state != 1) continue;
    Ring ring;
    for (const ZBR_PT3& p : t.pt) ring.emplace_back(p.x(), p.y());
    if (t.clockwise) std::swap(ring[1], ring[2]);
    rings.push_back(std::move(ring));
  }
  return rings;
}

void MeasurePeer(const HiddenScene& scene, const SceneOptions& options, const Entry<OutlinePeer>& entry) {
  Report report(scene, entry.name);
  const auto peer = entry.make();
  {
    const SceneInput input = MakeSceneInput(scene.name);
    const zbr::drawing::Model model = zbr::drawing::MakeModel(input.mesh, kCreaseDegrees);
    zbr::drawing::Scene made = zbr::drawing::MakeScene(model, input.view);
    report.SetSize(model.TriangleCount(), made.drawable);
    peer->Load(ProjectedTriangles(made));
  }
  const double loaded = ResetPeak();
  std::vector<double> seconds;
  for (int k = 0; k < options.repetitions; ++k) {
    LimitCpu(options.peerSeconds);
    seconds.push_back(Time([&] { peer->Run(); }));
    LimitCpu(0);
    if (k == 0) report.Memory(loaded);
    if (seconds.back() > 5.0) break;  // so long that the spread does not matter
  }
  report.Row("union", Median(seconds), "s");
  ReportResult(report, peer->Describe());
}

// A peer that took too long on a scene is spared the larger ones, which follow it: its library's name and the scene's kind.
std::string Spared(const Entry<OutlinePeer>& peer, const HiddenScene& scene) {
  return peer.name + " " + scene.name.substr(0, scene.name.find(':'));
}

bool MeasureScene(const HiddenScene& scene, const SceneOptions& options) {
  static std::set<std::string> spared;
  bool good = Forked(scene.name, [&] { MeasureOurs(scene, options); }) == Outcome::kGood;
  if (options.peerSeconds == 0) return good;
  for (const Entry<OutlinePeer>& peer : OutlinePeers()) {
    if (spared.count(Spared(peer, scene)) != 0) continue;
    const Outcome outcome = Forked(scene.name + " by " + peer.name, [&] { MeasurePeer(scene, options, peer); });
    good &= outcome != Outcome::kFailed;
    if (outcome != Outcome::kTooLong) continue;
    Report(scene, peer.name).Row("stopped-after", options.peerSeconds, "s");
    spared.insert(Spared(peer, scene));
  }
  return good;
}

void RunOnce(const std::string& name) {
  const SceneInput input = MakeSceneInput(name);
  zbr::drawing::Scene scene = zbr::drawing::MakeScene(zbr::drawing::MakeModel(input.mesh, kCreaseDegrees), input.view);
  const double seconds = Time([&] { FindOutline(scene); });
  const Summary result = Summarise(OutlineOf(scene));
  std::printf("%s: %.3f ms, %zu triangles, %zu loops, %zu points, area %.9f, checksum %016llx\n", name.c_str(), seconds * 1e3,
              scene.triangles.size(), result.loops, CountPoints(OutlineOf(scene)), result.area,
              static_cast<unsigned long long>(Checksum(OutlineOf(scene))));
}

}  // namespace

const std::vector<Entry<OutlinePeer>>& OutlinePeers() {
  static const std::vector<Entry<OutlinePeer>> peers = {
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosOutline},
#endif
#ifdef BENCH_WITH_CLIPPER
      {"clipper", MakeClipperOutline},
#endif
#ifdef BENCH_WITH_CGAL
      {"cgal", MakeCgalOutline},
#endif
  };
  return peers;
}

}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunScenes({"bench_outline", "outline", 60, bench::MeasureScene, bench::RunOnce}, argc, argv);
}
