// Whole files read at once. "-" names standard input.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace zbr::formats {

// The contents of a file, or the first `most` bytes of them. Fails when it cannot be read. Threads make the memory ready.
std::string ReadFile(const std::string& name, std::size_t most = std::string::npos, unsigned threads = 1);

// The same without the mark that some editors put before UTF-8.
std::string ReadText(const std::string& name);

// Takes that mark away.
void DropByteOrderMark(std::string& text);

// Names of files are UTF-8 on Windows, whatever its code page is, and bytes elsewhere. To the path that the system is given, on
// Windows in the form without a limit where it is longer than others may be; and back.
std::filesystem::path PathOf(const std::string& name);
std::string NameOf(const std::filesystem::path& path);

// What follows the last dot of the name without its folder, in small letters; "" where there is no dot.
std::string ExtensionOf(const std::string& name);

// The name as shown to people: "standard input" has no better one than "-".
std::string BaseName(const std::string& name);

// The same without extension.
std::string StemOf(const std::string& name);

}  // namespace zbr::formats
