// The makers of the objects behind peer.h, one source file per library. Those of libraries that were not found do not exist.
#pragma once

#include <memory>

#include "peer.h"

namespace bench {

std::unique_ptr<BooleanPeer> MakeZbrBoolean();
std::unique_ptr<NestPeer> MakeZbrNest();
std::unique_ptr<LocatePeer> MakeZbrLocator();
std::unique_ptr<LocatePeer> MakeZbrLinear();

std::unique_ptr<BooleanPeer> MakeClipperFlat();
std::unique_ptr<BooleanPeer> MakeClipperTree();
std::unique_ptr<NestPeer> MakeClipperNest();

std::unique_ptr<BooleanPeer> MakeGeosBoolean();
std::unique_ptr<NestPeer> MakeGeosNest();
std::unique_ptr<LocatePeer> MakeGeosPrepared();

std::unique_ptr<BooleanPeer> MakeBoostBoolean();
std::unique_ptr<LocatePeer> MakeBoostLinear();

}  // namespace bench
