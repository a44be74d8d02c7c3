// Lines that lie on each other, made strands.
//
// Idea: n lines along one line pass each other's ends, n * n of them, and all are to be led through these. But what they become is
// one row of n parts. So where vertices are on many lines at once, lines of almost one direction and place are put into strips
// narrower than the reach; the ends of the lines in a strip cut it into strands, and every line is a row of these. Then there are
// no more strands than ends.
//
// A strip is so narrow that each of its lines comes within reach of all vertices between its ends: it would have been led through
// them, in this order. Strips need not hold all that lies together: what lies in two of them is cut by the ends of both.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

#include "arrangement/edge_cutter.h"

namespace zbr {

// Different lines and vertices by the thousand have fewer hits for each line, wherever they lie (Szemeredi and Trotter 1983).
bool EdgeCutter::AreTooMany(std::size_t hits) const {
  constexpr std::size_t kMostPerLine = 8;
  constexpr std::size_t kFew = 4096;  // that cost nothing
  return hits > kMostPerLine * lines_.size() + kFew;
}

class EdgeCutter::StrandMaker {
 public:
  explicit StrandMaker(EdgeCutter& cutter)
      : cutter_(cutter), lines_(cutter.lines_), rank_(cutter.vertices_.size()), bundleOf_(lines_.size(), kNone) {
    for (std::uint32_t v = 0; v < cutter.vertices_.size(); ++v)
      extent_ = std::max({extent_, std::fabs(cutter.Node(v).x), std::fabs(cutter.Node(v).y)});
  }

  void Run() {
    FindBundles();
    strandsOfLine_.resize(lines_.size());
    for (const std::uint32_t i : FirstsInOrder()) {
      if (bundleOf_[i] != kNone) {
        Split(bundles_[bundleOf_[i]]);
        continue;
      }
      const auto strand = static_cast<std::uint32_t>(strands_.size());
      strandsOfLine_[i] = {strand, strand + 1};
      AddStrand(lines_[i].from, lines_[i].to, lines_[i].net);
    }
    lines_.swap(strands_);
    cutter_.out_.lineBegin_.resize(lines_.size() + 1);
    std::iota(cutter_.out_.lineBegin_.begin(), cutter_.out_.lineBegin_.end(), 0U);
    cutter_.out_.strandsOfLine_ = std::move(strandsOfLine_);
  }

 private:
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};

  // Lines of about one direction and place.
  struct Keyed {
    enum Kind : std::uint8_t { kVertical, kHorizontal, kFlat, kSteep } kind;
    std::uint64_t direction;
    std::uint64_t place;
    std::uint32_t line;

    auto Key() const { return std::tuple(kind, direction, place); }
  };
  // How far the ends of a line lie beside another one, in steps.
  struct Beside {
    double least;
    double most;
    std::uint32_t line;
  };

  GridPoint From(std::uint32_t line) const { return cutter_.Node(lines_[line].from); }
  GridPoint To(std::uint32_t line) const { return cutter_.Node(lines_[line].to); }
  double Length2(std::uint32_t line) const { return Along(From(line), To(line), To(line)); }

  void AddStrand(std::uint32_t from, std::uint32_t to, const Winding& net) {
    strands_.push_back(cutter_.LineBetween(from, to, net, static_cast<std::uint32_t>(strands_.size())));
  }

  // The first lines of bundles, and lines in none, neighbours in the plane next to each other.
  std::vector<std::uint32_t> FirstsInOrder() const {
    std::vector<std::uint32_t> firsts;
    std::vector<ZBR_PT> centres;
    for (std::uint32_t i = 0; i < lines_.size(); ++i) {
      if (bundleOf_[i] != kNone && bundles_[bundleOf_[i]][0] != i) continue;
      firsts.push_back(i);
      centres.push_back((From(i).Point() + To(i).Point()) * 0.5);
    }
    std::vector<std::uint32_t> order = SpatialOrder(centres);
    for (std::uint32_t& place : order) place = firsts[place];
    return order;
  }

  void FindBundles() {
    std::vector<Keyed> keyed;
    keyed.reserve(lines_.size());
    for (std::uint32_t i = 0; i < lines_.size(); ++i) keyed.push_back(KeyOf(i));
    std::sort(keyed.begin(), keyed.end(),
              [](const Keyed& a, const Keyed& b) { return std::tuple(a.Key(), a.line) < std::tuple(b.Key(), b.line); });
    std::vector<std::uint32_t> together;
    for (std::size_t begin = 0, end = 0; begin < keyed.size(); begin = end) {
      together.clear();
      for (end = begin; end < keyed.size() && keyed[end].Key() == keyed[begin].Key(); ++end) together.push_back(keyed[end].line);
      if (keyed[begin].kind == Keyed::kVertical || keyed[begin].kind == Keyed::kHorizontal) {
        AddBundle(together);
      } else {
        FindStrips(together);
      }
    }
  }

