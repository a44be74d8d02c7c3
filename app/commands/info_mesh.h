// The part of `zbr info` that reports on models.
#pragma once

#include "app/commands/commands.h"

namespace tool {

// Where values begin in the reports on models and drawings.
inline constexpr std::size_t kReportColumn = 10;

int RunMeshInfo(const FileOptions& options);

}  // namespace tool
