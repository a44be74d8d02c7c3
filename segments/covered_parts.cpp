// Where lines are stacked, as the edges of a twisted surface seen along its axis are by the hundred, each lies beside all of the
// stack, and as a rule few of them cover it. So segments are taken in spatial order, and each is held against those first that
// covered the ones before. What is covered is a union of ranges: it makes no difference who is asked first.
#include "segments/covered_parts.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "core/planar_inline.h"
#include "core/radix_sort.h"
#include "core/tolerance_state.h"
#include "segments/beside.h"

namespace zbr {
namespace {

using Range = std::pair<double, double>;

// The range of g over which `other` runs within `width` of it; false when there is none longer than `least`.
bool RangeAlong(const ZBR_SEG& g, const ZBR_SEG& other, double least, double width, Range& range) {
  const ZBR_PT along = g.e() - g.s();
  const double length2 = along.Length2();
  double t0 = along.InnerProduct(other.s() - g.s());
  double t1 = along.InnerProduct(other.e() - g.s());
  if ((t0 <= 0.0 && t1 <= 0.0) || (t0 >= length2 && t1 >= length2)) return false;
  t0 /= length2;
  t1 /= length2;
  ZBR_PT p0 = other.s();
  ZBR_PT p1 = other.e();
  if (t0 > t1) {
    std::swap(t0, t1);
    std::swap(p0, p1);
  }
  range = {std::max(t0, 0.0), std::min(t1, 1.0)};
  if (!(range.second - range.first > least)) return false;
  // Distances at the ends of the common range: a long line may leave g's elsewhere.
  const auto isNear = [&](double t) {
    const ZBR_PT at = p0 + (p1 - p0) * ((t - t0) / (t1 - t0));
    const double c = Cross(along, at - g.s());
    return c * c <= width * width * length2;
  };
  return isNear(range.first) && isNear(range.second);
}

bool IsWhole(const Range& range, double least) {
  return !(range.first > least) && !(1.0 - range.second > least);
}

// Joins a range to others that are sorted and apart. Returns what it has become.
Range JoinTo(std::vector<Range>& ranges, Range range) {
  auto first = ranges.begin();
  while (first != ranges.end() && first->second < range.first) ++first;
  auto last = first;
  for (; last != ranges.end() && last->first <= range.second; ++last)
    range = {std::min(range.first, last->first), std::max(range.second, last->second)};
  if (first == last) {
    ranges.insert(first, range);
  } else {
    *first = range;
    ranges.erase(first + 1, last);
  }
  return range;
}

// Sorts the ranges and joins those that overlap.
void Join(std::vector<Range>& ranges) {
  std::sort(ranges.begin(), ranges.end());
  std::size_t kept = 0;
  for (const auto& range : ranges) {
    if (kept > 0 && range.first <= ranges[kept - 1].second) {
      ranges[kept - 1].second = std::max(ranges[kept - 1].second, range.second);
    } else {
      ranges[kept++] = range;
    }
  }
  ranges.resize(kept);
}

// Segments of two lists by their ends, in either direction. Equal ones have equal hashes: sorted by some bits of these, segments
// fall into groups that have nothing to do with each other, each with a table that the processor's cache holds.
class EqualSegments {
 public:
  EqualSegments(std::span<const ZBR_SEG> first, std::span<const ZBR_SEG> second, const Sharing& sharing)
      : first_(first),
        second_(second),
        count_(first.size() + second.size()),
        hashes_(new std::uint32_t[count_]),
        places_(new std::uint32_t[count_]) {
    Sort(sharing);
  }

  // Calls use(i, same) for each segment that equals one before it, of which `same` is the first; groups at once.
  template <class Use>
  void ForEachRepeat(const Sharing& sharing, const Use& use) const {
    sharing.Run(kGroups, [&](std::size_t group) {
      const std::size_t begin = begins_[group], end = begins_[group + 1];
      std::vector<std::uint32_t> slots(std::bit_ceil(2 * (end - begin) + 1), kNone);
      for (std::size_t k = begin; k < end; ++k) {
        const std::uint32_t i = places_[k];
        std::size_t slot = hashes_[i] / kGroups & (slots.size() - 1);
        while (slots[slot] != kNone && !AreEqual(At(slots[slot]), At(i))) slot = (slot + 1) & (slots.size() - 1);
        if (slots[slot] == kNone) {
          slots[slot] = i;
        } else {
          use(i, At(slots[slot]));
        }
      }
    });
  }

 private:
  static constexpr std::size_t kGroups = 64;
  static constexpr std::size_t kPiece = 16384;

