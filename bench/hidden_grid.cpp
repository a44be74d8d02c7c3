// The plain program: what somebody writes in an afternoon who wants hidden lines removed. A uniform grid over the drawing holds the
// triangles whose boxes meet each cell; an edge walks through its cells, is clipped by every triangle met that is above it, and
// keeps what none of them hides. Nothing is done for degenerate cases, and nothing is tuned.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "flat_scene.h"

namespace bench {
namespace {

using Triangle = std::array<ZBR_PT3, 3>;

// About one cell for each triangle. A cell holds the places of triangles.
class Grid {
 public:
  explicit Grid(const std::vector<Triangle>& triangles);
  // Calls try(place of a triangle) for those in the cells that a segment runs through; for some more than once.
  template <class Try>
  void Along(const ZBR_PT3& a, const ZBR_PT3& b, const Try& tryTriangle) const;

 private:
  std::size_t Column(double x) const { return Cell(x - lowX_, columns_); }
  std::size_t Row(double y) const { return Cell(y - lowY_, rows_); }
  std::size_t Cell(double distance, std::size_t count) const {
    return distance > 0.0 ? std::min(count - 1, static_cast<std::size_t>(distance / size_)) : 0;
  }
  template <class Visit>
  void EachCell(const Triangle& triangle, const Visit& visit) const;

  double lowX_ = 0.0, lowY_ = 0.0, size_ = 1.0;
  std::size_t columns_ = 1, rows_ = 1;
  std::vector<std::vector<std::uint32_t>> cells_;
};

Grid::Grid(const std::vector<Triangle>& triangles) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  double highX = -kInfinite, highY = -kInfinite;
  lowX_ = lowY_ = kInfinite;
  for (const Triangle& triangle : triangles) {
    for (const ZBR_PT3& p : triangle) {
      lowX_ = std::min(lowX_, p.x());
      lowY_ = std::min(lowY_, p.y());
      highX = std::max(highX, p.x());
      highY = std::max(highY, p.y());
    }
  }
  if (!triangles.empty()) {
    size_ = std::sqrt((highX - lowX_) * (highY - lowY_) / static_cast<double>(triangles.size()));
    if (!(size_ > 0)) size_ = 1.0;  // of no width
    columns_ = static_cast<std::size_t>((highX - lowX_) / size_) + 1;
    rows_ = static_cast<std::size_t>((highY - lowY_) / size_) + 1;
  }
  cells_.resize(columns_ * rows_);
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    EachCell(triangles[t], [&](std::size_t cell) { cells_[cell].push_back(t); });
  }
}

template <class Visit>
void Grid::EachCell(const Triangle& triangle, const Visit& visit) const {
  const auto [left, right] = std::minmax({triangle[0].x(), triangle[1].x(), triangle[2].x()});
  const auto [low, high] = std::minmax({triangle[0].y(), triangle[1].y(), triangle[2].y()});
  for (std::size_t row = Row(low); row <= Row(high); ++row) {
    for (std::size_t column = Column(left); column <= Column(right); ++column) visit(row * columns_ + column);
  }
}

template <class Try>
void Grid::Along(const ZBR_PT3& a, const ZBR_PT3& b, const Try& tryTriangle) const {
  const ZBR_PT3 &left = a.x() <= b.x() ? a : b, &right = a.x() <= b.x() ? b : a;
  const double slope = right.x() > left.x() ? (right.y() - left.y()) / (right.x() - left.x()) : 0.0;
  for (std::size_t column = Column(left.x()); column <= Column(right.x()); ++column) {
    // Within the column the segment goes from y0 to y1.
    const double x0 = lowX_ + static_cast<double>(column) * size_;
    double y0 = column == Column(left.x()) ? left.y() : left.y() + slope * (x0 - left.x());
    double y1 = column == Column(right.x()) ? right.y() : left.y() + slope * (x0 + size_ - left.x());
    if (y0 > y1) std::swap(y0, y1);
    for (std::size_t row = Row(y0); row <= Row(y1); ++row) {
      for (const std::uint32_t t : cells_[row * columns_ + column]) tryTriangle(t);
    }
  }
}

