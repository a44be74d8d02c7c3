// A region as trapezoids: between two edges that are next to each other for a while, upwards.
//
// Unlike a triangulation this takes regions whose rings touch, and thousands of points, without a search. That its triangles have
// corners within sides of others does no harm: they are there to hide what lies behind.
#include "drawing/sections/caps.h"

#include <algorithm>
#include <cstddef>

namespace zbr::drawing {
namespace {

struct Edge {
  ZBR_PT low, high;
  double At(double y) const {
    if (y <= low.y()) return low.x();
    if (y >= high.y()) return high.x();
    return low.x() + (high.x() - low.x()) * ((y - low.y()) / (high.y() - low.y()));
  }
};

// Between two edges from a height on.
struct Strip {
  std::size_t left = 0, right = 0;
  double from = 0.0;
};

class Sweep {
 public:
  explicit Sweep(const ZBR_REGION& region) {
    for (std::size_t r = 0; r < region.ring_count(); ++r) {
      const auto begin = static_cast<std::size_t>(region.ring_offsets()[r]),
                 end = static_cast<std::size_t>(region.ring_offsets()[r + 1]);
      for (std::size_t i = begin; i < end; ++i) AddEdge(region.points()[i], region.points()[i + 1 < end ? i + 1 : begin]);
    }
    std::sort(edges_.begin(), edges_.end(), [](const Edge& a, const Edge& b) { return a.low.y() < b.low.y(); });
    std::sort(heights_.begin(), heights_.end());
    heights_.erase(std::unique(heights_.begin(), heights_.end()), heights_.end());
  }

  std::vector<std::array<ZBR_PT, 3>> Run() {
    std::size_t next = 0;
    for (std::size_t k = 0; k + 1 < heights_.size(); ++k) {
      const double from = heights_[k], middle = from + (heights_[k + 1] - from) / 2;
      std::erase_if(active_, [&](std::size_t e) { return edges_[e].high.y() <= from; });
      for (; next < edges_.size() && edges_[next].low.y() <= from; ++next) active_.push_back(next);
      std::sort(active_.begin(), active_.end(), [&](std::size_t a, std::size_t b) {
        const double xa = edges_[a].At(middle), xb = edges_[b].At(middle);
        return xa != xb ? xa < xb : a < b;
      });
      Advance(from);
    }
    if (!heights_.empty()) {
      for (const Strip& strip : strips_) Close(strip, heights_.back());
    }
    return std::move(triangles_);
  }

 private:
  void AddEdge(const ZBR_PT& a, const ZBR_PT& b) {
    heights_.push_back(a.y());
    if (a.y() != b.y()) edges_.push_back(a.y() < b.y() ? Edge{a, b} : Edge{b, a});
  }

  // Strips whose edges stay next to each other go on.
  void Advance(double from) {
    std::vector<Strip> strips;
    heir_.resize(edges_.size());
    for (Strip& strip : strips_) heir_[strip.left] = &strip;
    for (std::size_t i = 0; i + 1 < active_.size(); i += 2) {
      Strip strip{active_[i], active_[i + 1], from};
      Strip*& before = heir_[strip.left];
      if (before != nullptr && before->right == strip.right) {
        strip.from = before->from;
        before = nullptr;
      }
      strips.push_back(strip);
    }
    for (const Strip& strip : strips_) {
      if (heir_[strip.left] != nullptr) Close(strip, from);
      heir_[strip.left] = nullptr;
    }
    strips_ = std::move(strips);
  }

  void Close(const Strip& strip, double to) {
    const Edge &left = edges_[strip.left], &right = edges_[strip.right];
    const ZBR_PT a(left.At(strip.from), strip.from), b(right.At(strip.from), strip.from);
    const ZBR_PT c(right.At(to), to), d(left.At(to), to);
    if ((b - a).OuterProduct(c - a) > 0) triangles_.push_back({a, b, c});
    if ((c - a).OuterProduct(d - a) > 0) triangles_.push_back({a, c, d});
  }

  std::vector<Edge> edges_;      // by their lower ends; none is level
  std::vector<double> heights_;  // of all points
  std::vector<std::size_t> active_;
  std::vector<Strip> strips_;
  std::vector<Strip*> heir_;  // by the edge on the left; null between steps
  std::vector<std::array<ZBR_PT, 3>> triangles_;
};

}  // namespace

std::vector<std::array<ZBR_PT, 3>> CoverOf(const ZBR_REGION& region) {
  return Sweep(region).Run();
}

}  // namespace zbr::drawing
