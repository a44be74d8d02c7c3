// Ends and middles are looked up in a grid of the cells that longer lines run through: what runs beside a line says nothing,
// either.
#include "drawing/views/crumbs.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_set>

#include "drawing/views/chains.h"
#include "drawing/views/specks.h"

namespace zbr::drawing {
namespace {

constexpr double kCrumb = 0.01;   // of the view's size
constexpr double kJoined = 2e-3;  // the same: lines this close together meet

class Cells {
 public:
  explicit Cells(double size) : size_(size) {}
  void Add(const ZBR_PT& from, const ZBR_PT& to) {
    const double steps = std::max(std::ceil(from.Distance(to) / size_), 1.0);
    for (double k = 0; k <= steps; ++k) Add(from + (to - from) * (k / steps));
  }
  void Add(const ZBR_PT& p) { cells_.insert(KeyOf(std::floor(p.x() / size_), std::floor(p.y() / size_))); }
  // Whether a point is in the same cell or next to it.
  bool Has(const ZBR_PT& p) const {
    const double x = std::floor(p.x() / size_), y = std::floor(p.y() / size_);
    for (const double dx : {-1.0, 0.0, 1.0}) {
      for (const double dy : {-1.0, 0.0, 1.0}) {
        if (cells_.contains(KeyOf(x + dx, y + dy))) return true;
      }
    }
    return false;
  }

 private:
  static std::uint64_t KeyOf(double x, double y) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(x)) << 32U ^
           static_cast<std::uint32_t>(static_cast<std::int64_t>(y));
  }
  double size_;
  std::unordered_set<std::uint64_t> cells_;
};

}  // namespace

void DropCrumbs(ViewLines& view) {
  const double size = view.extent.Size();
  if (!(size > 0)) return;
  Cells joined(kJoined * size);
  for (const Line& line : view.lines) {
    if (line.hidden || LengthOf(line.chain) < kCrumb * size) continue;
    for (std::size_t i = 1; i < line.chain.points.size(); ++i) joined.Add(line.chain.points[i - 1], line.chain.points[i]);
  }
  std::erase_if(view.lines, [&](const Line& line) {
    if (line.hidden || (line.edgeClass != EdgeClass::kCrease && line.edgeClass != EdgeClass::kSilhouette)) return false;
    if (LengthOf(line.chain) >= kCrumb * size) return false;
    const std::vector<ZBR_PT>& points = line.chain.points;
    const ZBR_PT middle = points.size() > 2 ? points[points.size() / 2] : (points.front() + points.back()) * 0.5;
    return line.chain.closed || LengthOf(line.chain) < kLineWidth * size || joined.Has(middle) || !joined.Has(points.front()) ||
           !joined.Has(points.back());
  });
}

}  // namespace zbr::drawing
