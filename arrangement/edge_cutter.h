// The work of building an arrangement: lines between vertices, and how they are cut.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "arrangement/arrangement.h"
#include "arrangement/leaning_frame.h"
#include "arrangement/vertex_set.h"
#include "core/box_tree.h"

namespace zbr {

inline constexpr std::uint32_t kNoVertex = ~std::uint32_t{0};

// Up to here the reach is that of a grid far coarser than doubles.
inline constexpr double kCoarseReach = 1.5;

// An edge while it is cut. Lines cut from the same edge stand together, in its order.
struct CutLine {
  std::uint32_t from;
  std::uint32_t to;
  Winding net;           // from `from` to `to`
  std::uint32_t origin;  // the strand that it was cut from in the first place
};

// A chain on the way to being a piece.
struct ChainLine {
  std::uint32_t chain;
  std::uint32_t from;  // as a place among points, then as a vertex
  std::uint32_t to;
  GridPoint after;  // the node next to that of `from`
  bool runsBack;
  Winding net;  // from `from` to `to`
};

class EdgeCutter {
 public:
  // Chains come with their ends among the points.
  EdgeCutter(Arrangement& out, const EdgePoints& edges, const Resolution& resolution, std::size_t secondOperand,
             std::vector<ChainLine> chains, Arrangement::Sense sense)
      : out_(out),
        edges_(edges),
        isDirected_(sense == Arrangement::Sense::kDirected),
        isFine_(resolution.reach > kCoarseReach * resolution.step),
        grid_(out.grid_),
        vertices_(grid_, resolution, edges.size() / (isFine_ ? kPointsPerCrowded : kEdgesPerVertex) + 16),
        reach_(resolution.reach / resolution.step),
        chains_(std::move(chains)) {
    MakeLines(secondOperand);
    SortLines();
    FreeLarge(edgeOfLine_);
    if (isFine_) FreeLarge(vertexOf_);
    out_.lineBegin_.resize(lines_.size() + 1);
    for (std::uint32_t i = 0; i <= lines_.size(); ++i) out_.lineBegin_[i] = i;
  }

  void Run(Arrangement::Care care);

 private:
  GridPoint Node(std::uint32_t vertex) const { return vertices_.node(vertex); }
  // The line before anything was cut.
  const CutLine& Origin(std::uint32_t origin) const { return origins_.empty() ? lines_[origin] : origins_[origin]; }
  std::size_t OriginCount() const { return out_.lineBegin_.size() - 1; }

  // What a line counts, seen the other way.
  Winding Backward(const Winding& net) const { return isDirected_ ? -net : net; }

  // A line between the two vertices, in the order of a sweep.
  CutLine LineBetween(std::uint32_t from, std::uint32_t to, const Winding& net, std::uint32_t origin) const {
    return IsBefore(Node(from), Node(to)) ? CutLine{from, to, net, origin} : CutLine{to, from, Backward(net), origin};
  }

  void NumberVertices();
  void MergeLines();
  void AddChain(const ChainLine& chain);

  // make_lines.cpp
  void MakeVertices();  // fills vertexOf_
  std::vector<bool> FindRepeated() const;
  void MakeLines(std::size_t secondOperand);
  void SortLines();

  // cross_lines.cpp
  void AppendParts(const CutLine& line, std::vector<std::uint32_t>& hits, std::vector<CutLine>& next) const;
  std::uint32_t Cross(const CutLine& a, const CutLine& b);
  ZBR_PT TrueCrossing(const CutLine& a, const CutLine& b, const ZBR_PT& place) const;
  void AlignCrossings(std::uint32_t firstCrossing);

  // thorough_cut.cpp
  struct PlaceGroups;
  class CutInOrder;
  void ThoroughCut();
  bool IsWithinReach(const CutLine& line, std::uint32_t v) const;
  bool PassesCell(const CutLine& line, std::uint32_t v) const;
  std::uint32_t SpansFor(std::size_t vertices) const;
  BoxTree TreeOverLines(double margin, std::uint32_t spans) const;
  enum class Cuts { kNone, kSome, kTooMany };
  template <class IsHit>
  Cuts CutLines(std::uint32_t firstVertex, double margin, bool isLimited, IsHit isHit);
  void AddCrossings();

  // quick_cut.cpp
  struct Hit {
    std::uint32_t line;
    std::uint32_t vertex;
  };
  struct LinePair {
    std::uint32_t a;
    std::uint32_t b;
  };
  class PartsOfLine;
  void QuickCut();
  // Lines farther apart than this, in steps, do nothing to each other.
  double Clear() const { return 2.0 * reach_ + 1.0; }
  void LookAtPair(std::uint32_t i, std::uint32_t j);
  void NoteReached(std::uint32_t line, std::uint32_t vertex, double side);
  void CrossParts(const LinePair& pair, const std::vector<std::uint32_t>& begin);
  void CrossPair(std::uint32_t i, std::uint32_t j);
  void CutAt(std::vector<Hit>& hits, std::vector<std::uint32_t>& begin);

  // pair_search.cpp
  class PairSearch;
  bool SearchPairs(bool isLimited);

  // strands.cpp
  class StrandMaker;
  bool AreTooMany(std::size_t hits) const;
  void SplitIntoStrands();

  // crowded_cut.cpp
  bool AreCrowded() const;
  std::vector<std::uint32_t> DropRepeatedParts();
  void CrossCrowdedParts();

  // What to make room for: on a fine grid most vertices lie apart from all others.
  static constexpr std::size_t kEdgesPerVertex = 2;
  static constexpr std::size_t kPointsPerCrowded = 16;

  Arrangement& out_;
  const EdgePoints& edges_;
  bool isDirected_;
  bool isFine_;  // so that every node is itself a point to stand for
  NodeGrid grid_;
  VertexSet vertices_;
  double reach_;  // in steps
  std::vector<ChainLine> chains_;
  LeaningFrame frame_;
  std::vector<std::uint32_t> vertexOf_;    // by point
  std::vector<std::uint32_t> edgeOfLine_;  // the first, before the lines are cut
  std::vector<CutLine> lines_;
  std::vector<CutLine> origins_;       // the lines before they were cut, once they are
  std::vector<std::uint32_t> number_;  // of a vertex in the order of a sweep
  std::vector<double> lengths_;        // of the lines, for LookAtPair
  std::vector<LinePair> pairs_;        // lines that are not clearly apart
  std::vector<Hit> hits_;              // vertices that lines are to be led through
};

}  // namespace zbr
