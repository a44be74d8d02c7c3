// The lists of libraries taking part.

#include "peer.h"

#include "peers.h"

namespace bench {

const char* OpName(Op op) {
  switch (op) {
    case Op::kUnion:
      return "union";
    case Op::kIntersection:
      return "intersection";
    case Op::kAMinusB:
      return "a-b";
    case Op::kBMinusA:
      return "b-a";
    case Op::kXor:
      return "xor";
  }
  return "";
}

const std::vector<Entry<BooleanPeer>>& BooleanPeers() {
  static const std::vector<Entry<BooleanPeer>> peers = {
      {"zbr", MakeZbrBoolean},      {"zbr-region", MakeZbrRegion},     {"zbr-exact", MakeZbrExact},
#ifdef BENCH_WITH_CLIPPER
      {"clipper", MakeClipperFlat}, {"clipper-tree", MakeClipperTree},
#endif
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosBoolean},
#endif
#ifdef BENCH_WITH_BOOST
      {"boost", MakeBoostBoolean},
#endif
  };
  return peers;
}

const std::vector<Entry<PairsPeer>>& PairsPeers() {
  static const std::vector<Entry<PairsPeer>> peers = {
      {"zbr", MakeZbrPairs},         {"zbr-single", MakeZbrSinglePairs},
#ifdef BENCH_WITH_CLIPPER
      {"clipper", MakeClipperPairs},
#endif
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosPairs},
#endif
#ifdef BENCH_WITH_BOOST
      {"boost", MakeBoostPairs},
#endif
  };
  return peers;
}

const std::vector<Entry<RingsPeer>>& UnionPeers() {
  static const std::vector<Entry<RingsPeer>> peers = {
      {"zbr", MakeZbrUnion},
#ifdef BENCH_WITH_CLIPPER
      {"clipper", MakeClipperUnionFlat},
      {"clipper-tree", MakeClipperUnionTree},
#endif
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosUnion},
#endif
  };
  return peers;
}

const std::vector<Entry<RingsPeer>>& NestPeers() {
  static const std::vector<Entry<RingsPeer>> peers = {
      {"zbr", MakeZbrNest},
#ifdef BENCH_WITH_CLIPPER
      {"clipper-tree", MakeClipperNest},
#endif
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosNest},
#endif
  };
  return peers;
}

const std::vector<Entry<LocatePeer>>& LocatePeers() {
  static const std::vector<Entry<LocatePeer>> peers = {
      {"zbr", MakeZbrLocator},
      {"zbr-linear", MakeZbrLinear},
#ifdef BENCH_WITH_GEOS
      {"geos", MakeGeosPrepared},
#endif
#ifdef BENCH_WITH_BOOST
      {"boost", MakeBoostLinear},
#endif
  };
  return peers;
}

}  // namespace bench
