// The manual page.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

#include "app/cli/command_line.h"

namespace tool {

// The page in the man(7) macros, from the declared commands and options and the topics.
std::string ManualPage(const CLI::App& app, const std::vector<Topic>& topics, const std::string& version);

}  // namespace tool
