// Following boundary pieces.
//
// A walk keeps the vertices that it has come through. When it comes to one of them again, what lies between is a ring and is taken
// off; when it can't go on, it takes its last step back. Every piece is walked once.
#include <algorithm>
#include <cmath>

#include "arrangement/loop_builder.h"
#include "core/planar_inline.h"

namespace zbr {
namespace {

// The pieces leaving each vertex that are not walked yet.
class Leaving {
 public:
  Leaving(std::span<const BoundaryPiece> pieces, std::size_t vertices) : begin_(vertices + 1, 0), end_(vertices) {
    for (const BoundaryPiece& p : pieces) ++begin_[p.from + 1];
    for (std::size_t v = 1; v < begin_.size(); ++v) begin_[v] += begin_[v - 1];
    std::copy(begin_.begin(), begin_.end() - 1, end_.begin());
    list_.resize(pieces.size());
    for (std::uint32_t i = 0; i < pieces.size(); ++i) list_[end_[pieces[i].from]++] = i;
  }

  std::span<const std::uint32_t> At(std::uint32_t v) const { return std::span(list_).subspan(begin_[v], end_[v] - begin_[v]); }
  void Remove(std::uint32_t v, std::uint32_t piece) {
    const auto last = list_.begin() + end_[v];
    const auto place = std::find(list_.begin() + begin_[v], last, piece);
    std::copy(place + 1, last, place);
    --end_[v];
  }

 private:
  std::vector<std::uint32_t> list_;
  std::vector<std::uint32_t> begin_;
  std::vector<std::uint32_t> end_;
};

// Orders directions by how far they turn to the left of the direction given, half a turn at most either way.
class LeftTurn {
 public:
  explicit LeftTurn(const ZBR_PT& ahead) : ahead_(ahead) {}

  // Whether u turns less to the left (or more to the right) than v.
  bool operator()(const ZBR_PT& u, const ZBR_PT& v) const {
    const int halfU = Half(u);
    const int halfV = Half(v);
    return halfU != halfV ? halfU < halfV : Cross(u, v) > 0.0;
  }

 private:
  // 0 to the right or ahead, 1 to the left or back.
  int Half(const ZBR_PT& u) const {
    const double c = Cross(ahead_, u);
    return c > 0.0 || (c == 0.0 && ahead_.InnerProduct(u) < 0.0) ? 1 : 0;
  }

  ZBR_PT ahead_;
};

class Tracer {
 public:
  Tracer(std::span<const BoundaryPiece> pieces, std::span<const ZBR_PT> places, std::vector<std::uint32_t>& next)
      : pieces_(pieces), places_(places), next_(next), leaving_(pieces, places.size()), place_(places.size(), kNoNext) {
    next_.assign(pieces.size(), kNoNext);
  }

  std::vector<Ring> Run() {
    for (std::uint32_t i = 0; i < pieces_.size(); ++i) {
      const std::span<const std::uint32_t> open = leaving_.At(pieces_[i].from);
      if (std::find(open.begin(), open.end(), i) != open.end()) Walk(i);
    }
    return std::move(rings_);
  }

 private:
  // Walks from a piece until nothing is left of the walk.
  void Walk(std::uint32_t piece) {
    Step(piece);
    while (!walk_.empty()) {
      const std::uint32_t at = pieces_[walk_.back()].to;
      if (place_[at] != kNoNext) {
        TakeRing(at);
      } else if (leaving_.At(at).empty()) {
        place_[pieces_[walk_.back()].from] = kNoNext;
        walk_.pop_back();
      } else {
        Step(Continuation(walk_.back()));
      }
    }
  }

  void Step(std::uint32_t piece) {
    const std::uint32_t from = pieces_[piece].from;
    leaving_.Remove(from, piece);
    place_[from] = static_cast<std::uint32_t>(walk_.size());
    walk_.push_back(piece);
  }

  std::uint32_t Continuation(std::uint32_t piece) const {
    const std::uint32_t at = pieces_[piece].to;
    const std::span<const std::uint32_t> open = leaving_.At(at);
    if (open.size() == 1) return open[0];
    const LeftTurn turnsLess(places_[at] - places_[pieces_[piece].from]);
    const auto ahead = [&](std::uint32_t i) { return places_[pieces_[i].to] - places_[at]; };
    return *std::max_element(open.begin(), open.end(),
                             [&](std::uint32_t i, std::uint32_t j) { return turnsLess(ahead(i), ahead(j)); });
  }

  // The walk has come back to the vertex.
  void TakeRing(std::uint32_t vertex) {
    const std::size_t begin = place_[vertex];
    Ring ring;
    ring.reserve(walk_.size() - begin);
    for (std::size_t k = begin; k < walk_.size(); ++k) {
      ring.push_back(pieces_[walk_[k]].from);
      place_[ring.back()] = kNoNext;
      next_[walk_[k]] = walk_[k + 1 < walk_.size() ? k + 1 : begin];
    }
    // What remains of the walk came to the vertex before; it goes on from the ring's end as the ring's last piece would have done.
    const std::uint32_t last = walk_.back();
    walk_.resize(begin);
    rings_.push_back(std::move(ring));
    if (walk_.empty() || leaving_.At(vertex).empty()) return;
    Step(Continuation(last));
  }

  std::span<const BoundaryPiece> pieces_;
  std::span<const ZBR_PT> places_;
  std::vector<std::uint32_t>& next_;
  Leaving leaving_;
  std::vector<std::uint32_t> place_;  // of a vertex in the walk
  std::vector<std::uint32_t> walk_;   // pieces
  std::vector<Ring> rings_;
};

}  // namespace

std::vector<Ring> TraceRings(std::span<const BoundaryPiece> pieces, std::span<const ZBR_PT> places,
                             std::vector<std::uint32_t>& next) {
  return Tracer(pieces, places, next).Run();
}

}  // namespace zbr