  // Lines parallel to an axis go together by their coordinate, so that crossings on strands have it, too. Others are put into a
  // million bins each way: it does not matter much when the border between two of them runs through what lies together.
  Keyed KeyOf(std::uint32_t line) const {
    constexpr double kBins = 0x1p20;
    const ZBR_PT& p = cutter_.vertices_.point(lines_[line].from);
    const ZBR_PT& q = cutter_.vertices_.point(lines_[line].to);
    if (p.x() == q.x()) return {Keyed::kVertical, 0, std::bit_cast<std::uint64_t>(p.x() + 0.0), line};
    if (p.y() == q.y()) return {Keyed::kHorizontal, 0, std::bit_cast<std::uint64_t>(p.y() + 0.0), line};
    const GridPoint from = From(line);
    const ZBR_PT d = To(line).Point() - from.Point();
    const bool isFlat = std::fabs(d.y()) <= std::fabs(d.x());
    const double slope = isFlat ? d.y() / d.x() : d.x() / d.y();
    const double place = isFlat ? from.y - slope * from.x : from.x - slope * from.y;
    const auto bin = [](double c) { return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(c * kBins + 0.5))); };
    return {isFlat ? Keyed::kFlat : Keyed::kSteep, bin(slope), bin(place / extent_), line};
  }

  // Strips along the longest of the lines, as wide as they may be. Lines that fit into none are tried along the longest of these.
  void FindStrips(std::vector<std::uint32_t>& lines) {
    constexpr int kMostTimes = 8;
    constexpr double kWidth = 0.75;  // of the reach: vertices in a strip are farther apart, so their order along it is clear
    for (int times = 0; times < kMostTimes && lines.size() > 1; ++times) {
      const std::vector<Beside> places = PlacesBeside(
          *std::max_element(lines.begin(), lines.end(), [&](auto i, auto j) { return Length2(i) < Length2(j); }), lines);
      lines.clear();
      std::vector<std::uint32_t> strip;
      double end = -std::numeric_limits<double>::infinity();
      for (const Beside& at : places) {
        if (at.least > end) {
          AddBundle(strip);
          strip.clear();
          end = at.least + kWidth * cutter_.reach_;
        }
        (at.most <= end ? strip : lines).push_back(at.line);
      }
      AddBundle(strip);
    }
  }

  std::vector<Beside> PlacesBeside(std::uint32_t base, const std::vector<std::uint32_t>& lines) const {
    const double length = std::sqrt(Length2(base));
    const auto beside = [&](GridPoint p) { return ExactSide(From(base), To(base), p).ToDouble() / length; };
    std::vector<Beside> places;
    places.reserve(lines.size());
    for (const std::uint32_t line : lines) {
      const auto [least, most] = std::minmax({beside(From(line)), beside(To(line))});
      places.push_back({least, most, line});
    }
    std::sort(places.begin(), places.end(),
              [](const Beside& a, const Beside& b) { return a.least != b.least ? a.least < b.least : a.line < b.line; });
    return places;
  }

  void AddBundle(std::vector<std::uint32_t> lines) {
    if (lines.size() < 2) return;
    std::sort(lines.begin(), lines.end());
    for (const std::uint32_t line : lines) bundleOf_[line] = static_cast<std::uint32_t>(bundles_.size());
    bundles_.push_back(std::move(lines));
  }

  // Makes strands of the lines of a bundle, from each vertex to the next.
  void Split(const std::vector<std::uint32_t>& bundle) {
    struct Step {
      std::int64_t lines = 0;  // more than at the strand before
      Winding net;
    };
    const std::vector<std::uint32_t> order = VerticesOf(bundle);
    std::vector<Step> steps(order.size());
    for (const std::uint32_t line : bundle) {
      const auto [first, last, net] = Turned(line);
      ++steps[first].lines;
      steps[first].net += net;
      --steps[last].lines;
      steps[last].net += -net;
    }
    std::vector<std::uint32_t> strandAt(order.size());
    Step sum;
    for (std::size_t k = 0; k < order.size(); ++k) {
      strandAt[k] = static_cast<std::uint32_t>(strands_.size());
      sum.lines += steps[k].lines;
      sum.net += steps[k].net;
      if (sum.lines > 0) AddStrand(order[k], order[k + 1], sum.net);
    }
    for (const std::uint32_t line : bundle) {
      const auto [first, last, net] = Turned(line);
      strandsOfLine_[line] = {strandAt[first], strandAt[last]};
    }
  }

  // In the order along the longest line. Sets their ranks.
  std::vector<std::uint32_t> VerticesOf(const std::vector<std::uint32_t>& bundle) {
    std::vector<std::uint32_t> order;
    order.reserve(2 * bundle.size());
    std::uint32_t base = bundle[0];
    for (const std::uint32_t line : bundle) {
      order.insert(order.end(), {lines_[line].from, lines_[line].to});
      if (Length2(line) > Length2(base)) base = line;
    }
    std::sort(order.begin(), order.end(), [&](std::uint32_t u, std::uint32_t v) {
      const int ahead = AheadSign(From(base), To(base), cutter_.Node(u), cutter_.Node(v));
      return ahead != 0 ? ahead > 0 : u < v;
    });
    order.erase(std::unique(order.begin(), order.end()), order.end());
    for (std::uint32_t k = 0; k < order.size(); ++k) rank_[order[k]] = k;
    return order;
  }

  // A line in the direction of its bundle: the ranks of its ends, and what it counts.
  std::tuple<std::uint32_t, std::uint32_t, Winding> Turned(std::uint32_t line) const {
    const std::uint32_t from = rank_[lines_[line].from];
    const std::uint32_t to = rank_[lines_[line].to];
    return from < to ? std::tuple(from, to, lines_[line].net) : std::tuple(to, from, cutter_.Backward(lines_[line].net));
  }

  EdgeCutter& cutter_;
  std::vector<CutLine>& lines_;
  double extent_ = 1.0;                  // of the nodes around the middle of the grid
  std::vector<std::uint32_t> rank_;      // by vertex: its place along the bundle in work
  std::vector<std::uint32_t> bundleOf_;  // by line
  std::vector<std::vector<std::uint32_t>> bundles_;
  std::vector<CutLine> strands_;
  std::vector<Arrangement::Strands> strandsOfLine_;
};

void EdgeCutter::SplitIntoStrands() {
  StrandMaker(*this).Run();
}

}  // namespace zbr
