// Reading the drawings that a command works on.
#pragma once

#include <zbr-drawing/affine.h>
#include <zbr-drawing/region.h>
#include <zbr-formats/drawings.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/commands/commands.h"
#include "app/io/progress.h"
#include "app/libraries.h"

namespace tool {

struct Loaded {
  std::vector<Contours> contours;                       // one for each file
  std::set<std::string> layers;                         // names found in the files
  std::vector<std::map<std::string, LeftOut>> leftOut;  // by the readers, for each file
  int units = 0;                                        // of the first file
  Format format = Format::kUnknown;                     // of the first file
  Writing writing;                                      // as the options have it, with what the files tell
};

struct OperandOptions {
  std::vector<std::string> layers;  // wanted; empty: those of the input
  std::optional<Affine> map;        // where it is put
  std::string layersFrom = {};      // the option that named the layers
};

// Reads the files and makes contours of them, with one set of tolerances, so that what coincides in the files still does. A file in
// other units than the first is converted. What was left out is noted on standard error.
// `operands` tell what each file in turn has for itself.
Loaded Load(const std::vector<std::string>& files, const InputOptions& options, Progress& progress,
            const std::vector<OperandOptions>& operands = {});

// The parts of that, for commands that read files for different things: one file, without the layers that are not wanted (none
// named: all that are shown), with a note of what was left out; and a drawing brought to the units of another one.
Drawing ReadInput(const std::string& file, Content content, const InputOptions& options, Progress& progress);
void ConvertUnits(Drawing& drawing, int units, Progress& progress);

// The region of a file. A note says where its rings cross, unless the caller chose what that shall mean.
Region LoadRegion(const Contours& contours, const InputOptions& options, Progress& progress);

// A result under its name, simplified if the writing says so.
Layer ResultLayer(const std::string& name, const CurvedRegion& shape, const Writing& writing);

// Notes of contours that do not close, and of chords that could not become curves again.
void NoteOpen(const Contours& contours, const InputOptions& options, Progress& progress);
void NoteBeside(const std::vector<Layer>& layers, Progress& progress);

// "cut, marks, text", the first twenty.
std::string Listed(const std::set<std::string>& names);

// "1 contour that does not close"
std::string OpenText(std::size_t count);

// "(x, y)"
std::string PointText(const ZBR_PT& p);

// What a fault is called: "loop crosses the loop of line 9 at (1, 2)".
std::string Describe(const ZBR_REGION_FAULT& fault, const Contours& contours);

// The rule of --fill by its name, even-odd when that is empty.
ZBR_FILL_RULE FillRule(const std::string& name);

Format FormatOption(const InputOptions& options);

}  // namespace tool
