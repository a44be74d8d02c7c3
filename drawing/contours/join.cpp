// Joins lines and arcs that meet end to end into contours.
//
// Idea: the ends that meet are the nodes of a graph whose edges are the open paths. Dead ends are peeled off until every node has
// two ends or more. What is left falls into connected pieces. One whose nodes all have two ends is a contour, walked from its
// leftmost node; one whose nodes all have an even number of ends is several; one with other forks is handed back as it is, as only
// the faces it bounds tell what it encloses. Peeled paths become open chains. Nothing but the numbers of lines and the order in
// which contours are listed depends on the order of the paths.
#include <zbr-drawing/contours.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "drawing/contours/end_nodes.h"
#include "drawing/contours/even_rings.h"

namespace zbr::drawing {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

void Reverse(Path& path) {
  const std::size_t edges = path.points.size() - 1;
  std::reverse(path.points.begin(), path.points.end());
  std::reverse(path.pens.begin(), path.pens.end());
  std::reverse(path.curves.begin(), path.curves.end());
  for (Curve& curve : path.curves) {
    curve.at = edges - 1 - curve.at;
    std::swap(curve.t0, curve.t1);
  }
}

// Appends `next`, whose first point is the chain's last.
void Append(Path& chain, Path&& next) {
  const std::size_t joint = chain.points.size() - 1;
  chain.line = std::min(chain.line, next.line);
  chain.points.insert(chain.points.end(), next.points.begin() + 1, next.points.end());
  chain.pens.insert(chain.pens.end(), next.pens.begin(), next.pens.end());
  for (Curve& curve : next.curves) {
    curve.at += joint;
    chain.curves.push_back(curve);
  }
}

class Joiner {
 public:
  Joiner(std::vector<Path>& paths, double tolerance, bool ringsAtForks)
      : paths_(paths), ringsAtForks_(ringsAtForks), nodes_(FindEndNodes(paths, tolerance)) {
    endsAt_.resize(nodes_.points.size());
    for (std::size_t end = 0; end < nodes_.nodeOf.size(); ++end) {
      if (nodes_.nodeOf[end] != EndNodes::kNoNode) AddEnd(end);
    }
    isTaken_.assign(paths.size(), false);
  }

  LineWork Run() {
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      if (paths_[i].closed || paths_[i].points.size() == 1 || ClosesAlone(i)) TakeAlone(i);
    }
    Peel();
    TakePieces();
    TakeChains();
    using Item = std::pair<std::size_t, Path>;
    std::stable_sort(contours_.begin(), contours_.end(), [](const Item& a, const Item& b) { return a.first < b.first; });
    for (auto& [place, path] : contours_) work_.contours.push_back(std::move(path));
    return std::move(work_);
  }

 private:
  // Moves the end to its node.
  void AddEnd(std::size_t end) {
    Path& path = paths_[end / 2];
    ZBR_PT& p = end % 2 == 0 ? path.points.front() : path.points.back();
    p = nodes_.points[nodes_.nodeOf[end]];
    endsAt_[nodes_.nodeOf[end]].push_back(end);
  }

  std::uint32_t NodeOf(std::size_t end) const { return nodes_.nodeOf[end]; }

  bool ClosesAlone(std::size_t i) const { return NodeOf(2 * i) != EndNodes::kNoNode && NodeOf(2 * i) == NodeOf(2 * i + 1); }

  // What is closed or a single point. A line that shrank to a point is nothing.
  void TakeAlone(std::size_t i) {
    Path& path = paths_[i];
    isTaken_[i] = true;
    if (!path.closed && path.points.size() > 1) {
      const std::uint32_t node = NodeOf(2 * i);
      std::erase_if(endsAt_[node], [&](std::size_t end) { return end / 2 == i; });
      if (path.points.size() == 2 && path.curves.empty()) return;
      path.points.pop_back();
      path.closed = true;
    }
    contours_.emplace_back(i, std::move(path));
  }

  // Takes away paths with an end that meets nothing, until there is none.
  void Peel() {
    std::vector<std::uint32_t> dead;
    isPeeled_.assign(paths_.size(), false);
    degree_.resize(endsAt_.size());
    for (std::uint32_t v = 0; v < endsAt_.size(); ++v) {
      degree_[v] = endsAt_[v].size();
      if (degree_[v] == 1) dead.push_back(v);
    }
    while (!dead.empty()) {
      const std::uint32_t v = dead.back();
      dead.pop_back();
      for (const std::size_t end : endsAt_[v]) {
        if (isPeeled_[end / 2]) continue;
        isPeeled_[end / 2] = true;
        --degree_[v];
        if (--degree_[NodeOf(end ^ 1U)] == 1) dead.push_back(NodeOf(end ^ 1U));
      }
    }
  }

