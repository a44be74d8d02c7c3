// The pairs of lines that come near each other.
//
// Boxes are searched first. Where they overlap all the time and hardly any lines come near each other, as in nested curves and
// slanted hatches, slabs are searched instead; what is found is put in the order in which boxes give it. Lines that end in one
// vertex by the dozen all meet there, which is known; so slabs are given what is left when these are cut short of it, and what
// else comes near the vertex is looked for with boxes.
#include <algorithm>
#include <cmath>
#include <limits>

#include "arrangement/edge_cutter.h"
#include "core/slab_search.h"

namespace zbr {
namespace {

constexpr std::uint32_t kLeafLines = 8;

// Beyond this distance, in widths of what is clear, no two lines are looked at for what they do to each other.
constexpr double kFar = 4.0;

}  // namespace

// Visits the pairs of lines whose boxes meet, each once, and some that just don't. Consecutive lines share a leaf of the hierarchy.
class EdgeCutter::PairSearch {
  // Of half the size; rounded outwards.
  struct NarrowBox {
    float xmin, ymin, xmax, ymax;

    explicit NarrowBox(const Box& box)
        : xmin(Below(box.xmin)), ymin(Below(box.ymin)), xmax(-Below(-box.xmax)), ymax(-Below(-box.ymax)) {}
    bool Meets(const NarrowBox& o) const { return xmin <= o.xmax && o.xmin <= xmax && ymin <= o.ymax && o.ymin <= ymax; }

    // A float no larger than the number.
    static float Below(double c) { return static_cast<float>(c - std::fabs(c) * std::numeric_limits<float>::epsilon()); }
  };

 public:
  explicit PairSearch(EdgeCutter& cutter) : cutter_(cutter) {
    const auto lines = static_cast<std::uint32_t>(cutter.lines_.size());
    boxes_.reserve(lines);
    const std::span<Box> leaves = tree_.StartLeaves((lines + kLeafLines - 1) / kLeafLines);
    for (std::uint32_t i = 0; i < lines; ++i) {
      const CutLine& line = cutter.lines_[i];
      const Box box =
          cutter.frame_.Around(cutter.Node(line.from).Point(), cutter.Node(line.to).Point()).Widened(cutter.reach_ / 2.0);
      boxes_.emplace_back(box);
      leaves[i / kLeafLines].Add(box);
    }
    tree_.BuildInner();
  }

  // False, and nothing is found, when there are too many hits for lines that don't lie on each other.
  bool Run(bool isLimited) {
    isLimited_ = isLimited;
    if (RunBoxes(true)) return true;
    if (!AreTooMany() && (Forget(), RunSlabs())) return SortAsBoxesDo(), true;
    if (!AreTooMany() && (Forget(), RunBoxes(false))) return true;
    return Forget(), false;
  }

 private:
  bool AreTooMany() const { return isLimited_ && cutter_.AreTooMany(cutter_.hits_.size()); }

  // False when there is a limit to what is looked at in vain, and that is reached.
  bool RunBoxes(bool isLimited) {
    looks_ = 0;
    const auto goesOn = [&] {
      if (AreTooMany()) return false;
      return !isLimited || looks_ <= kLooksPerLine * boxes_.size() + kLooksPerPair * cutter_.pairs_.size();
    };
    const auto skipNone = [](std::uint32_t, std::uint32_t) { return false; };
    const auto within = [&](std::uint32_t leaf) { return Within(leaf), true; };
    const auto across = [&](std::uint32_t a, std::uint32_t b) { return Across(a, b), goesOn(); };
    return BoxSelfJoin(tree_, skipNone, within, across).Run();
  }

  // False when there are as many pairs to be looked at as boxes would give.
  bool RunSlabs() {
    FindHubs();
    std::vector<SlabSegment> segments;
    segments.reserve(boxes_.size());
    for (std::uint32_t i = 0; i < boxes_.size(); ++i) {
      const CutLine& line = cutter_.lines_[i];
      const ZBR_PT d = End(line.to) - End(line.from);
      const auto cut = [&](std::uint32_t v) { return IsCutAt(i, v) ? RoomAt(v) / cutter_.lengths_[i] : 0.0; };
      segments.push_back({End(line.from) + d * cut(line.from), End(line.to) - d * cut(line.to)});
    }
    looks_ = 0;
    return SearchSlabs(segments, kFar * cutter_.Clear(), [&](std::uint32_t i, std::uint32_t j) { return LookAtFound(i, j); }) &&
           std::all_of(hubs_.begin(), hubs_.end(), [&](const Hub& hub) { return LookAround(hub); });
  }

  bool LookAtFound(std::uint32_t i, std::uint32_t j) {
    constexpr std::size_t kMostPerLine = 512;
    if (boxes_[i].Meets(boxes_[j])) cutter_.LookAtPair(std::min(i, j), std::max(i, j));
    return !AreTooMany() && ++looks_ <= kMostPerLine * boxes_.size() + kLooksPerPair * cutter_.pairs_.size();
  }

  // A vertex in which many lines end.
  struct Hub {
    std::uint32_t vertex;
    std::vector<std::uint32_t> lines;
  };
  static constexpr std::uint32_t kManyLines = 32;

  void FindHubs() {
    degree_.assign(cutter_.vertices_.size(), 0);
    for (const CutLine& line : cutter_.lines_) {
      for (const std::uint32_t v : {line.from, line.to}) ++degree_[v];
    }
    std::vector<std::uint32_t> hubOf(degree_.size(), 0);
    for (std::uint32_t i = 0; i < boxes_.size(); ++i) {
      for (const std::uint32_t v : {cutter_.lines_[i].from, cutter_.lines_[i].to}) {
        if (degree_[v] < kManyLines) continue;
        if (hubOf[v] == 0) {
          hubs_.push_back({v, {}});
          hubOf[v] = static_cast<std::uint32_t>(hubs_.size());
        }
        hubs_[hubOf[v] - 1].lines.push_back(i);
      }
    }
  }

