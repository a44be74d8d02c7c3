// Which results go to which output file.
#pragma once

#include <string>
#include <vector>

#include "formats/format.h"

namespace tool {

struct OutputPlan {
  std::string file;
  Format format = Format::kUnknown;
  std::vector<std::size_t> results;  // indices
};

// One output for each result in turn when there are several results and as many outputs; an output with "{op}" in its name stands
// for one file for each result; every other output gets all results. The format follows from the name; for standard output and
// names that tell nothing it is `chosen`, and if none was chosen standard output gets that of the input file.
std::vector<OutputPlan> PlanOutputs(const std::vector<std::string>& outputs, const std::vector<std::string>& results, Format chosen,
                                    const std::string& input);

// One output: its format as told there.
Format OutputFormat(const std::string& file, Format chosen, const std::string& input);

// Whether a plan writes to standard output, so that reports have to go to standard error.
bool UsesStandardOutput(const std::vector<OutputPlan>& plans);

}  // namespace tool
