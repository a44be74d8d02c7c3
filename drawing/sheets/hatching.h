// Hatching of the faces that sections lay open.
#pragma once

#include <zbr-drawing/sheet.h>

namespace zbr::drawing {

// Adds the hatching to the lines of views, as EdgeClass::kHatching. A body has one angle and spacing in all views.
void AddHatching(Sheet& sheet);

}  // namespace zbr::drawing