  // The connected pieces of what was not peeled.
  void TakePieces() {
    std::vector<bool> isSeen(endsAt_.size(), false);
    for (std::uint32_t start = 0; start < endsAt_.size(); ++start) {
      if (degree_[start] == 0 || isSeen[start]) continue;
      std::vector<std::uint32_t> piece{start};
      isSeen[start] = true;
      bool isRings = true;
      for (std::size_t k = 0; k < piece.size(); ++k) {
        isRings = isRings && (degree_[piece[k]] == 2 || (ringsAtForks_ && degree_[piece[k]] % 2 == 0));
        for (const std::size_t end : endsAt_[piece[k]]) {
          const std::uint32_t other = NodeOf(end ^ 1U);
          if (isPeeled_[end / 2] || isSeen[other]) continue;
          isSeen[other] = true;
          piece.push_back(other);
        }
      }
      if (isRings) {
        TakeRings(piece);
      } else {
        TakeForked(piece);
      }
    }
  }

  void TakeForked(const std::vector<std::uint32_t>& piece) {
    std::vector<Path>& paths = work_.pieces.emplace_back();
    for (const std::uint32_t v : piece) {
      std::size_t line = std::numeric_limits<std::size_t>::max();
      for (const std::size_t end : endsAt_[v]) line = std::min(line, isPeeled_[end / 2] ? line : LineOf(end / 2));
      if (degree_[v] > 2) work_.forks.push_back({nodes_.points[v], degree_[v], line});
    }
    for (const std::uint32_t v : piece) {
      for (const std::size_t end : endsAt_[v]) {
        if (isPeeled_[end / 2] || isTaken_[end / 2]) continue;
        isTaken_[end / 2] = true;
        paths.push_back(paths_[end / 2]);
      }
    }
  }

  std::size_t LineOf(std::size_t path) const { return paths_[path].line; }

  void TakeRings(std::vector<std::uint32_t>& piece) {
    std::sort(piece.begin(), piece.end());
    std::vector<std::vector<std::size_t>> ends;
    for (const std::uint32_t v : piece) {
      std::vector<std::size_t> kept = endsAt_[v];
      std::erase_if(kept, [&](std::size_t end) { return isPeeled_[end / 2]; });
      ends.push_back(std::move(kept));
    }
    for (EndCycle& ring : EvenRings(paths_, nodes_, ends)) TakeRing(ring);
  }

  // The first node's way to go is the one whose path leads there first by its coordinates.
  void TakeRing(EndCycle& ring) {
    if (LeavesFirst(ring.back() ^ 1U, ring.front())) {
      std::reverse(ring.begin(), ring.end());
      for (std::size_t& end : ring) end ^= 1U;
    }
    std::size_t place = ring.front() / 2;
    Path chain = Take(ring.front());
    for (std::size_t i = 1; i < ring.size(); ++i) {
      place = std::min(place, ring[i] / 2);
      Append(chain, Take(ring[i]));
    }
    chain.points.pop_back();
    chain.closed = true;
    contours_.emplace_back(place, std::move(chain));
  }

  bool LeavesFirst(std::size_t a, std::size_t b) const {
    const auto key = [&](std::size_t end) {
      const Path& path = paths_[end / 2];
      const auto n = path.points.size();
      ZBR_PT p = path.points[end % 2 == 0 ? 1 : n - 2];
      for (const Curve& curve : path.curves) {
        if (curve.at == (end % 2 == 0 ? 0 : n - 2)) p = curve.At((curve.t0 + curve.t1) / 2);
      }
      return std::tuple(p.x(), p.y());
    };
    return key(a) < key(b);
  }

  // Takes a path, turned so that it starts at the given end.
  Path Take(std::size_t end) {
    isTaken_[end / 2] = true;
    Path path = std::move(paths_[end / 2]);
    if (end % 2 != 0) Reverse(path);
    return path;
  }

  // The peeled paths, joined where only two ends meet.
  void TakeChains() {
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      if (!isPeeled_[i] || isTaken_[i]) continue;
      // Back to where the chain starts, then along it.
      std::size_t first = 2 * i;
      for (std::size_t k = OtherAt(first); k != kNone && k / 2 != i; k = OtherAt(first)) first = k ^ 1U;
      std::size_t place = first / 2, end = first;
      Path chain = Take(first);
      for (std::size_t next = OtherAt(end ^ 1U); next != kNone && !isTaken_[next / 2]; next = OtherAt(end ^ 1U)) {
        end = next;
        place = std::min(place, next / 2);
        Append(chain, Take(next));
      }
      contours_.emplace_back(place, std::move(chain));
    }
  }

  // The only other end at an end's node, if it is one of a peeled path.
  std::size_t OtherAt(std::size_t end) const {
    const std::vector<std::size_t>& ends = endsAt_[NodeOf(end)];
    if (ends.size() != 2) return kNone;
    const std::size_t other = ends[0] == end ? ends[1] : ends[0];
    return isPeeled_[other / 2] ? other : kNone;
  }

  std::vector<Path>& paths_;
  bool ringsAtForks_;
  EndNodes nodes_;
  std::vector<std::vector<std::size_t>> endsAt_;        // by node
  std::vector<std::size_t> degree_;                     // by node: ends that are not peeled
  std::vector<bool> isPeeled_, isTaken_;                // by path
  std::vector<std::pair<std::size_t, Path>> contours_;  // with the place of their first path
  LineWork work_;
};

}  // namespace

LineWork JoinPaths(std::vector<Path> paths, double tolerance, LineFaces faces) {
  return Joiner(paths, tolerance, faces == LineFaces::kRings).Run();
}

}  // namespace zbr::drawing
