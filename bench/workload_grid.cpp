// The family of random cells: the boundary of the filled cells of an integer grid, as rings.
//
// No two filled cells meet only at a corner, so at most one boundary edge leaves a grid point; following the edges closes every
// ring, without a choice to make, and rings do not touch. Boundary edges keep the filled cell on their left: rings around a
// connected set of cells come out counter-clockwise, rings around a gap in it clockwise.

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "portable_numbers.h"
#include "workloads.h"

namespace bench {
namespace {

constexpr std::uint64_t kGridSeedA = 31;
constexpr std::uint64_t kGridSeedB = 32;
constexpr double kFilledShare = 0.42;

constexpr int kEmpty = -1;
constexpr int kUnlabelled = 0;

// The cells of an n by n grid; cell (x, y) has the corners (x, y) and (x + 1, y + 1). Outside all cells are empty.
class CellGrid {
 public:
  CellGrid(int n, std::uint64_t seed);
  // Fills cells until no two filled ones meet only at a corner.
  void FillCornerContacts();
  // Numbers the connected sets of filled cells from 1 up, stores the number in each cell, and returns how many there are.
  int LabelComponents();
  // One polygon per component. Only after both steps above.
  Region Trace(int components) const;

 private:
  struct Step {
    int dx;
    int dy;
    int leftX;  // the cell on the left of the step, relative to its start
    int leftY;
    int rightX;
    int rightY;
  };
  static constexpr std::array<Step, 4> kSteps = {
      {{1, 0, 0, 0, 0, -1}, {0, 1, -1, 0, 0, 0}, {-1, 0, -1, -1, -1, 0}, {0, -1, 0, -1, -1, -1}}};

  std::size_t Index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(n_) + static_cast<std::size_t>(x);
  }
  std::size_t PointIndex(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(n_ + 1) + static_cast<std::size_t>(x);
  }
  bool Within(int x, int y) const { return x >= 0 && y >= 0 && x < n_ && y < n_; }
  int Label(int x, int y) const { return Within(x, y) ? label_[Index(x, y)] : kEmpty; }
  bool Filled(int x, int y) const { return Label(x, y) != kEmpty; }
  const Step* BoundaryStep(int x, int y) const;
  bool FillCornerContact(int x, int y);
  void Flood(int x, int y, int label);
  Ring TraceRing(int x, int y, std::vector<char>& passed) const;

  int n_;
  std::vector<int> label_;  // kEmpty, kUnlabelled or the number of the component
};

CellGrid::CellGrid(int n, std::uint64_t seed) : n_(n), label_(static_cast<std::size_t>(n) * static_cast<std::size_t>(n)) {
  Random random(seed);
  for (int& label : label_) label = random.Between(0.0, 1.0) < kFilledShare ? kUnlabelled : kEmpty;
}

void CellGrid::FillCornerContacts() {
  bool changed = true;
  while (changed) {
    changed = false;
    for (int y = 1; y < n_; ++y) {
      for (int x = 1; x < n_; ++x) changed |= FillCornerContact(x, y);
    }
  }
}

// Where exactly two cells at a grid point are filled and they are opposite, fills the lower one of the others.
bool CellGrid::FillCornerContact(int x, int y) {
  const bool lowLeft = Filled(x - 1, y - 1);
  const bool lowRight = Filled(x, y - 1);
  if (lowLeft == lowRight || Filled(x - 1, y) != lowRight || Filled(x, y) != lowLeft) return false;
  label_[Index(lowLeft ? x : x - 1, y - 1)] = kUnlabelled;
  return true;
}

int CellGrid::LabelComponents() {
  int components = 0;
  for (int y = 0; y < n_; ++y) {
    for (int x = 0; x < n_; ++x) {
      if (Label(x, y) == kUnlabelled) Flood(x, y, ++components);
    }
  }
  return components;
}

void CellGrid::Flood(int x, int y, int label) {
  std::vector<std::pair<int, int>> open = {{x, y}};
  label_[Index(x, y)] = label;
  while (!open.empty()) {
    const auto [cx, cy] = open.back();
    open.pop_back();
    for (const Step& step : kSteps) {
      const int nx = cx + step.dx;
      const int ny = cy + step.dy;
      if (Label(nx, ny) != kUnlabelled) continue;
      label_[Index(nx, ny)] = label;
      open.emplace_back(nx, ny);
    }
  }
}

// The boundary edge that leaves a grid point, if any.
const CellGrid::Step* CellGrid::BoundaryStep(int x, int y) const {
  for (const Step& step : kSteps) {
    if (Filled(x + step.leftX, y + step.leftY) && !Filled(x + step.rightX, y + step.rightY)) return &step;
  }
  return nullptr;
}

// The ring through the point (x, y), of which it is a corner, without the points where it goes straight on. Marks all its points.
Ring CellGrid::TraceRing(int x, int y, std::vector<char>& passed) const {
  Ring ring;
  const Step* step = nullptr;
  while (passed[PointIndex(x, y)] == 0) {
    passed[PointIndex(x, y)] = 1;
    const Step* next = BoundaryStep(x, y);
    if (next != step) ring.emplace_back(x, y);
    step = next;
    x += step->dx;
    y += step->dy;
  }
  return ring;
}

// The first point of a ring in reading order is its lowest, leftmost one and so a corner. An outer ring leaves it to the east, with
// its cell above; a hole leaves it to the north, with its cell on the left.
Region CellGrid::Trace(int components) const {
  Region region(static_cast<std::size_t>(components));
  std::vector<char> passed(PointIndex(n_, n_) + 1, 0);
  for (int y = 0; y <= n_; ++y) {
    for (int x = 0; x <= n_; ++x) {
      const Step* step = BoundaryStep(x, y);
      if (step == nullptr || passed[PointIndex(x, y)] != 0) continue;
      Polygon& polygon = region[static_cast<std::size_t>(Label(x + step->leftX, y + step->leftY) - 1)];
      Ring& ring = step->dx == 1 ? polygon.outer : polygon.holes.emplace_back();
      ring = TraceRing(x, y, passed);
    }
  }
  return region;
}

Region MakeGridRegion(std::size_t n, std::uint64_t seed) {
  CellGrid grid(static_cast<int>(n), seed);
  grid.FillCornerContacts();
  const int components = grid.LabelComponents();
  return grid.Trace(components);
}

}  // namespace

RegionPair MakeGrid(std::size_t n) {
  return {MakeGridRegion(n, kGridSeedA), MakeGridRegion(n, kGridSeedB)};
}

}  // namespace bench
