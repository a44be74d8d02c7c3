// Files on POSIX systems: names are bytes and stay as they are.
#include "formats/file_access.h"

namespace zbr::formats {

std::filesystem::path PathOf(const std::string& name) {
  return {name};
}

std::string NameOf(const std::filesystem::path& path) {
  return path.string();
}

bool IsDirectory(const std::string& name) {
  std::error_code ignored;
  return std::filesystem::is_directory(name, ignored);
}

bool IsRegularFile(const std::string& name) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(name, ignored);
}

std::FILE* OpenToRead(const std::string& name) {
  return std::fopen(name.c_str(), "rb");
}

}  // namespace zbr::formats
