// The parts of a ZIP archive, such as the packages that 3MF files are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zbr::formats {

// Refers to the bytes of the file. Failures name the file and, where it matters, the part.
class ZipArchive {
 public:
  ZipArchive(std::string_view bytes, const std::string& file);

  // A part's name for messages, without a slash in front.
  static std::string_view PlainName(std::string_view part) { return part.substr(part.starts_with('/') ? 1 : 0); }

  // Names are told apart without regard to capitals, as packages demand it; a slash in front does not count.
  bool Has(std::string_view part) const { return parts_.contains(KeyOf(part)); }

  // Unpacks a part and compares it with its check sum. All parts together may have a gigabyte: a small file can say that it holds
  // any number of them.
  std::string Read(std::string_view path);

 private:
  struct Part {
    std::uint64_t packedSize = 0, size = 0, place = 0;  // place: of its head
    std::uint32_t checkSum = 0;
    unsigned method = 0;
    bool isEncrypted = false;
  };

  static std::string KeyOf(std::string_view name);
  std::size_t FindEnd() const;
  [[noreturn]] void Fail(const std::string& cause) const;
  std::string_view BytesAt(std::uint64_t place, std::uint64_t count) const;
  std::uint64_t NumberAt(std::uint64_t place, unsigned bytes) const;
  void ReadDirectory(std::uint64_t place, std::uint64_t count);
  void WidenSizes(std::string_view extra, Part& part) const;

  std::string_view bytes_;
  const std::string& file_;
  std::map<std::string, Part> parts_;
  std::uint64_t room_;
};

}  // namespace zbr::formats
