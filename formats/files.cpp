// Reading whole files.
#include <zbr-formats/files.h>

#include <zbr-drawing/threads.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "formats/file_access.h"

namespace zbr::formats {
namespace {

[[noreturn]] void FailWithErrno(const std::string& name, const char* what) {
  throw Failure(name, what + std::string(": ") + std::strerror(errno));
}

// Of a regular file, so that its contents need not be moved while they are read; 0 where it is not known.
std::size_t SizeOf(const std::string& name) {
  std::error_code error;
  const auto size = name == "-" ? 0 : std::filesystem::file_size(PathOf(name), error);
  constexpr auto kMost = std::uintmax_t{1} << 32U;  // sizes of holes are no reason to ask for so much
  return error ? 0 : static_cast<std::size_t>(std::min<std::uintmax_t>(size, kMost));
}

}  // namespace

std::string ReadFile(const std::string& name, std::size_t most, unsigned threads) {
  const bool standardInput = name == "-";
  if (!standardInput && IsDirectory(name)) throw Failure(name, "is a directory");
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> owned(nullptr, &std::fclose);
  std::FILE* stream = stdin;
  if (!standardInput) {
    owned.reset(OpenToRead(name));
    // The shell hands over a pattern as it is when nothing matches it.
    if (!owned && errno == ENOENT && name.find_first_of("*?[") != std::string::npos)
      throw Failure(name, "no file matches the pattern");
    if (!owned) FailWithErrno(name, "cannot open");
    stream = owned.get();
  }
  std::string contents;
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  std::size_t block = std::max(SizeOf(name) + 1, kBlock);  // one more byte than there are: the end shows at once
  for (bool isMore = true; isMore && contents.size() < most; block = kBlock) {
    const std::size_t before = contents.size(), wanted = std::min(most - before, block);
    if (before == 0) {
      contents.reserve(wanted);
      TouchPages(contents.data(), wanted, threads);
    }
    contents.resize(before + wanted);
    const std::size_t got = std::fread(contents.data() + before, 1, wanted, stream);
    contents.resize(before + got);
    isMore = got == wanted;
  }
  if (std::ferror(stream) != 0) FailWithErrno(name, "cannot read");
  return contents;
}

void DropByteOrderMark(std::string& text) {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
}

std::string ReadText(const std::string& name) {
  std::string text = ReadFile(name);
  DropByteOrderMark(text);
  return text;
}

std::string ExtensionOf(const std::string& name) {
  std::string extension = NameOf(PathOf(name).extension());
  if (!extension.empty()) extension.erase(0, 1);
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension;
}

std::string BaseName(const std::string& name) {
  return name == "-" ? "standard input" : NameOf(PathOf(name).filename());
}

std::string StemOf(const std::string& name) {
  return NameOf(PathOf(BaseName(name)).stem());
}

}  // namespace zbr::formats
