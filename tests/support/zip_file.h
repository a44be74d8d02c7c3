// ZIP archives.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

inline std::string Little(std::uint64_t number, int count) {
  std::string bytes;
  for (; count > 0; --count, number >>= 8U) bytes += static_cast<char>(number & 0xffU);
  return bytes;
}

struct ZipPart {
  std::string name, contents;
  std::string packed = "";  // by deflate; empty: the contents are stored as they are
};

// Wide: the directory has its numbers in the further fields that large archives need.
inline std::string ZipFile(std::initializer_list<ZipPart> parts, bool isWide = false) {
  std::string file, directory;
  for (const auto& [name, contents, packed] : parts) {
    std::uint32_t sum = 0xffffffff;
    for (const char c : contents) {
      sum ^= static_cast<unsigned char>(c);
      for (int bit = 0; bit < 8; ++bit) sum = (sum & 1U) != 0 ? sum >> 1U ^ 0xedb88320U : sum >> 1U;
    }
    const std::string& stored = packed.empty() ? contents : packed;
    const std::string method = Little(0, 2) + Little(packed.empty() ? 0 : 8, 2) + Little(0, 4);
    const std::string sizes = Little(~sum, 4) + Little(stored.size(), 4) + Little(contents.size(), 4) + Little(name.size(), 2);
    const std::string wide =
        Little(1, 2) + Little(24, 2) + Little(contents.size(), 8) + Little(stored.size(), 8) + Little(file.size(), 8);
    directory += "PK\1\2" + Little(20, 4) + method +
                 (isWide ? Little(~sum, 4) + std::string(8, '\xff') + Little(name.size(), 2) : sizes) +
                 Little(isWide ? wide.size() : 0, 2) + Little(0, 10) + (isWide ? std::string(4, '\xff') : Little(file.size(), 4)) +
                 name + (isWide ? wide : "");
    file += "PK\3\4" + Little(20, 2) + method + sizes + Little(0, 2) + name + stored;
  }
  return file + directory + "PK\5\6" + Little(0, 4) + Little(parts.size(), 2) + Little(parts.size(), 2) +
         Little(directory.size(), 4) + Little(file.size(), 4) + Little(0, 2);
}
