// What every reader of files promises: the contents, or one line that says what is wrong with the file.
#pragma once

#include <zbr-drawing/failure.h>

#include <algorithm>
#include <string>

#include "fuzz/bytes.h"

// Runs the reader; false when it refuses the file, as it should.
template <class Read>
bool IsTaken(const std::string& file, Read read) {
  try {
    read();
    return true;
  } catch (const zbr::drawing::Failure& failure) {
    const std::string line = failure.what();
    const bool isOneLine = std::none_of(line.begin(), line.end(), [](unsigned char c) { return c < 32; });
    Require(isOneLine && line.size() > file.size() + 2 && line.rfind(file, 0) == 0, "a refusal names the file and the cause",
            [&] { return line; });
    return false;
  }
}
