#include "drawing/model/patches.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "drawing/model/shell_ranges.h"

namespace zbr::drawing {
namespace {

class Grower {
 public:
  Grower(const Model& model, const Connectivity& mesh, std::vector<std::uint32_t>& patches)
      : model_(model), mesh_(mesh), tolerance_(PlaneTolerance(model)), patches_(patches) {}

  void Run(std::size_t shell) {
    for (std::uint32_t t = model_.shellBegin[shell]; t < model_.shellBegin[shell + 1]; ++t) {
      if (patches_[t] == Connectivity::kNone) Grow(t);
    }
  }

 private:
  void Grow(std::uint32_t seed) {
    const ZBR_PT3& normal = model_.normals[seed];
    const ZBR_PT3& origin = mesh_.points[mesh_.corners[seed][0]];
    const auto isInPlane = [&](std::uint32_t p) { return std::abs(normal.InnerProduct(mesh_.points[p] - origin)) <= tolerance_; };
    patches_[seed] = seed;
    open_.assign(1, seed);
    while (!open_.empty()) {
      const std::uint32_t t = open_.back();
      open_.pop_back();
      for (std::size_t i = 0; i < 3; ++i) {
        const std::uint32_t u = mesh_.Across(mesh_.edges[t][i], t);
        if (u == Connectivity::kNone || patches_[u] != Connectivity::kNone) continue;
        if (!(model_.normals[u].InnerProduct(normal) > 0)) continue;
        // The ends of the edge are in the plane; not so if the first triangle has no area and its normal from elsewhere.
        if (t == seed && (!isInPlane(mesh_.corners[t][i]) || !isInPlane(mesh_.corners[t][(i + 1) % 3]))) continue;
        if (!isInPlane(ApexBeyond(t, i, u))) continue;
        patches_[u] = seed;
        open_.push_back(u);
      }
    }
  }

  // The corner of a neighbour that is not on edge i.
  std::uint32_t ApexBeyond(std::uint32_t t, std::size_t i, std::uint32_t neighbour) const {
    const auto &c = mesh_.corners[t], &n = mesh_.corners[neighbour];
    return n[0] ^ n[1] ^ n[2] ^ c[i] ^ c[(i + 1) % 3];
  }

  const Model& model_;
  const Connectivity& mesh_;
  const double tolerance_;
  std::vector<std::uint32_t>& patches_;
  std::vector<std::uint32_t> open_;
};

}  // namespace

double PlaneTolerance(const Model& model) {
  constexpr double kSteps = 4.0;         // of rounding: three points of a plane and the one compared with it
  constexpr double kOfDiagonal = 1e-10;  // where coordinates are exact, their sines and cosines are not quite
  return std::max(kSteps * model.rounding, kOfDiagonal * model.Diagonal());
}

void FindPatchesOf(std::size_t shell, const Model& model, const Connectivity& mesh, std::vector<std::uint32_t>& patches) {
  Grower(model, mesh, patches).Run(shell);
}

std::vector<std::uint32_t> FindPatches(const Model& model, const Connectivity& mesh, unsigned threads) {
  std::vector<std::uint32_t> patches(mesh.corners.size(), Connectivity::kNone);
  ForEachShell(model.shellBegin, threads, [&](std::size_t s) { FindPatchesOf(s, model, mesh, patches); });
  return patches;
}

}  // namespace zbr::drawing
