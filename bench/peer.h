// What the benchmarks need of a library: the same small interface for ours and for its peers.
//
// Each object goes through Load (outside the clock: builds the library's own form of the input), then any number of Run (timed) and
// Drop (outside the clock: frees the result). Describe tells of the last result what can be compared. A library's failure is
// thrown as std::runtime_error.
#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "workloads.h"

namespace bench {

enum class Op { kUnion, kIntersection, kAMinusB, kBMinusA, kXor };

inline constexpr Op kAllOps[] = {Op::kUnion, Op::kIntersection, Op::kAMinusB, Op::kBMinusA, Op::kXor};

const char* OpName(Op op);

// Loops up to this area are not counted: ours drops results of up to 1e-9, as its header says.
inline constexpr double kLeastLoopArea = 2e-9;

struct Summary {
  double area = 0.0;
  std::size_t loops = 0;  // outer rings and holes

  // Adds a ring by its area: positive for an outer ring, negative for a hole.
  void Add(double ringArea) {
    area += ringArea;
    if (std::abs(ringArea) > kLeastLoopArea) ++loops;
  }
  Summary& operator+=(const Summary& o) {
    area += o.area;
    loops += o.loops;
    return *this;
  }
};

class BooleanPeer {
 public:
  virtual ~BooleanPeer() = default;
  virtual void Load(const RegionPair& pair) = 0;
  // Forms all the given combinations; a library that can share work between them does.
  virtual void Run(const std::vector<Op>& ops) = 0;
  // One entry per operation of the last Run.
  virtual std::vector<Summary> Describe() const = 0;
  virtual void Drop() = 0;
};

// Many pairs of regions, each combined by itself.
class PairsPeer {
 public:
  virtual ~PairsPeer() = default;
  virtual void Load(const std::vector<RegionPair>& pairs) = 0;
  virtual void Run(Op op) = 0;
  // Of all results together.
  virtual Summary Describe() const = 0;
  virtual void Drop() = 0;
};

// What makes one region of many rings: their union, or their nesting.
class RingsPeer {
 public:
  virtual ~RingsPeer() = default;
  virtual void Load(const std::vector<Ring>& rings) = 0;
  virtual void Run() = 0;
  virtual Summary Describe() const = 0;
  // Afterwards the input is as Load left it.
  virtual void Drop() = 0;
};

class LocatePeer {
 public:
  virtual ~LocatePeer() = default;
  virtual void Load(const Region& region, const std::vector<ZBR_PT>& points) = 0;
  // Builds the index, if the library has one; replaces an earlier one.
  virtual void Build() = 0;
  // Whether the points [first, last) lie inside: 1 or 0 for each, written to inside[0], inside[1], ...
  virtual void Query(std::size_t first, std::size_t last, char* inside) const = 0;
};

// A library taking part: its name in the tables and the way to make its object.
template <class Peer>
struct Entry {
  std::string name;
  std::unique_ptr<Peer> (*make)();
};

// Ours first, then the peers that were found when this was built.
const std::vector<Entry<BooleanPeer>>& BooleanPeers();
const std::vector<Entry<PairsPeer>>& PairsPeers();
const std::vector<Entry<RingsPeer>>& UnionPeers();
const std::vector<Entry<RingsPeer>>& NestPeers();
const std::vector<Entry<LocatePeer>>& LocatePeers();

}  // namespace bench
