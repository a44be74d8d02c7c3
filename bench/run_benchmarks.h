// The frame of the benchmark programs.
#pragma once

#include <vector>

#include "selection.h"

namespace bench {

// Reads the arguments, registers what they select, and runs it. Returns the program's exit code.
int RunBenchmarks(int argc, char** argv, const std::vector<Sizes>& sizes, void (*registerAll)(const Selection&));

}  // namespace bench