  // Within a group segments stay in their order.
  void Sort(const Sharing& sharing) {
    std::vector<std::array<std::uint32_t, kGroups>> next(Sharing::PieceCount(count_, kPiece));
    sharing.InPieces(count_, kPiece, [&](std::size_t piece, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        hashes_[i] = Hash(At(i));
        ++next[piece][hashes_[i] % kGroups];
      }
    });
    std::uint32_t before = 0;
    for (std::size_t group = 0; group < kGroups; ++group) {
      begins_[group] = before;
      for (auto& own : next) before += std::exchange(own[group], before);
    }
    begins_[kGroups] = before;
    sharing.InPieces(count_, kPiece, [&](std::size_t piece, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) places_[next[piece][hashes_[i] % kGroups]++] = static_cast<std::uint32_t>(i);
    });
  }

  static std::uint64_t Mixed(double d) {
    std::uint64_t h = std::bit_cast<std::uint64_t>(d + 0.0) * 0x9e3779b97f4a7c15U;  // -0 is 0
    h ^= h >> 32U;
    return h * 0x9e3779b97f4a7c15U;
  }
  static std::uint64_t Hash(const ZBR_PT& p) { return Mixed(p.x()) + 3 * Mixed(p.y()); }
  static std::uint32_t Hash(const ZBR_SEG& g) {
    const std::uint64_t sum = Hash(g.s()) + Hash(g.e());
    return static_cast<std::uint32_t>(sum ^ sum >> 32U);
  }
  static bool AreEqual(const ZBR_SEG& g, const ZBR_SEG& h) {
    return (AreIdentical(g.s(), h.s()) && AreIdentical(g.e(), h.e())) || (AreIdentical(g.s(), h.e()) && AreIdentical(g.e(), h.s()));
  }

  static constexpr auto kNone = std::numeric_limits<std::uint32_t>::max();

  const ZBR_SEG& At(std::size_t i) const { return i < first_.size() ? first_[i] : second_[i - first_.size()]; }

  const std::span<const ZBR_SEG> first_, second_;
  const std::size_t count_;
  const std::unique_ptr<std::uint32_t[]> hashes_, places_;  // places by group
  std::array<std::uint32_t, kGroups + 1> begins_{};
};

// The segments that do not repeat one of the others or an earlier one: what those cover, repeats do not add to, and of a wall seen
// edge-on most lines are repeats.
std::vector<std::uint32_t> FindNew(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width,
                                   const Sharing& sharing) {
  std::vector<std::uint32_t> found;
  if (segments.empty()) return found;
  std::vector<char> isCovered(segments.size());
  EqualSegments(others, segments, sharing).ForEachRepeat(sharing, [&](std::size_t i, const ZBR_SEG& same) {
    if (i < others.size()) return;
    const ZBR_SEG& g = segments[i - others.size()];
    Range range;
    const double least = t_tolerance.eps / g.s().Distance(g.e());
    isCovered[i - others.size()] = RangeAlong(g, same, least, width, range) && IsWhole(range, least);
  });
  for (std::size_t i = 0; i < segments.size(); ++i) {
    if (!isCovered[i]) found.push_back(static_cast<std::uint32_t>(i));
  }
  return found;
}

std::vector<std::uint32_t> OrderOfCentres(std::span<const ZBR_SEG> segments) {
  std::vector<ZBR_PT> centres;
  centres.reserve(segments.size());
  for (const ZBR_SEG& g : segments) centres.push_back((g.s() + g.e()) / 2.0);
  return SpatialOrder(centres);
}

// Finds what covers one segment after another.
class Cover {
 public:
  Cover(std::span<const ZBR_SEG> segments, const Beside& beside, double width)
      : segments_(segments), beside_(beside), width_(width) {
    recent_.fill(kNone);
  }

  // The parts of segment i that are not covered.
  void AddGaps(std::uint32_t i, std::vector<Gap>& gaps) {
    Find(i);
    double from = 0.0;
    for (const auto& [t0, t1] : ranges_) {
      if (t0 - from > least_) gaps.push_back({i, from, t0});
      from = std::max(from, t1);
    }
    if (1.0 - from > least_) gaps.push_back({i, from, 1.0});
  }

 private:
  static constexpr std::size_t kRecent = 16;  // those asked first: more find more, and each costs
  static constexpr std::size_t kFew = 8;      // ranges apart, each joined as it comes; of more, as many again at once
  static constexpr auto kNone = std::numeric_limits<std::uint32_t>::max();