struct Interval {
  float from = 0.0F, to = 1.0F;

  // Keeps the parameters t where a value is not negative that is `atStart` at t = 0, `atEnd` at t = 1 and linear between.
  void Clip(double atStart, double atEnd) {
    if (atStart >= 0.0 && atEnd >= 0.0) return;
    if (atStart < 0.0 && atEnd < 0.0) {
      to = from;
      return;
    }
    const auto t = static_cast<float>(atStart / (atStart - atEnd));
    if (atStart >= 0.0) {
      to = std::min(to, t);
    } else {
      from = std::max(from, t);
    }
  }
};

// The stretch of an edge that a triangle hides: inside of its three sides and below its plane.
Interval HiddenBy(const Triangle& triangle, const FlatEdge& edge) {
  Interval hidden;
  const ZBR_PT3& o = triangle[0];
  const ZBR_PT3 u = triangle[1] - o, v = triangle[2] - o;
  const double area2 = u.OuterProductXY(v);
  for (std::size_t i = 0; i < 3 && hidden.from < hidden.to; ++i) {
    const ZBR_PT3 &p = triangle[i], side = triangle[(i + 1) % 3] - p;
    const double turn = area2 > 0.0 ? 1.0 : -1.0;
    hidden.Clip(turn * side.OuterProductXY(edge.a - p), turn * side.OuterProductXY(edge.b - p));
  }
  if (hidden.from < hidden.to) {
    const auto above = [&](const ZBR_PT3& p) {
      const ZBR_PT3 d = p - o;
      return (d.OuterProductXY(v) * u.z() + u.OuterProductXY(d) * v.z()) / area2 - d.z() - kRise;
    };
    hidden.Clip(above(edge.a), above(edge.b));
  }
  return hidden;
}

class PlainGrid final : public HiddenRemover {
 public:
  void Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) override { given_ = GiveScene(model, view); }
  void Run() override;
  DrawnLines Describe() const override { return lines_; }

 private:
  void KeepVisible(const FlatEdge& edge, std::vector<Interval>& hidden);

  std::vector<GivenTriangle> given_;
  DrawnLines lines_;
};

void PlainGrid::Run() {
  lines_ = DrawnLines();
  const FlatScene scene = MakeFlatScene(given_);
  const Grid grid(scene.triangles);
  std::vector<float> tops;
  for (const auto& [a, b, c] : scene.triangles) tops.push_back(static_cast<float>(std::max({a.z(), b.z(), c.z()})));
  std::vector<std::uint32_t> triedBy(scene.triangles.size());  // the last edge that met the triangle, counted from 1
  std::vector<Interval> hidden;
  std::uint32_t number = 0;
  for (const FlatEdge& edge : scene.edges) {
    ++number;
    hidden.clear();
    const double bottom = std::min(edge.a.z(), edge.b.z());
    grid.Along(edge.a, edge.b, [&](std::uint32_t t) {
      if (std::exchange(triedBy[t], number) == number || tops[t] <= bottom) return;
      const Interval by = HiddenBy(scene.triangles[t], edge);
      if (by.from < by.to) hidden.push_back(by);
    });
    KeepVisible(edge, hidden);
  }
}

// What lies between the hidden stretches is seen.
void PlainGrid::KeepVisible(const FlatEdge& edge, std::vector<Interval>& hidden) {
  std::sort(hidden.begin(), hidden.end(), [](const Interval& a, const Interval& b) { return a.from < b.from; });
  double visible = 0.0;
  std::size_t pieces = 0;
  float end = 0.0F;
  const auto seenUpTo = [&](float t) {
    if (t > end) {
      visible += static_cast<double>(t - end);
      ++pieces;
    }
  };
  for (const Interval& stretch : hidden) {
    seenUpTo(stretch.from);
    end = std::max(end, stretch.to);
  }
  seenUpTo(1.0F);
  AddVisible(edge, visible, pieces, lines_);
}

}  // namespace

std::unique_ptr<HiddenRemover> MakePlainGrid() {
  return std::make_unique<PlainGrid>();
}

}  // namespace bench
