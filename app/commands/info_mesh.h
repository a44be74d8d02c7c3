// The part of `zbr info` that reports on models.
#pragma once

#include "app/commands/commands.h"

namespace tool {

int RunMeshInfo(const FileOptions& options);

}  // namespace tool
