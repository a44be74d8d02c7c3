// Sheets as files.
#pragma once

#include <string>
#include <vector>

#include "drawing/objects.h"
#include "drawing/sheet.h"

namespace tool {

// In millimetres, a group for each view, within it one for the hidden and one for the visible lines, each with a group for each
// class. Outlines are filled, below the lines, each object in a shade of its own.
std::string WriteSheetSvg(const Sheet& sheet, const std::vector<ObjectFile>& objects);

// In millimetres, lines on the layers VISIBLE, OUTLINE (silhouettes) and HIDDEN. Outlines are closed polylines on a layer for each
// object: FILL-name.
std::string WriteSheetDxf(const Sheet& sheet, const std::vector<ObjectFile>& objects);

// Every polyline with its points in the unit of the model and the edges it is part of; outlines as polygons.
std::string WriteSheetJson(const Sheet& sheet, const std::vector<ObjectFile>& objects, std::size_t shells);

}  // namespace tool
