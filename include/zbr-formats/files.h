// Whole files read at once. "-" names standard input.
#pragma once

#include <string>

namespace zbr::formats {

// The contents of a file. Fails when it cannot be read.
std::string ReadFile(const std::string& name);

// The same without the mark that some editors put before UTF-8.
std::string ReadText(const std::string& name);

// Takes that mark away.
void DropByteOrderMark(std::string& text);

// What follows the last dot of the name without its folder, in small letters; "" where there is no dot.
std::string ExtensionOf(const std::string& name);

// The name as shown to people: "standard input" has no better one than "-".
std::string BaseName(const std::string& name);

}  // namespace zbr::formats
