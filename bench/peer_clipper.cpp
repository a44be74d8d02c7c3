// Clipper 6.4, which works on integer coordinates.

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

#include "clipper_paths.h"
#include "peers.h"

namespace bench {
namespace {

using ClipperLib::Paths;
using ClipperLib::PolyTree;

ClipperLib::ClipType ClipType(Op op) {
  switch (op) {
    case Op::kUnion:
      return ClipperLib::ctUnion;
    case Op::kIntersection:
      return ClipperLib::ctIntersection;
    case Op::kAMinusB:
    case Op::kBMinusA:
      return ClipperLib::ctDifference;
    case Op::kXor:
      return ClipperLib::ctXor;
  }
  return ClipperLib::ctUnion;
}

// Solution is Paths, a flat list, or PolyTree, which tells what lies in what.
template <class Solution>
class ClipperBoolean : public BooleanPeer {
 public:
  void Load(const RegionPair& pair) override {
    const std::vector<Ring> a = RingsOf(pair.a);
    const std::vector<Ring> b = RingsOf(pair.b);
    scale_ = ScaleFor(std::max(LargestCoordinate(a), LargestCoordinate(b)));
    const Paths pathsA = Scaled(a, scale_);
    const Paths pathsB = Scaled(b, scale_);
    forward_.AddPaths(pathsA, ClipperLib::ptSubject, true);
    forward_.AddPaths(pathsB, ClipperLib::ptClip, true);
    backward_.AddPaths(pathsB, ClipperLib::ptSubject, true);
    backward_.AddPaths(pathsA, ClipperLib::ptClip, true);
  }
  void Run(const std::vector<Op>& ops) override {
    for (const Op op : ops) {
      auto& clipper = op == Op::kBMinusA ? backward_ : forward_;
      solutions_.push_back(std::make_unique<Solution>());
      if (!clipper.Execute(ClipType(op), *solutions_.back(), ClipperLib::pftEvenOdd)) throw std::runtime_error("Execute failed");
    }
  }
  std::vector<Summary> Describe() const override {
    std::vector<Summary> summaries;
    for (const auto& solution : solutions_) summaries.push_back(Summarise(*solution, scale_));
    return summaries;
  }
  void Drop() override { solutions_.clear(); }

 private:
  double scale_ = 1.0;
  ClipperLib::Clipper forward_;   // A is the subject
  ClipperLib::Clipper backward_;  // B is, for B - A
  std::vector<std::unique_ptr<Solution>> solutions_;
};

// One object serves all pairs, as a program with many of them would have it; it takes the paths of a pair at its turn.
class ClipperPairs : public PairsPeer {
 public:
  void Load(const std::vector<RegionPair>& pairs) override {
    double largest = 0.0;
    for (const RegionPair& pair : pairs) {
      largest = std::max({largest, LargestCoordinate(RingsOf(pair.a)), LargestCoordinate(RingsOf(pair.b))});
    }
    scale_ = ScaleFor(largest);
    for (const RegionPair& pair : pairs) {
      paths_.push_back({Scaled(RingsOf(pair.a), scale_), Scaled(RingsOf(pair.b), scale_)});
    }
  }
  void Run(Op op) override {
    solutions_.resize(paths_.size());
    for (std::size_t i = 0; i < paths_.size(); ++i) {
      const bool isBackward = op == Op::kBMinusA;
      clipper_.Clear();
      clipper_.AddPaths(isBackward ? paths_[i].b : paths_[i].a, ClipperLib::ptSubject, true);
      clipper_.AddPaths(isBackward ? paths_[i].a : paths_[i].b, ClipperLib::ptClip, true);
      if (!clipper_.Execute(ClipType(op), solutions_[i], ClipperLib::pftEvenOdd)) throw std::runtime_error("Execute failed");
    }
  }
  Summary Describe() const override {
    Summary summary;
    for (const Paths& solution : solutions_) summary += Summarise(solution, scale_);
    return summary;
  }
  void Drop() override { solutions_.clear(); }

 private:
  struct PathsPair {
    Paths a;
    Paths b;
  };
  double scale_ = 1.0;
  std::vector<PathsPair> paths_;
  ClipperLib::Clipper clipper_;
  std::vector<Paths> solutions_;
};

// Rings of one orientation, united by the non-zero rule.
template <class Solution>
class ClipperUnion : public RingsPeer {
 public:
  void Load(const std::vector<Ring>& rings) override {
    scale_ = ScaleFor(LargestCoordinate(rings));
    clipper_.AddPaths(Scaled(rings, scale_), ClipperLib::ptSubject, true);
  }
  void Run() override {
    solution_ = std::make_unique<Solution>();
    if (!clipper_.Execute(ClipperLib::ctUnion, *solution_, ClipperLib::pftNonZero)) throw std::runtime_error("Execute failed");
  }
  Summary Describe() const override { return Summarise(*solution_, scale_); }
  void Drop() override { solution_.reset(); }

 private:
  double scale_ = 1.0;
  ClipperLib::Clipper clipper_;
  std::unique_ptr<Solution> solution_;
};

// Nesting of rings that do not cross: their even-odd union, as a tree.
class ClipperNest : public RingsPeer {
 public:
  void Load(const std::vector<Ring>& rings) override {
    scale_ = ScaleFor(LargestCoordinate(rings));
    clipper_.AddPaths(Scaled(rings, scale_), ClipperLib::ptSubject, true);
  }
  void Run() override {
    if (!clipper_.Execute(ClipperLib::ctUnion, tree_, ClipperLib::pftEvenOdd)) throw std::runtime_error("Execute failed");
  }
  Summary Describe() const override { return Summarise(tree_, scale_); }
  void Drop() override { tree_.Clear(); }

 private:
  double scale_ = 1.0;
  ClipperLib::Clipper clipper_;
  PolyTree tree_;
};

}  // namespace

std::unique_ptr<BooleanPeer> MakeClipperFlat() {
  return std::make_unique<ClipperBoolean<Paths>>();
}
std::unique_ptr<BooleanPeer> MakeClipperTree() {
  return std::make_unique<ClipperBoolean<PolyTree>>();
}
std::unique_ptr<PairsPeer> MakeClipperPairs() {
  return std::make_unique<ClipperPairs>();
}
std::unique_ptr<RingsPeer> MakeClipperUnionFlat() {
  return std::make_unique<ClipperUnion<Paths>>();
}
std::unique_ptr<RingsPeer> MakeClipperUnionTree() {
  return std::make_unique<ClipperUnion<PolyTree>>();
}
std::unique_ptr<RingsPeer> MakeClipperNest() {
  return std::make_unique<ClipperNest>();
}

}  // namespace bench
