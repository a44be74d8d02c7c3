// The names of the libraries that the commands stand on, without their prefixes.
#pragma once

#include <zbr-drawing/failure.h>  // any command may fail

namespace zbr::formats {}

namespace tool {

using namespace zbr::drawing;
using namespace zbr::formats;

}  // namespace tool
