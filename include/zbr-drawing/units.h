// Units of length by the codes that drawing exchange files use for them.
#pragma once

#include <string>

namespace zbr::drawing {

// "mm" for 4; empty for codes that name no unit.
std::string UnitName(int code);

// How many units `to` one unit `from` is; 0 when one of the codes names no unit.
double UnitFactor(int from, int to);

}  // namespace zbr::drawing
