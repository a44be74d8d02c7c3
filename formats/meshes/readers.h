// One reader for each format. All fail for malformed contents.
#pragma once

#include <zbr-formats/meshes.h>
#include <zbr-formats/types.h>

#include <string>

namespace zbr::formats {

// `text` is the whole file, `file` its name for messages.
Mesh Read3mf(const std::string& bytes, const std::string& file);
Mesh ReadOff(const std::string& text, const std::string& file);
Mesh ReadPly(const std::string& text, const std::string& file);

// The same with any number of threads.
Mesh ReadObj(const std::string& text, const std::string& file, unsigned threads);
Mesh ReadStl(const std::string& text, const std::string& file, unsigned threads);

// Whether it is the binary form, perhaps cut off.
bool IsBinaryStl(const std::string& text);

// `beside` gives the files that it refers to.
Mesh ReadGltf(const std::string& text, const std::string& file, const FileSource& beside);

}  // namespace zbr::formats
