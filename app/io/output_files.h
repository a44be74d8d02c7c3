// Files written whole. "-" names standard output.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/libraries.h"

namespace tool {

// Whether two names stand for one file, however they are spelt.
bool IsSameFile(const std::string& a, const std::string& b);

// Files that appear complete or not at all: each is written under a temporary name beside its target, and only when all of them
// are on disk are they renamed. Targets that are no regular files (pipes, devices) are written directly.
class OutputFiles {
 public:
  OutputFiles() = default;
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;
  ~OutputFiles();

  // Fails when the file was added before.
  void Add(const std::string& name, std::string contents);
  void Commit();

 private:
  struct Pending {
    std::string name;
    std::string contents;
    std::string temporary;  // empty until written, and again once renamed
    std::string target;
  };
  std::vector<Pending> files_;
};

// The whole text, or an error.
void WriteToStandardOutput(std::string text);

}  // namespace tool
