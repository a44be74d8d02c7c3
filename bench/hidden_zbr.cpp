// Our removal of hidden lines.

#include <zbr/hidden_line.h>
#include <zbr/tolerance.h>

#include <bit>

#include "hidden_remover.h"
#include "scene_runs.h"

namespace bench {
namespace {

// FNV-1a over the bytes of a value.
void Hash(double value, std::uint64_t& hash) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  for (unsigned shift = 0; shift < 64; shift += 8) hash = (hash ^ ((bits >> shift) & 0xffU)) * 0x100000001b3U;
}

}  // namespace

void ZbrRemover::Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) {
  zbr::drawing::MakeScene(model, view, scene_);
}

void ZbrRemover::Run() {
  const ZBR_TmpEps eps(zbr::drawing::kSceneTolerance);
  ZBR_HiddenLine::HiddenLine_Shells(scene_.shells.data(), scene_.ShellCount());
}

double ZbrRemover::RunInPieces() {
  const ZBR_TmpEps eps(zbr::drawing::kSceneTolerance);
  double inPieces = 0.0;
  ZBR_HL_REMOVAL options;
  options.executor = [&](std::size_t count, const std::function<void(std::size_t)>& work) {
    const double seconds = Time([&] {
      for (std::size_t i = 0; i < count; ++i) work(i);
    });
    if (count > 1) inPieces += seconds;
  };
  const double all = Time([&] { ZBR_HiddenLine::RemoveAll(scene_.shells.data(), scene_.ShellCount(), options); });
  return all > 0.0 ? inPieces / all : 0.0;
}

DrawnLines ZbrRemover::Describe() const {
  DrawnLines lines;
  lines.checksum = 0xcbf29ce484222325U;
  for (std::size_t t = 0; t < scene_.triangles.size(); ++t) {
    for (std::size_t i = 0; i < 3; ++i) {
      for (const ZBR_HL_INTERVAL& interval : scene_.triangles[t].intvl_v[i]) {
        const double length = interval.s.pt.DistanceXY(interval.e.pt);
        lines.visible += length;
        if (scene_.classes[t][i] == zbr::drawing::EdgeClass::kJunction) lines.visibleJunctions += length;
        ++lines.pieces;
        for (const ZBR_HL_INTERVAL::PT_LIN* end : {&interval.s, &interval.e}) {
          for (const double value : {end->t, end->pt.x(), end->pt.y(), end->pt.z()}) Hash(value, lines.checksum);
        }
      }
    }
  }
  return lines;
}

}  // namespace bench
