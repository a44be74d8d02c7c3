// ZIP archives, their parts not packed.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

inline std::string Little(std::uint64_t number, int count) {
  std::string bytes;
  for (; count > 0; --count, number >>= 8U) bytes += static_cast<char>(number & 0xffU);
  return bytes;
}

inline std::string ZipFile(std::initializer_list<std::pair<std::string, std::string>> parts) {
  std::string file, directory;
  for (const auto& [name, contents] : parts) {
    std::uint32_t sum = 0xffffffff;
    for (const char c : contents) {
      sum ^= static_cast<unsigned char>(c);
      for (int bit = 0; bit < 8; ++bit) sum = (sum & 1U) != 0 ? sum >> 1U ^ 0xedb88320U : sum >> 1U;
    }
    const std::string sizes = Little(~sum, 4) + Little(contents.size(), 4) + Little(contents.size(), 4) + Little(name.size(), 2);
    directory += "PK\1\2" + Little(20, 4) + Little(0, 8) + sizes + Little(0, 12) + Little(file.size(), 4) + name;
    file += "PK\3\4" + Little(20, 2) + Little(0, 8) + sizes + Little(0, 2) + name + contents;
  }
  return file + directory + "PK\5\6" + Little(0, 4) + Little(parts.size(), 2) + Little(parts.size(), 2) +
         Little(directory.size(), 4) + Little(file.size(), 4) + Little(0, 2);
}
