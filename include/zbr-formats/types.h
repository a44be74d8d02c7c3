// What is read and written: the records of zbr-drawing, which are names of this namespace, too.
#pragma once

#include <zbr-drawing/failure.h>  // what every reader throws

namespace zbr::formats {

using namespace drawing;

}  // namespace zbr::formats
