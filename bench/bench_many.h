// The families of many small rings among the benchmarks of Booleans.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace bench {

// Registers the family's benchmarks, if it is one of these.
void RegisterMany(std::string_view family, const std::vector<std::size_t>& sizes);

}  // namespace bench
