// Which results go to which output file.
#pragma once

#include <zbr-formats/drawings.h>

#include <string>
#include <vector>

#include "app/commands/commands.h"
#include "app/io/progress.h"
#include "app/libraries.h"

namespace tool {

// What a run has to write: results by name, and how the names of outputs may refer to them.
struct Results {
  std::vector<std::string> names;
  std::string placeholder;  // such as "{op}"
  bool sharedOut = false;   // one output for each result in turn when there are several results and as many outputs
};

struct OutputPlan {
  std::string file;
  Format format = Format::kUnknown;
  std::vector<std::size_t> results;  // indices
  bool isShare = false;              // one of all, as there are as many outputs
};

// An output with the placeholder in its name stands for one file for each result, every other one gets all results unless they are
// shared out. The format follows from the name; for standard output and names that tell nothing it is `chosen`, and if none was
// chosen standard output gets that of the input file.
std::vector<OutputPlan> PlanOutputs(const std::vector<std::string>& outputs, const Results& results, Format chosen,
                                    const std::string& input);

// Fails where a name has a placeholder, a word in braces, other than this one.
void CheckPlaceholders(const std::string& file, const std::string& placeholder);

// Results in this format, in WKT with curves if wanted. Not for pictures.
std::string WriteResults(Format format, const std::vector<Layer>& layers, int units, const Writing& writing);

// A region by itself in this format.
std::string WriteRegion(Format format, const Layer& layer, int units, const Writing& writing);

// Notes of options that say how DXF or WKT is written where none is.
void NoteUnused(const Writing& writing, const std::vector<OutputPlan>& plans, Progress& progress);

// A note of what each file holds, where results are shared out among files of different formats: as likely as not all of them were
// wanted in each format.
void NoteSharedOut(const Results& results, const std::vector<OutputPlan>& plans, Progress& progress);

// Whether a plan writes to standard output, so that reports have to go to standard error.
bool UsesStandardOutput(const std::vector<OutputPlan>& plans);

}  // namespace tool
