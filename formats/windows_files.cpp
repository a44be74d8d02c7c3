// Files on Windows: names are UTF-8, the system's are UTF-16, and beyond 259 characters they need a form of their own, which the C
// library's own questions about files do not know.
#include <windows.h>

#include <cerrno>
#include <string>
#include <vector>

#include "formats/file_access.h"

namespace zbr::formats {
namespace {

// Shorter than the limit by what the system may add: a folder is to have room for short names of files.
constexpr std::size_t kLongestPlainPath = 240;

std::wstring Wide(const std::string& text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

// 0 where there is nothing of that name.
DWORD AttributesOf(const std::string& name) {
  const DWORD attributes = GetFileAttributesW(PathOf(name).c_str());
  return attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
}

}  // namespace

std::filesystem::path PathOf(const std::string& name) {
  const std::wstring plain = Wide(name);
  if (plain.starts_with(L"\\\\?\\") || plain.starts_with(L"\\\\.\\")) return {plain};
  std::wstring full(GetFullPathNameW(plain.c_str(), 0, nullptr, nullptr), L'\0');
  if (full.size() <= kLongestPlainPath) return {plain};
  full.resize(GetFullPathNameW(plain.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  const bool isShare = full.starts_with(L"\\\\");
  return {isShare ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full};
}

std::string NameOf(const std::filesystem::path& path) {
  const std::wstring& wide = path.native();
  const int length = static_cast<int>(wide.size());
  std::string text(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr)),
                   '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
  return text;
}

bool IsDirectory(const std::string& name) {
  return (AttributesOf(name) & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsRegularFile(const std::string& name) {
  const DWORD attributes = AttributesOf(name);
  return attributes != 0 && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

std::FILE* OpenToRead(const std::string& name) {
  std::FILE* const file = _wfopen(PathOf(name).c_str(), L"rb");
  if (file == nullptr && errno == EINVAL) errno = ENOENT;  // a name that no file can have, such as a pattern
  return file;
}

}  // namespace zbr::formats
