// Unpacks what was packed by the method "deflate" of ZIP archives.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zbr::formats {

// `size` is how many bytes come out. Fails, naming no file, when more or fewer do and where the packed bytes make no sense. Memory
// is taken as bytes come out, however large the size is said to be.
std::string Inflate(std::string_view packed, std::size_t size);

}  // namespace zbr::formats
