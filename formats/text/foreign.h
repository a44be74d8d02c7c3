// Files of other formats than their names say.
#pragma once

#include <string>
#include <string_view>

namespace zbr::formats {

// Fails with what to export instead where the first bytes are those of a format that programs can write and people try (DWG, STEP,
// PDF, PostScript, ZIP).
void RefuseForeign(std::string_view bytes, const std::string& name);

// Fails for what is no text.
void RefuseBinary(std::string_view bytes, const std::string& name);

// As RefuseForeign, for a file whose name tells no format; fails where it cannot be read, too. Devices and pipes are left alone.
void RefuseForeignFile(const std::string& file);

}  // namespace zbr::formats
