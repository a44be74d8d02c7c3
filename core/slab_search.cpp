// Idea: a segment tree over x whose nodes also know the segments that end in their slab (Chazelle, Edelsbrunner, Guibas and Sharir,
// "Algorithms for bichromatic line-segment problems and polyhedral terrains", 1994, call it hereditary). Every pair that meets does
// so in a slab that one of them crosses from side to side, and that the other one crosses as well or ends in; or in a slab with few
// ends. Of those that cross a slab, pairs are in doubt where their order on the left and on the right is not the same. Parted into
// layers, in each of which all lie clearly above each other, they are few for one that ends there: those between two places in the
// order of each layer.
//
// A segment is a band here: what lies within a distance of its line. Bands are wide enough for two that come within the distance to
// overlap whatever the rounding, so nothing is decided that would have to be exact.
#include "core/slab_search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "core/cost.h"

namespace zbr {
namespace {

class SlabSearch {
 public:
  using Visit = std::function<bool(std::uint32_t, std::uint32_t)>;

  SlabSearch(std::span<const SlabSegment> segments, double distance, const Visit& visit) : visit_(visit) {
    constexpr double kRounding = 64.0 * std::numeric_limits<double>::epsilon();  // places are computed again in every slab
    double largest = 0.0;
    for (const SlabSegment& s : segments) {
      for (const ZBR_PT& p : {s.p, s.q}) largest = std::max({largest, std::fabs(p.x()), std::fabs(p.y())});
    }
    room_ = distance + kRounding * largest;
    all_.reserve(segments.size());
    halfWidths_.reserve(segments.size());
    for (std::uint32_t i = 0; i < segments.size(); ++i) AddBand(segments[i], i);
  }

  bool Run() {
    if (all_.empty()) return true;
    Slab slab{all_.front().left.x, all_.front().right.x};
    for (const Band& band : all_) slab = {std::min(slab.left, band.left.x), std::max(slab.right, band.right.x)};
    return Divide(slab, std::move(all_), 0);
  }

 private:
  struct Place {
    double x;
    double y;
  };
  // What of a segment lies in a slab: the line in its middle.
  struct Band {
    Place left;
    Place right;
    std::uint32_t number;

    double At(double x) const {
      if (!(right.x > left.x)) return left.y;
      const double t = (x - left.x) / (right.x - left.x);
      return left.y + (right.y - left.y) * std::clamp(t, 0.0, 1.0);
    }
  };
  struct Slab {
    double left;
    double right;
  };
  using Bands = std::vector<Band>;
  // The middle of a band and half its width, at two places.
  struct Span {
    double y[2];
    double halfWidth;

    bool IsBelow(const Span& o) const {
      const double width = halfWidth + o.halfWidth;
      return y[0] + width < o.y[0] && y[1] + width < o.y[1];
    }
  };

  // Steep segments hardly any longer than wide are their boxes.
  void AddBand(const SlabSegment& segment, std::uint32_t number) {
    constexpr double kNarrow = 8.0;
    const bool isForward = segment.p.x() <= segment.q.x();
    const ZBR_PT& p = isForward ? segment.p : segment.q;
    const ZBR_PT& q = isForward ? segment.q : segment.p;
    const double dx = q.x() - p.x();
    const double dy = q.y() - p.y();
    const double more = 2.0 * room_;
    if (dx <= kNarrow * room_) {
      const double y = p.y() + dy / 2.0;
      all_.push_back({{p.x() - more, y}, {q.x() + more, y}, number});
      halfWidths_.push_back(std::fabs(dy) / 2.0 + more);
    } else {
      const double slope = dy / dx;
      all_.push_back({{p.x() - more, p.y() - slope * more}, {q.x() + more, q.y() + slope * more}, number});
      halfWidths_.push_back(more * std::sqrt(1.0 + slope * slope));
    }
  }

  Span SpanOf(const Band& band, double left, double right) const {
    return {{band.At(left), band.At(right)}, halfWidths_[band.number]};
  }
  Span SpanOf(const Band& band) const { return {{band.left.y, band.right.y}, halfWidths_[band.number]}; }

  bool Report(std::uint32_t i, std::uint32_t j) const { return i == j || visit_(std::min(i, j), std::max(i, j)); }

  bool Divide(const Slab& slab, Bands bands, int depth);
  bool SearchFew(Bands& bands) const;
  bool Enter(const Slab& slab, const Bands& bands, int depth);
  bool AreAcross(Bands& across);
  bool AreWithin(const Slab& slab, const Bands& across, const Bands& within);
  void MakeLayers(const Bands& across);
  bool InLayer(const Slab& slab, const std::vector<Band>& layer, const Band& band) const;

