// What is read and written: the records of zbr-drawing, which are names of this namespace, too.
#pragma once

#include <zbr-drawing/failure.h>  // what every reader throws

namespace zbr::formats {

using namespace drawing;

// Of DXF files that are written: R12 for machines and old programs, which has neither ellipses nor splines; else that of AutoCAD
// 2000, which all programs of this century read.
enum class DxfVersion { kR12, kR2000 };

}  // namespace zbr::formats
