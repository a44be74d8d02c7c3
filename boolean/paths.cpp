// Chains crossings into the paths of one operation.
//
// Idea: at a crossing where B goes to the left of A the boundary of the result follows A, at one where it goes to the right it
// follows B, each forward or backward as the operation says. So a path starts at a crossing to the left, takes A to the next
// crossing to the right, B to the next to the left, and so on until it is back. Crossings whose predecessor has the same direction
// lie on shared boundary and are passed over. Every crossing is used once. The next usable one along a side is found with skip
// links that are shortened as they are followed, so that finding all paths is linear but for a factor nobody can measure.
#include "boolean/paths.h"

namespace zbr {

void CrossingRing::Build(const std::vector<PlacedCrossing>& sorted) {
  at.resize(sorted.size());
  seq.resize(sorted.size());
  run.resize(sorted.size());
  runs.clear();
  const auto loopAt = [&sorted](std::size_t k) { return sorted[k].loop; };
  ForEachPolygonRun(sorted.size(), loopAt, [&](std::size_t first, std::size_t last) {
    for (std::size_t k = first; k < last; ++k) {
      at[k] = static_cast<std::uint32_t>(sorted[k].index);
      seq[at[k]] = static_cast<std::uint32_t>(k);
      run[k] = static_cast<std::uint32_t>(runs.size());
    }
    runs.push_back({static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last - 1)});
  });
}

void PathFinder::Prepare(const SortedCrossings& sorted) {
  for (int side = 0; side < 2; ++side) rings_[side].Build(sorted.side[side]);
  goesLeft_.resize(sorted.side[0].size());
  for (const PlacedCrossing& p : sorted.side[0]) goesLeft_[static_cast<std::size_t>(p.index)] = p.dir == ZBR_CROSS_TO_LEFT;
  done_.assign(goesLeft_.size(), 0);
}

void PathFinder::Walk::Start(const CrossingRing& sorted, bool walksForward, const std::vector<std::uint8_t>& taken) {
  ring = &sorted;
  forward = walksForward;
  const auto n = static_cast<std::uint32_t>(ring->at.size());
  skip.resize(n + 1);
  skip[n] = n;
  for (std::uint32_t w = 0; w < n; ++w) skip[w] = taken[ring->at[Place(w)]] != 0 ? w + 1 : w;
}

std::uint32_t PathFinder::Walk::FirstFrom(std::uint32_t w) {
  while (skip[w] != w) {
    skip[w] = skip[skip[w]];
    w = skip[w];
  }
  return w;
}

std::uint32_t PathFinder::Walk::Next(std::uint32_t crossing) {
  const std::uint32_t k = ring->seq[crossing];
  const CrossingRing::Run& run = ring->runs[ring->run[k]];
  const std::uint32_t first = Place(forward ? run.first : run.last);
  const std::uint32_t last = Place(forward ? run.last : run.first);
  std::uint32_t w = FirstFrom(Place(k) + 1);
  if (w > last) w = FirstFrom(first);  // wraps around the polygon
  return w > last ? kNone : ring->at[Place(w)];
}

void PathFinder::Walk::Remove(std::uint32_t crossing) {
  const std::uint32_t w = Place(ring->seq[crossing]);
  skip[w] = w + 1;
}

// zbrSetFollowingCrossDone on the compact form.
void PathFinder::MarkFollowing(const CrossingRing& ring, std::uint8_t goesLeft, bool forward) {
  for (const CrossingRing::Run& run : ring.runs) {
    std::uint32_t before = forward ? run.last : run.first;
    for (std::uint32_t step = 0; step <= run.last - run.first; ++step) {
      const std::uint32_t k = forward ? run.first + step : run.last - step;
      if (goesLeft_[ring.at[k]] == goesLeft && goesLeft_[ring.at[before]] == goesLeft) done_[ring.at[k]] = 1;
      before = k;
    }
  }
}

void PathFinder::Find(bool forwardA, bool forwardB) {
  items_.clear();
  ends_.clear();
  const std::size_t n = goesLeft_.size();
  done_.assign(n, 0);
  MarkFollowing(rings_[0], 0, forwardA);
  MarkFollowing(rings_[1], 1, forwardB);

  taken_.resize(n);
  for (std::size_t i = 0; i < n; ++i) taken_[i] = done_[i] | goesLeft_[i];
  alongA_.Start(rings_[0], forwardA, taken_);
  for (std::size_t i = 0; i < n; ++i) taken_[i] = done_[i] | (goesLeft_[i] ^ 1U);
  alongB_.Start(rings_[1], forwardB, taken_);

  // Starts come in the order of the list along B. Done crossings stay done, so one pass sees every start; a start whose path did
  // not close is tried again until it is done, each try using up a crossing.
  for (const std::uint32_t start : rings_[1].at) {
    while (goesLeft_[start] != 0 && done_[start] == 0) {
      const std::size_t begin = items_.size();
      if (Trace(start)) {
        ends_.push_back(items_.size());
      } else {
        items_.resize(begin);
      }
    }
  }
}

// Follows one path and appends it to items_; whether it closes.
bool PathFinder::Trace(std::uint32_t start) {
  items_.push_back(start);
  std::uint32_t y = start;
  for (;;) {
    const std::uint32_t x = alongA_.Next(y);
    if (x == kNone) {
      if (y == start) Finish(start);
      return false;
    }
    y = alongB_.Next(x);
    if (y == kNone) {
      Finish(start);
      Finish(x);
      return false;
    }
    items_.push_back(x);
    items_.push_back(y);
    Finish(x);
    Finish(y);
    if (y == start) return true;
  }
}

void PathFinder::Finish(std::uint32_t crossing) {
  done_[crossing] = 1;
  (goesLeft_[crossing] != 0 ? alongB_ : alongA_).Remove(crossing);
}

}  // namespace zbr
