// Idea: every end of a drawn edge is linked to the end that goes on from the same vertex, if there is one; chains then follow the
// links. Difficulty: rims of slotted bores and of bosses on plates run through vertices of three and more edges, where a tangent
// line may turn less than the rim does. The chords of a rim are alike in length, which tells them from the line.
#include "drawing/curves/edge_chains.h"

#include <algorithm>
#include <cmath>

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kNone = 0xffffffffU;

// Vertices of more drawn edges than this are hubs, and no chain runs through them.
constexpr std::size_t kMostAtVertex = 8;

// What an edge of twice the length counts as, in radians of turn.
constexpr double kTurnPerLength = 0.5;

class Chainer {
 public:
  Chainer(const Model& model, std::size_t shell) : model_(model), shell_(model.Shell(shell)) {
    for (int e = 0; e < shell_.GetEdgeCnt(); ++e) {
      if (model.Class(shell, *shell_.GetEdge(e)) != EdgeClass::kSmooth) drawn_.push_back(static_cast<std::uint32_t>(e));
    }
  }

  std::vector<EdgeChain> Run(std::size_t fewest) {
    if (drawn_.size() < fewest) return {};
    CollectEnds();
    link_.assign(2 * drawn_.size(), kNone);
    for (std::size_t k = 0; k < ends_.size();) k = LinkVertex(k);
    taken_.assign(drawn_.size(), false);
    std::vector<EdgeChain> chains;
    for (const bool closed : {false, true}) {
      for (std::uint32_t end = 0; end < link_.size(); ++end) {
        if (taken_[end / 2] || (!closed && link_[end] != kNone)) continue;
        const std::vector<std::uint32_t> entered = Follow(end);
        if (entered.size() >= fewest) chains.push_back(ChainOf(entered, closed));
      }
    }
    return chains;
  }

 private:
  // End 2k + i is vertex i of drawn edge k.
  struct End {
    std::uint32_t vertex, end;
  };

  const ZBR_ZBREPE& EdgeAt(std::uint32_t end) const { return *shell_.GetEdge(static_cast<int>(drawn_[end / 2])); }
  std::uint32_t VertexAt(std::uint32_t end) const {
    return static_cast<std::uint32_t>(end % 2 == 0 ? EdgeAt(end).GetV0() : EdgeAt(end).GetV1());
  }
  ZBR_PT3 PointAt(std::uint32_t end) const {
    return (shell_.GetVertex(static_cast<int>(VertexAt(end)))->GetPt() - model_.Centre()) * (1.0 / model_.Diagonal());
  }

  void CollectEnds() {
    for (std::uint32_t end = 0; end < 2 * drawn_.size(); ++end) ends_.push_back({VertexAt(end), end});
    std::sort(ends_.begin(), ends_.end(),
              [](const End& a, const End& b) { return a.vertex != b.vertex ? a.vertex < b.vertex : a.end < b.end; });
    degree_.assign(static_cast<std::size_t>(shell_.GetVertexCnt()), 0);
    for (const End& end : ends_) ++degree_[end.vertex];
  }

  // Links the ends at the vertex of the k-th one, the best pair first. Returns where those of the next vertex start.
  std::size_t LinkVertex(std::size_t k) {
    const std::size_t count = degree_[ends_[k].vertex];
    while (count <= kMostAtVertex) {
      double best = HUGE_VAL;
      std::uint32_t from = kNone, to = kNone;
      for (std::size_t i = k; i < k + count; ++i) {
        for (std::size_t j = i + 1; j < k + count; ++j) {
          if (link_[ends_[i].end] != kNone || link_[ends_[j].end] != kNone) continue;
          const double cost = Cost(ends_[i].end, ends_[j].end);
          if (!(cost < best)) continue;
          best = cost;
          from = ends_[i].end;
          to = ends_[j].end;
        }
      }
      if (from == kNone) break;
      link_[from] = to;
      link_[to] = from;
    }
    return k + count;
  }

  // How badly one edge goes on as the other; infinite where they make a corner.
  double Cost(std::uint32_t a, std::uint32_t b) const {
    const ZBR_PT3 vertex = PointAt(a);
    const ZBR_PT3 back = vertex - PointAt(a ^ 1U), ahead = PointAt(b ^ 1U) - vertex;
    const double a0 = back.Length(), b0 = ahead.Length();
    if (!(a0 > 0 && b0 > 0) || back.InnerProduct(ahead) < kCosLargestTurn * a0 * b0) return HUGE_VAL;
    const double turn = (back * (1.0 / a0) - ahead * (1.0 / b0)).Length();
    return turn + kTurnPerLength * (std::max(a0, b0) / std::min(a0, b0) - 1.0);
  }

  // The ends at which the chain from an end enters its edges.
  std::vector<std::uint32_t> Follow(std::uint32_t start) {
    std::vector<std::uint32_t> entered;
    for (std::uint32_t end = start; end != kNone && !taken_[end / 2]; end = link_[end ^ 1U]) {
      taken_[end / 2] = true;
      entered.push_back(end);
    }
    return entered;
  }

  EdgeChain ChainOf(const std::vector<std::uint32_t>& entered, bool closed) const {
    EdgeChain chain;
    chain.isClosed = closed;
    for (const std::uint32_t end : entered) {
      chain.edges.push_back(drawn_[end / 2]);
      chain.points.push_back(PointAt(end));
      chain.isFree.push_back(degree_[VertexAt(end)] == 2);
    }
    chain.points.push_back(PointAt(entered.back() ^ 1U));
    chain.isFree.push_back(closed ? chain.isFree.front() : true);
    if (closed) {
      StartWithLongest(chain);
    } else {
      chain.isFree.front() = true;
    }
    return chain;
  }

  const Model& model_;
  const ZBR_ZBREPS& shell_;
  std::vector<std::uint32_t> drawn_;   // edges
  std::vector<End> ends_;              // by vertex
  std::vector<std::uint32_t> degree_;  // of vertices: drawn edges
  std::vector<std::uint32_t> link_;    // of ends
  std::vector<bool> taken_;            // of drawn edges
};

}  // namespace

std::vector<EdgeChain> ChainEdges(const Model& model, std::size_t shell, std::size_t fewest) {
  return Chainer(model, shell).Run(fewest);
}

void StartWithLongest(EdgeChain& chain) {
  std::size_t longest = 0;
  const auto length = [&](std::size_t k) { return chain.points[k].Distance(chain.points[k + 1]); };
  for (std::size_t k = 1; k < chain.edges.size(); ++k) longest = length(k) > length(longest) ? k : longest;
  const auto by = static_cast<std::ptrdiff_t>(longest);
  chain.points.pop_back();
  chain.isFree.pop_back();
  std::rotate(chain.edges.begin(), chain.edges.begin() + by, chain.edges.end());
  std::rotate(chain.points.begin(), chain.points.begin() + by, chain.points.end());
  std::rotate(chain.isFree.begin(), chain.isFree.begin() + by, chain.isFree.end());
  chain.points.push_back(chain.points.front());
  chain.isFree.push_back(chain.isFree.front());
}

}  // namespace zbr::drawing
