// Walks from crossing to crossing around the result of one operation.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/cross_clean.h"

namespace zbr {

// One side's sorted crossings in the compact form that the walks use. A crossing is named by its place along A, so that walks along
// A, whose neighbours are records that lie together, need no table.
struct SideOrder {
  struct Run {
    std::uint32_t first;
    std::uint32_t last;  // inclusive
  };
  std::vector<std::uint32_t> at;     // crossing at each place; empty along A, where it is the place
  std::vector<std::uint32_t> place;  // place of each crossing; empty along A
  std::vector<Run> runs;             // places on one polygon
  std::vector<std::uint32_t> run;    // run of each place; empty when there is only one

  std::uint32_t At(std::uint32_t k) const { return at.empty() ? k : at[k]; }
  std::uint32_t PlaceOf(std::uint32_t crossing) const { return place.empty() ? crossing : place[crossing]; }
  const Run& RunAt(std::uint32_t k) const { return runs[run.empty() ? 0 : run[k]]; }
  void FindRuns(const std::vector<PlacedCrossing>& sorted);
};

// Chains crossings into closed paths. A path alternates a stretch along A (from a crossing that goes to the left) and one along B.
class PathFinder {
 public:
  // Takes `placesOnB` over.
  void Prepare(SortedCrossings& sorted);

  // Finds the closed paths that walk A forward or backward and B forward or backward. Starts from scratch. Returns whether all
  // paths that were begun closed.
  bool Find(bool forwardA, bool forwardB);

  std::size_t count() const { return ends_.size(); }
  // The crossings of path k, by their places along A; the first is repeated at its end.
  std::span<const std::uint32_t> path(std::size_t k) const {
    const std::size_t begin = k == 0 ? 0 : ends_[k - 1];
    return std::span(items_).subspan(begin, ends_[k] - begin);
  }
  const SideOrder& order(int side) const { return order_[side]; }
  // Whether the last Find used up, or passed over, the crossing at a place along A.
  bool done(std::size_t placeOnA) const { return done_[placeOnA] != 0; }

 private:
  static constexpr std::uint32_t kNone = 0xffffffff;

  // Answers "the next crossing along one side that is not done and has the wanted direction". Places are counted in walking order;
  // skip[w] leads to the next place that may still answer, and is shortened on the way (union-find with path halving).
  struct Walk {
    const SideOrder* order = nullptr;
    std::uint32_t count = 0;
    bool forward = true;
    std::vector<std::uint32_t> skip;  // w itself while the crossing there can be taken; one more entry than places

    std::uint32_t Step(std::uint32_t k) const { return forward ? k : count - 1 - k; }
    void Start(const SideOrder& side, bool walksForward, const std::vector<std::uint8_t>& taken);
    std::uint32_t FirstFrom(std::uint32_t w);
    std::uint32_t Next(std::uint32_t crossing);
    void Remove(std::uint32_t crossing);
  };

  void MarkFollowing(const SideOrder& order, std::uint8_t goesLeft, bool forward);
  bool Trace(std::uint32_t start);
  void Finish(std::uint32_t crossing);

  SideOrder order_[2];
  std::vector<std::uint8_t> goesLeft_;
  std::vector<std::uint8_t> done_;
  std::vector<std::uint8_t> taken_;
  Walk alongA_;  // to crossings that go to the right
  Walk alongB_;  // to crossings that go to the left
  std::vector<std::uint32_t> items_;
  std::vector<std::size_t> ends_;
};

}  // namespace zbr