  // The covered ranges of segment i, sorted, and joined where they overlap; as many as are needed if they cover all of it.
  void Find(std::uint32_t i) {
    g_ = segments_[i];
    least_ = t_tolerance.eps / g_.s().Distance(g_.e());
    box_ = BoxOfSegment(g_.s(), g_.e()).Widened(width_);
    limit_ = 2 * kFew;
    ranges_.clear();
    const auto isOfUse = [&](std::uint32_t k) { return k != kNone && !(k >= i && IsOwn(k)); };
    const bool isFilled = std::any_of(recent_.begin(), recent_.end(), [&](std::uint32_t k) { return isOfUse(k) && Fills(k); });
    if (ranges_.size() > kFew) Join(ranges_);
    if (isFilled || std::any_of(ranges_.begin(), ranges_.end(), [&](const auto& range) { return IsWhole(range, least_); })) return;
    best_.fill(kNone);
    beside_.ForEach(i, [this](std::uint32_t k) { return !Fills(k); });
    if (ranges_.size() > kFew) Join(ranges_);
    for (const std::uint32_t k : best_) Remember(k);
  }

  // Adds what segment k covers. Whether nothing is left then.
  bool Fills(std::uint32_t k) {
    const ZBR_SEG& other = beside_.At(k);
    Range range;
    if (!Overlap(box_, BoxOfSegment(other.s(), other.e()))) return false;
    if (!RangeAlong(g_, other, least_, width_, range)) return false;
    const bool fromStart = !(range.first > least_), toEnd = !(1.0 - range.second > least_);
    std::uint32_t& best = best_[fromStart ? 0 : toEnd ? 1 : 2];
    if (best == kNone || IsBefore(k, best)) best = k;
    if (ranges_.size() < kFew) return IsWhole(JoinTo(ranges_, range), least_);
    ranges_.push_back(range);
    if (ranges_.size() >= limit_) {
      Join(ranges_);
      limit_ = std::max(2 * kFew, 2 * ranges_.size());
      range = ranges_.front();
    }
    return IsWhole(range, least_);
  }

  void Remember(std::uint32_t k) {
    if (k == kNone || std::find(recent_.begin(), recent_.end(), k) != recent_.end()) return;
    recent_[next_] = k;
    next_ = (next_ + 1) % kRecent;
  }

  bool IsOwn(std::uint32_t k) const { return k < segments_.size(); }
  // Others come before segments.
  bool IsBefore(std::uint32_t k, std::uint32_t l) const { return IsOwn(k) == IsOwn(l) ? k < l : !IsOwn(k); }

  std::span<const ZBR_SEG> segments_;
  const Beside& beside_;  // the segments first
  const double width_;
  // Of segment i:
  ZBR_SEG g_;
  double least_ = 0.0;  // parameter of the shortest part that counts
  Box box_;
  std::vector<Range> ranges_;            // sorted and apart, unless there are more than a few
  std::size_t limit_ = 2 * kFew;         // of ranges before they are joined again
  std::array<std::uint32_t, 3> best_{};  // the first that covers its start, its end, a part between
  // Of those before:
  std::array<std::uint32_t, kRecent> recent_{};
  std::size_t next_ = 0;
};

}  // namespace

std::vector<Gap> UncoveredParts(std::span<const ZBR_SEG> others, std::span<const ZBR_SEG> segments, double width,
                                const Sharing& sharing) {
  const std::vector<std::uint32_t> numbers = FindNew(others, segments, width, sharing);
  if (numbers.empty()) return {};
  std::vector<ZBR_SEG> news;
  news.reserve(numbers.size());
  for (const std::uint32_t i : numbers) news.push_back(segments[i]);
  const Beside beside(news, others, width, sharing);
  const std::vector<std::uint32_t> order = OrderOfCentres(news);
  constexpr std::size_t kPiece = 4096;
  std::vector<std::vector<Gap>> parts(Sharing::PieceCount(order.size(), kPiece));
  sharing.InPieces(order.size(), kPiece, [&](std::size_t piece, std::size_t begin, std::size_t end) {
    Cover cover(news, beside, width);
    for (std::size_t k = begin; k < end; ++k) cover.AddGaps(order[k], parts[piece]);
  });
  std::vector<Gap> gaps;
  for (const std::vector<Gap>& part : parts) gaps.insert(gaps.end(), part.begin(), part.end());
  for (Gap& gap : gaps) gap.segment = numbers[gap.segment];
  std::vector<Gap> scratch;
  RadixSort(gaps, scratch, [](const Gap& gap) { return gap.segment; });
  return gaps;
}

}  // namespace zbr
