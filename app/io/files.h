// Whole files in, whole files out. "-" names standard input or output.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tool {

// The contents of a file. Fails when it cannot be read.
std::string ReadFile(const std::string& name);

// The same without the mark that some editors put before UTF-8.
std::string ReadText(const std::string& name);

// The name as shown to people: "standard input" has no better one than "-".
std::string BaseName(const std::string& name);

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
