// Parts of a full turn.
#pragma once

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace zbr::drawing {

// What is added counts when it is joined.
class AngleRanges {
 public:
  using Range = std::pair<double, double>;  // radians, from the lower to the higher one

  // `low` from -pi to pi, `high` less than a turn above.
  void Add(double low, double high) {
    ranges_.emplace_back(low, std::min(high, kPi));
    if (high > kPi) ranges_.emplace_back(-kPi, high - kFullTurn);
  }

  // What is no farther apart than the gap is one.
  void Join(double gap) {
    std::sort(ranges_.begin(), ranges_.end());
    std::vector<Range> joined;
    for (const Range& range : ranges_) {
      if (!joined.empty() && range.first <= joined.back().second + gap) {
        joined.back().second = std::max(joined.back().second, range.second);
      } else {
        joined.push_back(range);
      }
    }
    ranges_ = std::move(joined);
  }

  bool Has(double angle) const {
    const auto behind = std::partition_point(ranges_.begin(), ranges_.end(), [&](const Range& r) { return r.first <= angle; });
    return behind != ranges_.begin() && angle <= std::prev(behind)->second;
  }

  // What of a range, as it may be added, is in none of these and longer than the slack.
  std::vector<Range> Rest(double low, double high, double slack) const {
    std::vector<Range> rest;
    double from = low;
    for (const double turn : {0.0, kFullTurn}) {
      const auto first =
          std::partition_point(ranges_.begin(), ranges_.end(), [&](const Range& r) { return r.second + turn < low; });
      for (auto range = first; range != ranges_.end() && range->first + turn <= high; ++range) {
        if (range->first + turn - from > slack) rest.emplace_back(from, range->first + turn);
        from = std::max(from, range->second + turn);
      }
    }
    if (high - from > slack) rest.emplace_back(from, high);
    return rest;
  }

 private:
  std::vector<Range> ranges_;
};

}  // namespace zbr::drawing
