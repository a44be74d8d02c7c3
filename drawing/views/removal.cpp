// Hidden-line removal with threads: first each shell by itself, then each shell behind all others.
//
// A shell is written by one thread only. Behind others it reads nothing of them that changes meanwhile, so the order of the threads
// does not matter, with one exception: a shell draws its index when it is processed, and the index decides which of two shells
// draws an edge that both have. So the indices are handed out again in the order of the shells between the two steps.
#include <zbr-drawing/removal.h>

#include <zbr/tolerance.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "drawing/views/parallel.h"

namespace zbr::drawing {
namespace {

constexpr double kMargin = 0.001;  // by which the library, too, widens boxes

bool MayHide(const ZBR_HL_SHELL& b, const ZBR_HL_SHELL& a) {
  return a.min_z <= b.max_z && b.min_x <= a.max_x + kMargin && b.min_y <= a.max_y + kMargin && a.min_x - kMargin <= b.max_x &&
         a.min_y - kMargin <= b.max_y;
}

// Finds the shells near a shell: a grid of about as many cells as shells, each with the shells that reach into it. Shells that
// reach into many cells are kept in a list of their own.
class ShellGrid {
 public:
  explicit ShellGrid(const std::vector<ZBR_HL_SHELL>& shells) : shells_(shells), low_(shells[0].min_x, shells[0].min_y) {
    ZBR_PT high(shells[0].max_x, shells[0].max_y);
    for (const ZBR_HL_SHELL& s : shells) {
      low_.Set(std::min(low_.x(), s.min_x), std::min(low_.y(), s.min_y));
      high.Set(std::max(high.x(), s.max_x), std::max(high.y(), s.max_y));
    }
    side_ = static_cast<int>(std::clamp(std::sqrt(static_cast<double>(shells.size())), 1.0, 1000.0));
    cell_.Set(std::max((high.x() - low_.x()) / side_, kMargin), std::max((high.y() - low_.y()) / side_, kMargin));
    cells_.resize(static_cast<std::size_t>(side_) * static_cast<std::size_t>(side_));
    for (std::size_t i = 0; i < shells.size(); ++i) Insert(static_cast<std::uint32_t>(i));
  }

  // The shells that may hide `of`, ascending. `found` is replaced.
  void Candidates(std::uint32_t of, std::vector<std::uint32_t>& found) const {
    found = large_;
    const Range range = RangeOf(shells_[of]);
    for (int y = range.y0; y <= range.y1; ++y) {
      for (int x = range.x0; x <= range.x1; ++x) {
        const std::vector<std::uint32_t>& cell = cells_[Place(x, y)];
        found.insert(found.end(), cell.begin(), cell.end());
      }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::erase_if(found, [&](std::uint32_t b) { return b == of || !MayHide(shells_[b], shells_[of]); });
  }

 private:
  struct Range {
    int x0, x1, y0, y1;
  };
  static constexpr int kManyCells = 64;

  std::size_t Place(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(side_) + static_cast<std::size_t>(x);
  }
  int Cell(double along, double size) const { return static_cast<int>(std::clamp(along / size, 0.0, side_ - 1.0)); }
  Range RangeOf(const ZBR_HL_SHELL& s) const {
    return {Cell(s.min_x - kMargin - low_.x(), cell_.x()), Cell(s.max_x + kMargin - low_.x(), cell_.x()),
            Cell(s.min_y - kMargin - low_.y(), cell_.y()), Cell(s.max_y + kMargin - low_.y(), cell_.y())};
  }
  void Insert(std::uint32_t shell) {
    const Range range = RangeOf(shells_[shell]);
    if ((range.x1 - range.x0 + 1) * (range.y1 - range.y0 + 1) > kManyCells) {
      large_.push_back(shell);
      return;
    }
    for (int y = range.y0; y <= range.y1; ++y) {
      for (int x = range.x0; x <= range.x1; ++x) cells_[Place(x, y)].push_back(shell);
    }
  }

  const std::vector<ZBR_HL_SHELL>& shells_;
  ZBR_PT low_, cell_;
  int side_ = 1;
  std::vector<std::vector<std::uint32_t>> cells_;
  std::vector<std::uint32_t> large_;
};

void IndexInOrder(std::vector<ZBR_HL_SHELL>& shells) {
  std::vector<int> drawn;
  for (const ZBR_HL_SHELL& shell : shells) drawn.push_back(shell.index);
  std::sort(drawn.begin(), drawn.end());
  for (std::size_t i = 0; i < shells.size(); ++i) {
    shells[i].index = drawn[i];
    for (unsigned t = 0; t < shells[i].count; ++t) shells[i].tris[t].shell_idx = drawn[i];
  }
}

}  // namespace

void RemoveHidden(Scene& scene, unsigned threads) {
  std::vector<ZBR_HL_SHELL>& shells = scene.shells;
  if (threads <= 1 || shells.size() <= 1) {
    const ZBR_TmpEps hold(kSceneTolerance);
    ZBR_HiddenLine::HiddenLine_Shells(shells.data(), scene.ShellCount());
    return;
  }
  ZBR_HiddenLine::GetMaxMin(shells.data(), scene.ShellCount());
  RunParallel(shells.size(), threads, [&](std::size_t i) { shells[i].HiddenLineSelf(); });
  IndexInOrder(shells);
  const ShellGrid grid(shells);
  RunParallel(shells.size(), threads, [&](std::size_t a) {
    std::vector<std::uint32_t> candidates;
    grid.Candidates(static_cast<std::uint32_t>(a), candidates);
    for (const std::uint32_t b : candidates) ZBR_HiddenLine::HiddenLine_ShellByShell(shells[a], shells[b]);
  });
}

}  // namespace zbr::drawing
