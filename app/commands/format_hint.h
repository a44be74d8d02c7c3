// Readers do not know how the tool is told of a format.
#pragma once

#include <zbr-formats/types.h>

#include <string>

#include "app/libraries.h"

namespace tool {

// What `read` gives; where it fails as nothing tells the format, the message names the option that does.
template <class Read>
auto OrHint(const std::string& option, Read read) {
  try {
    return read();
  } catch (const zbr::formats::UnknownFormat& failure) {
    throw Failure(failure.File(), failure.Cause() + ", else give " + option);
  }
}

}  // namespace tool
