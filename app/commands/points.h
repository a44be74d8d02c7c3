// The points that a command is asked about.
#pragma once

#include <zbr/planar.h>

#include <string>
#include <vector>

#include "app/libraries.h"

namespace tool {

// Coordinates given as arguments, x and y in turn; without any, those on standard input, one point a line. Fails for what is no
// finite number, and when standard input is to be read twice because `file` is "-" too.
std::vector<ZBR_PT> ReadPoints(const std::vector<std::string>& coordinates, const std::string& file);

}  // namespace tool