  const Visit& visit_;
  double room_ = 0.0;
  Bands all_;
  std::vector<double> halfWidths_;  // of bands, along y
  std::vector<Bands> layers_;
  std::vector<std::pair<double, std::uint32_t>> ends_[2];  // upper borders on the left and right, ascending
};

// Of bands that all end in the slab, each with what of it lies there.
bool SlabSearch::Divide(const Slab& slab, Bands bands, int depth) {
  constexpr std::size_t kFew = 12;
  constexpr int kDeepest = 48;
  if (bands.size() <= kFew || depth == kDeepest) return SearchFew(bands);
  std::vector<double> ends;
  for (const Band& band : bands) {
    for (const double x : {band.left.x, band.right.x}) {
      if (x > slab.left && x < slab.right) ends.push_back(x);
    }
  }
  if (ends.size() <= kFew) return SearchFew(bands);
  const auto middle = ends.begin() + static_cast<std::ptrdiff_t>(ends.size() / 2);
  std::nth_element(ends.begin(), middle, ends.end());
  const double x = *middle;
  std::vector<double>().swap(ends);
  return Enter({slab.left, x}, bands, depth + 1) && Enter({x, slab.right}, bands, depth + 1);
}

// By lower borders, a sweep upwards.
bool SlabSearch::SearchFew(Bands& bands) const {
  const auto lowest = [this](const Band& b) { return std::min(b.left.y, b.right.y) - halfWidths_[b.number]; };
  const auto highest = [this](const Band& b) { return std::max(b.left.y, b.right.y) + halfWidths_[b.number]; };
  std::sort(bands.begin(), bands.end(), [&](const Band& a, const Band& b) { return lowest(a) < lowest(b); });
  for (std::size_t i = 0; i < bands.size(); ++i) {
    const Band& a = bands[i];
    for (std::size_t j = i + 1; j < bands.size() && lowest(bands[j]) <= highest(a); ++j) {
      const Band& b = bands[j];
      const double left = std::max(a.left.x, b.left.x);
      const double right = std::min(a.right.x, b.right.x);
      if (left > right) continue;
      const Span ofA = SpanOf(a, left, right);
      const Span ofB = SpanOf(b, left, right);
      if (!ofA.IsBelow(ofB) && !ofB.IsBelow(ofA) && !Report(a.number, b.number)) return false;
    }
  }
  return true;
}

// What of the bands lies in a part of their slab.
bool SlabSearch::Enter(const Slab& slab, const Bands& bands, int depth) {
  Bands across;
  Bands within;
  for (const Band& band : bands) {
    const Slab both{std::max(slab.left, band.left.x), std::min(slab.right, band.right.x)};
    if (both.left >= both.right) continue;
    const Band part{{both.left, band.At(both.left)}, {both.right, band.At(both.right)}, band.number};
    (both.left == slab.left && both.right == slab.right ? across : within).push_back(part);
  }
  return AreAcross(across) && (within.empty() || (AreWithin(slab, across, within) && Divide(slab, std::move(within), depth)));
}

// Pairs of bands that go all across: from below, each with those before it that reach up to it on the left or on the right.
bool SlabSearch::AreAcross(Bands& across) {
  if (across.size() < 2) return true;
  const auto lower = [this](const Band& b) { return b.left.y - halfWidths_[b.number]; };
  std::sort(across.begin(), across.end(), [&](const Band& a, const Band& b) { return lower(a) < lower(b); });
  ends_[0].clear();
  ends_[1].clear();
  for (std::uint32_t k = 0; k < across.size(); ++k) {
    const Span span = SpanOf(across[k]);
    for (const int side : {0, 1}) {
      auto at = ends_[side].end();
      const double top = span.y[side] + span.halfWidth;
      std::ptrdiff_t above = 0;  // those whose upper border is higher
      for (; at != ends_[side].begin() && (at - 1)->first >= span.y[side] - span.halfWidth; --at) {
        above += (at - 1)->first > top ? 1 : 0;
        if (!Report(across[(at - 1)->second].number, across[k].number)) return false;
      }
      ends_[side].insert(ends_[side].end() - above, {top, k});
    }
  }
  return true;
}

bool SlabSearch::AreWithin(const Slab& slab, const Bands& across, const Bands& within) {
  MakeLayers(across);
  for (const Bands& layer : layers_) {
    if (layer.empty()) break;
    for (const Band& band : within) {
      if (!InLayer(slab, layer, band)) return false;
    }
  }
  return true;
}

// Each band goes to the first layer whose last one is clearly below it.
void SlabSearch::MakeLayers(const Bands& across) {
  for (Bands& layer : layers_) layer.clear();
  for (const Band& band : across) {
    const Span span = SpanOf(band);
    const auto layer =
        std::find_if(layers_.begin(), layers_.end(), [&](const Bands& l) { return l.empty() || SpanOf(l.back()).IsBelow(span); });
    (layer == layers_.end() ? layers_.emplace_back() : *layer).push_back(band);
  }
}

// Pairs of a band that ends in the slab with those of a layer.
bool SlabSearch::InLayer(const Slab& slab, const std::vector<Band>& layer, const Band& band) const {
  ZBR_COUNT(nodes, 1);
  const double left = std::clamp(band.left.x, slab.left, slab.right);
  const double right = std::clamp(band.right.x, slab.left, slab.right);
  const Span span = SpanOf(band);
  auto at = std::partition_point(layer.begin(), layer.end(), [&](const Band& b) { return SpanOf(b, left, right).IsBelow(span); });
  for (; at != layer.end() && !span.IsBelow(SpanOf(*at, left, right)); ++at) {
    if (!Report(at->number, band.number)) return false;
  }
  return true;
}

}  // namespace

bool SearchSlabs(std::span<const SlabSegment> segments, double distance,
                 const std::function<bool(std::uint32_t, std::uint32_t)>& visit) {
  return SlabSearch(segments, distance, visit).Run();
}

}  // namespace zbr
