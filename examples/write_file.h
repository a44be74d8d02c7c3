// Writing the files of the generators.
#pragma once

#include <fstream>
#include <iostream>
#include <string>

// False, with a message, when the file cannot be written.
inline bool WriteFile(const std::string& file, const std::string& text) {
  std::ofstream stream(file, std::ios::binary);
  stream << text;
  stream.close();
  if (!stream) std::cerr << file << ": cannot write\n";
  return static_cast<bool>(stream);
}
