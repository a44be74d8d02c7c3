// Workloads as our loops, and what they hold.
#pragma once

#include <zbr/boolean.h>
#include <zbr/loop.h>

#include <memory>
#include <vector>

#include "peer.h"
#include "workloads.h"

namespace bench {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;

ZBR_BOOLEAN_OPE LibraryOp(Op op);

std::shared_ptr<ZBR_LOOP> MakeLoop(const Ring& ring);

// The rings of a region, nested by zbrMakeLoopTree.
LoopList MakeNested(const Region& region);

// Areas are computed again from the points: what the loops have cached is the library's own word.
Summary Summarise(const LoopList& loops);

}  // namespace bench
