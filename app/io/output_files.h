// Files written whole. "-" names standard output.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/io/system.h"

namespace tool {

// Whether two names stand for one file, however they are spelt.
bool IsSameFile(const std::string& a, const std::string& b);

// Files that appear complete or not at all: each is written under a temporary name beside its target, and only when all of them
// are on disk are they renamed. Targets that are no regular files (pipes, devices) are written directly.
class OutputFiles {
 public:
  // Fails when the file was added before.
  void Add(const std::string& name, std::string contents);
  void Commit();

 private:
  struct Pending {
    std::string name;
    std::string contents;
    std::optional<NewFile> written;  // of regular files only
  };
  std::vector<Pending> files_;
};

// The whole text, or an error.
void WriteToStandardOutput(std::string text);

}  // namespace tool
