// Reading the drawings that a command works on.
#pragma once

#include <zbr-drawing/frame.h>
#include <zbr-drawing/region.h>
#include <zbr-formats/drawings.h>

#include <set>
#include <string>
#include <vector>

#include "app/commands/commands.h"
#include "app/io/progress.h"
#include "app/libraries.h"

namespace tool {

struct Loaded {
  std::vector<Contours> contours;    // one for each file
  std::set<std::string> layers;      // names found in the files
  int units = 0;                     // of the first file
  Format format = Format::kUnknown;  // of the first file
  Frame frame;                       // for all files together
};

// Reads the files and makes contours of them, with one set of tolerances and one frame, so that what coincides in the files still
// does. A file in other units than the first is converted. What was left out is noted on standard error.
Loaded Load(const std::vector<std::string>& files, const InputOptions& options, Progress& progress);

// The parts of that, for commands that read files for different things: one file, without the layers that are not wanted (none
// named: all), with a note of what was left out; and a drawing brought to the units of another one.
Drawing ReadInput(const std::string& file, Format format, Content content, const std::vector<std::string>& layers,
                  Progress& progress);
void ConvertUnits(Drawing& drawing, int units, Progress& progress);

// The region of a file; a note says where its rings cross.
Region LoadRegion(const Contours& contours, const Frame& frame, Progress& progress);

// "1 contour that does not close"
std::string OpenText(std::size_t count);

// "(x, y)"
std::string PointText(const ZBR_PT& p);

// What a contact is called: "loop crosses the loop of line 9 at (1, 2)".
std::string Describe(const Contact& contact, const Contours& contours, const Frame& frame);

Format FormatOption(const InputOptions& options);

}  // namespace tool