  ZBR_PT End(std::uint32_t vertex) const { return cutter_.frame_.Turned(cutter_.Node(vertex).Point()); }
  // How much lines are cut short of a hub: there they are apart if they are spread evenly.
  double RoomAt(std::uint32_t vertex) const { return 4.0 * kFar * cutter_.Clear() * degree_[vertex]; }
  bool IsCutAt(std::uint32_t line, std::uint32_t vertex) const {
    return degree_[vertex] >= kManyLines && cutter_.lengths_[line] > 4.0 * RoomAt(vertex);
  }

  // What comes near a hub, or ends in it without being cut short, is held against all lines that are.
  bool LookAround(const Hub& hub) {
    const double room = RoomAt(hub.vertex) + kFar * cutter_.Clear();
    const ZBR_PT centre = End(hub.vertex);
    const Box around = BoxOfSegment(centre, centre).Widened(room);
    bool goesOn = true;
    const auto enter = [&](const Box& box, int, std::uint32_t) { return Overlap(box, around); };
    tree_.Walk(enter, [&](std::uint32_t leaf) {
      for (std::uint32_t i = leaf * kLeafLines; goesOn && i < LastOf(leaf); ++i) {
        const CutLine& line = cutter_.lines_[i];
        const bool endsHere = line.from == hub.vertex || line.to == hub.vertex;
        if (endsHere ? IsCutAt(i, hub.vertex) : !ComesNear(i, hub.vertex, room)) continue;
        for (const std::uint32_t j : hub.lines) goesOn = goesOn && (i == j || LookAtFound(i, j));
      }
      return goesOn;
    });
    return goesOn;
  }

  bool ComesNear(std::uint32_t line, std::uint32_t vertex, double room) const {
    const GridPoint p = cutter_.Node(cutter_.lines_[line].from);
    const GridPoint q = cutter_.Node(cutter_.lines_[line].to);
    const double length = cutter_.lengths_[line];
    const double along = Along(p, q, cutter_.Node(vertex)) / length;
    return std::fabs(SideProducts(p, q, cutter_.Node(vertex)).Value()) <= room * length && along >= -room && along <= length + room;
  }

  void Forget() {
    cutter_.hits_.clear();
    cutter_.pairs_.clear();
  }

  // Crossings make vertices in the order of the pairs. Boxes give those of pairs of nodes from the top of the hierarchy on.
  void SortAsBoxesDo() {
    const auto key = [](const LinePair& pair) {
      std::uint64_t k = 0;
      for (int digit = 28; digit >= 0; digit -= 2) {
        k = k << 4U | (pair.a / kLeafLines >> static_cast<unsigned>(digit) & 3U) << 2U |
            (pair.b / kLeafLines >> static_cast<unsigned>(digit) & 3U);
      }
      return k;
    };
    std::vector<std::pair<std::uint64_t, LinePair>> keyed;
    keyed.reserve(cutter_.pairs_.size());
    for (const LinePair& pair : cutter_.pairs_) keyed.emplace_back(key(pair), pair);
    std::sort(keyed.begin(), keyed.end(), [](const auto& x, const auto& y) {
      return x.first != y.first ? x.first < y.first : x.second.a != y.second.a ? x.second.a < y.second.a : x.second.b < y.second.b;
    });
    cutter_.pairs_.clear();
    for (const auto& [k, pair] : keyed) {
      if (cutter_.pairs_.empty() || cutter_.pairs_.back().a != pair.a || cutter_.pairs_.back().b != pair.b)
        cutter_.pairs_.push_back(pair);
    }
  }

  std::uint32_t LastOf(std::uint32_t leaf) const {
    return std::min((leaf + 1) * kLeafLines, static_cast<std::uint32_t>(boxes_.size()));
  }

  void Within(std::uint32_t leaf) {
    for (std::uint32_t i = leaf * kLeafLines; i < LastOf(leaf); ++i) {
      for (std::uint32_t j = i + 1; j < LastOf(leaf); ++j) {
        if (boxes_[i].Meets(boxes_[j])) cutter_.LookAtPair(i, j);
      }
    }
  }

  void Across(std::uint32_t a, std::uint32_t b) {
    const NarrowBox other(tree_.Level(0)[b]);
    ++looks_;
    for (std::uint32_t i = a * kLeafLines; i < LastOf(a); ++i) {
      if (!boxes_[i].Meets(other)) continue;
      for (std::uint32_t j = b * kLeafLines; j < LastOf(b); ++j) {
        if (!boxes_[i].Meets(boxes_[j])) continue;
        ++looks_;
        cutter_.LookAtPair(i, j);
      }
    }
  }

  // With more of them than this, pairs of leaves and of lines, slabs are as quick.
  static constexpr std::size_t kLooksPerLine = 64;
  static constexpr std::size_t kLooksPerPair = 8;

  EdgeCutter& cutter_;
  std::vector<NarrowBox> boxes_;
  BoxTree tree_;
  std::size_t looks_ = 0;
  bool isLimited_ = false;
  std::vector<std::uint32_t> degree_;  // by vertex: the lines that end in it
  std::vector<Hub> hubs_;
};

bool EdgeCutter::SearchPairs(bool isLimited) {
  lengths_.clear();
  lengths_.reserve(lines_.size());
  for (const CutLine& line : lines_) lengths_.push_back(std::sqrt(Along(Node(line.from), Node(line.to), Node(line.to))));
  return lines_.empty() || PairSearch(*this).Run(isLimited);
}

}  // namespace zbr
