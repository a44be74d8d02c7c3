// The command line on Windows: one text in UTF-16, which each program takes apart itself, and whose patterns the shell leaves as
// they are. The rules for quotes are those that all programs follow; a pattern in quotes is none, nor is one that nothing matches.
#include <zbr-formats/files.h>

#include <windows.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "app/io/system.h"

namespace tool {
namespace {

struct Argument {
  std::wstring text;
  bool isPattern = false;  // has * or ? outside quotes
};

// Of an even number of backslashes before a quote half remain and the quote counts; of an odd number, the last makes it a
// character. Backslashes elsewhere are characters. A doubled quote within quotes is one.
Argument TakeArgument(std::wstring_view& line) {
  Argument argument;
  bool isQuoted = false;
  std::size_t i = 0;
  for (; i < line.size() && (isQuoted || (line[i] != L' ' && line[i] != L'\t')); ++i) {
    if (line[i] == L'\\') {
      const std::size_t slashes = std::min(line.find_first_not_of(L'\\', i), line.size()) - i;
      const bool beforeQuote = i + slashes < line.size() && line[i + slashes] == L'"';
      argument.text.append(beforeQuote ? slashes / 2 : slashes, L'\\');
      i += slashes - 1;
      if (beforeQuote && slashes % 2 == 1) argument.text += line[++i];
    } else if (line[i] != L'"') {
      argument.isPattern |= !isQuoted && (line[i] == L'*' || line[i] == L'?');
      argument.text += line[i];
    } else if (isQuoted && i + 1 < line.size() && line[i + 1] == L'"') {
      argument.text += line[++i];
    } else {
      isQuoted = !isQuoted;
    }
  }
  line.remove_prefix(i);
  return argument;
}

void SkipBlanks(std::wstring_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(L" \t"), line.size()));
}

std::vector<Argument> Split(std::wstring_view line) {
  // The program's name has no backslashes that mean something.
  const std::size_t end = line.starts_with(L'"') ? line.find(L'"', 1) : line.find_first_of(L" \t");
  line.remove_prefix(end == std::wstring_view::npos ? line.size() : end + 1);
  std::vector<Argument> arguments;
  for (SkipBlanks(line); !line.empty(); SkipBlanks(line)) arguments.push_back(TakeArgument(line));
  return arguments;
}

// The system's own matching would take the short names of files into account, by which *.dxf matches a.dxf-old.
bool Matches(std::wstring_view pattern, std::wstring_view name) {
  std::size_t p = 0, n = 0, star = std::wstring_view::npos, taken = 0;  // the last star, and the end of what it takes
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == L'*') {
      star = p++;
      taken = n;
    } else if (p < pattern.size() &&
               (pattern[p] == L'?' || CompareStringOrdinal(&pattern[p], 1, &name[n], 1, TRUE) == CSTR_EQUAL)) {
      ++p;
      ++n;
    } else if (star != std::wstring_view::npos) {
      p = star + 1;
      n = ++taken;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(L'*', p) == std::wstring_view::npos;
}

// The files that match a pattern, in order; what stands before the name, a folder or a drive, is as it was given.
std::vector<std::wstring> FilesOf(const std::wstring& pattern) {
  const std::size_t name = pattern.find_last_of(L"/\\:") + 1;  // 0 where there is none
  const std::wstring folder = pattern.substr(0, name);
  std::vector<std::wstring> files;
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW((folder + L"*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return files;
  const std::unique_ptr<void, decltype(&FindClose)> closer(search, &FindClose);
  do {
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!isFolder && Matches(std::wstring_view(pattern).substr(name), found.cFileName)) files.push_back(folder + found.cFileName);
  } while (FindNextFileW(search, &found) != 0);
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<std::string> Arguments(int /*argc*/, char** /*argv*/) {
  std::vector<std::string> names;
  for (const Argument& argument : Split(GetCommandLineW())) {
    std::vector<std::wstring> files;
    if (argument.isPattern) files = FilesOf(argument.text);
    if (files.empty()) files.push_back(argument.text);
    for (const std::wstring& file : files) names.push_back(zbr::formats::NameOf(file));
  }
  return names;
}

}  // namespace tool
