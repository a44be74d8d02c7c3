// The makers of the objects behind peer.h, one source file per library. Those of libraries that were not found do not exist.
#pragma once

#include <memory>

#include "peer.h"

namespace bench {

// On loops; on regions; on regions, through the exact arrangement.
std::unique_ptr<BooleanPeer> MakeZbrBoolean();
std::unique_ptr<BooleanPeer> MakeZbrRegion();
std::unique_ptr<BooleanPeer> MakeZbrExact();
// All pairs in one call; a call for each.
std::unique_ptr<PairsPeer> MakeZbrPairs();
std::unique_ptr<PairsPeer> MakeZbrSinglePairs();
std::unique_ptr<RingsPeer> MakeZbrUnion();
std::unique_ptr<RingsPeer> MakeZbrNest();
std::unique_ptr<LocatePeer> MakeZbrLocator();
std::unique_ptr<LocatePeer> MakeZbrLinear();

std::unique_ptr<BooleanPeer> MakeClipperFlat();
std::unique_ptr<BooleanPeer> MakeClipperTree();
std::unique_ptr<PairsPeer> MakeClipperPairs();
std::unique_ptr<RingsPeer> MakeClipperUnionFlat();
std::unique_ptr<RingsPeer> MakeClipperUnionTree();
std::unique_ptr<RingsPeer> MakeClipperNest();

std::unique_ptr<BooleanPeer> MakeGeosBoolean();
std::unique_ptr<PairsPeer> MakeGeosPairs();
std::unique_ptr<RingsPeer> MakeGeosUnion();
std::unique_ptr<RingsPeer> MakeGeosNest();
std::unique_ptr<LocatePeer> MakeGeosPrepared();

std::unique_ptr<BooleanPeer> MakeBoostBoolean();
std::unique_ptr<PairsPeer> MakeBoostPairs();
std::unique_ptr<LocatePeer> MakeBoostLinear();

}  // namespace bench
