// What a drawing holds that is not taken, told to the user.
#pragma once

#include <zbr-drawing/contours.h>

#include <string>

#include "app/commands/commands.h"
#include "app/io/progress.h"
#include "app/libraries.h"

namespace tool {

// What --strict makes of a drawing that is not taken as a whole; the exit code is that of check.
class Incomplete : public Failure {
 public:
  using Failure::Failure;
};

// Takes away what is not shown, and boundaries of hatches that fill what is drawn otherwise; notes these and what the reader left
// out, a line for each kind. What bears contours is left to `check` to tell, and fails where the options are strict.
void LeaveOut(Drawing& drawing, const InputOptions& options, Progress& progress);

// "2 POINT": a kind with its count.
std::string LeftOutText(const std::string& what, const LeftOut& left);

// "; the nearest end is 0.01 away, see --join" where the contour seems to end by a gap; else nothing.
std::string GapText(const Contours& contours, const OpenEnds& open);

// The same for the narrowest of all gaps.
std::string NarrowestGapText(const Contours& contours);

}  // namespace tool
