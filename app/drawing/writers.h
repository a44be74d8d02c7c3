// Sheets as files.
#pragma once

#include <string>
#include <vector>

#include "drawing/sheet.h"

namespace tool {

// What the lines can be traced back to.
struct ModelFile {
  std::string name;
  std::size_t firstTriangle = 0;  // triangles of all files are numbered through
};

// In millimetres, a group for each view, within it one for the hidden and one for the visible lines, each with a group for each
// class.
std::string WriteSheetSvg(const Sheet& sheet);

// In millimetres, lines on the layers VISIBLE, OUTLINE (silhouettes) and HIDDEN.
std::string WriteSheetDxf(const Sheet& sheet);

// Every polyline with its points in the unit of the model and the edges it is part of.
std::string WriteSheetJson(const Sheet& sheet, const std::vector<ModelFile>& files, std::size_t shells);

}  // namespace tool
