// Chains crossings into the paths of one operation.
//
// Idea: at a crossing where B goes to the left of A the boundary of the result follows A, at one where it goes to the right it
// follows B, each forward or backward as the operation says. So a path starts at a crossing to the left, takes A to the next
// crossing to the right, B to the next to the left, and so on until it is back. Crossings whose predecessor has the same direction
// lie on shared boundary and are passed over. Every crossing is used once. The next usable one along a side is found with skip
// links that are shortened as they are followed, so that finding all paths is linear but for a factor nobody can measure.
#include "boolean/paths.h"

#include <utility>

#include "boolean/check.h"
#include "core/assert.h"
#include "core/cost.h"

namespace zbr {

void SideOrder::FindRuns(const std::vector<PlacedCrossing>& sorted) {
  runs.clear();
  ForEachPolygonRun(sorted, [&](std::size_t first, std::size_t last) {
    runs.push_back({static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last - 1)});
  });
  run.clear();
  if (runs.size() < 2) return;
  run.reserve(sorted.size());
  for (std::uint32_t r = 0; r < runs.size(); ++r) run.insert(run.end(), runs[r].last - runs[r].first + 1, r);
}

void PathFinder::Prepare(SortedCrossings& sorted) {
  const std::size_t n = sorted.side[0].size();
  for (int side = 0; side < 2; ++side) order_[side].FindRuns(sorted.side[side]);
  goesLeft_.resize(n);
  order_[1].place = std::move(sorted.placesOnB);
  order_[1].at.resize(n);
  for (std::uint32_t k = 0; k < n; ++k) {
    goesLeft_[k] = sorted.side[0][k].dir == ZBR_CROSS_TO_LEFT;
    order_[1].at[order_[1].place[k]] = k;
  }
}

void PathFinder::Walk::Start(const SideOrder& side, bool walksForward, const std::vector<std::uint8_t>& taken) {
  order = &side;
  count = static_cast<std::uint32_t>(taken.size());
  forward = walksForward;
  skip.resize(count + 1);
  skip[count] = count;
  for (std::uint32_t w = 0; w < count; ++w) skip[w] = taken[order->At(Step(w))] != 0 ? w + 1 : w;
}

std::uint32_t PathFinder::Walk::FirstFrom(std::uint32_t w) {
  while (skip[w] != w) {
    ZBR_COUNT(crossings, 1);
    skip[w] = skip[skip[w]];
    w = skip[w];
  }
  return w;
}

std::uint32_t PathFinder::Walk::Next(std::uint32_t crossing) {
  const std::uint32_t k = order->PlaceOf(crossing);
  const SideOrder::Run& run = order->RunAt(k);
  const std::uint32_t last = Step(forward ? run.last : run.first);
  std::uint32_t w = FirstFrom(Step(k) + 1);
  if (w > last) w = FirstFrom(Step(forward ? run.first : run.last));  // wraps around the polygon
  return w > last ? kNone : order->At(Step(w));
}

void PathFinder::Walk::Remove(std::uint32_t crossing) {
  const std::uint32_t w = Step(order->PlaceOf(crossing));
  skip[w] = w + 1;
}

// zbrSetFollowingCrossDone on the compact form.
void PathFinder::MarkFollowing(const SideOrder& order, std::uint8_t goesLeft, bool forward) {
  for (const SideOrder::Run& run : order.runs) {
    std::uint8_t before = goesLeft_[order.At(forward ? run.last : run.first)];
    for (std::uint32_t step = 0; step <= run.last - run.first; ++step) {
      const std::uint32_t crossing = order.At(forward ? run.first + step : run.last - step);
      if (goesLeft_[crossing] == goesLeft && before == goesLeft) done_[crossing] = 1;
      before = goesLeft_[crossing];
    }
  }
}

bool PathFinder::Find(bool forwardA, bool forwardB) {
  bool allClosed = true;
  items_.clear();
  ends_.clear();
  const std::size_t n = goesLeft_.size();
  done_.assign(n, 0);
  MarkFollowing(order_[0], 0, forwardA);
  MarkFollowing(order_[1], 1, forwardB);

  taken_.resize(n);
  for (std::size_t i = 0; i < n; ++i) taken_[i] = done_[i] | goesLeft_[i];
  alongA_.Start(order_[0], forwardA, taken_);
  for (std::size_t i = 0; i < n; ++i) taken_[i] = done_[i] | (goesLeft_[i] ^ 1U);
  alongB_.Start(order_[1], forwardB, taken_);

  // Starts come in the order of the list along B. Done crossings stay done, so one pass sees every start; a start whose path did
  // not close is tried again until it is done, each try using up a crossing.
  for (const std::uint32_t start : order_[1].at) {
    while (goesLeft_[start] != 0 && done_[start] == 0) {
      const std::size_t begin = items_.size();
      if (Trace(start)) {
        ends_.push_back(items_.size());
        ZBR_CHECK(PathFault(path(ends_.size() - 1)));
      } else {
        items_.resize(begin);
        allClosed = false;
      }
    }
  }
  return allClosed;
}

// Follows one path and appends it to items_; whether it closes.
bool PathFinder::Trace(std::uint32_t start) {
  items_.push_back(start);
  std::uint32_t y = start;
  for (;;) {
    ZBR_COUNT(crossings, 1);
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
