// The order of crossings that share one place of a polygon.
#pragma once

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <zbr/boolean.h>

#include "core/rings.h"

namespace zbr {

// Settles `order` on `side` for crossings that lie at one place of one polygon of that side, given in list order. `own` is the
// family of that side, `other` the family that crosses it there; its rings may touch themselves when told so. May clear `valid` of
// two that cancel, which are then appended to `dropped`. Whether anything was done.
bool OrderSpot(std::vector<ZBR_CROSS>& crosses, std::span<const int> spot, int side, const LoopList& own, const LoopList& other,
               bool otherTouches, std::vector<std::pair<int, int>>& dropped);

}  // namespace zbr
