// Files of other formats than their names say.
#pragma once

#include <string>
#include <string_view>

namespace zbr::formats {

// Fails with what to export instead where the first bytes are those of a format that programs can write and people try (DWG, STEP,
// PDF, PostScript, ZIP).
void RefuseForeign(std::string_view bytes, const std::string& name);

}  // namespace zbr::formats
