// What reading files asks of the operating system: posix_files.cpp, windows_files.cpp, which also turn names to paths and back.
#pragma once

#include <zbr-formats/files.h>

#include <cstdio>
#include <string>

namespace zbr::formats {

bool IsDirectory(const std::string& name);
bool IsRegularFile(const std::string& name);

// Null, and errno set, where it cannot be opened.
std::FILE* OpenToRead(const std::string& name);

}  // namespace zbr::formats
