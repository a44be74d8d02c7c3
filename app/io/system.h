// What the tool asks of the operating system beyond the standard library: posix_system.cpp, windows_system.cpp. Names of files are
// UTF-8 on Windows, and what the caller gave elsewhere.
#pragma once

#include <string>
#include <vector>

#include "app/libraries.h"

namespace tool {

// To be called first: a full disk is an error and no signal; standard streams carry bytes, which a console takes for UTF-8 until
// the program ends.
void PrepareProcess();

// What stands behind the program's name, patterns replaced by the files that match them where the shell does not do so.
std::vector<std::string> Arguments(int argc, char** argv);

bool IsTerminalOnStandardError();

// From here on writing to a pipe that nobody reads is an error and no signal.
void IgnoreClosedPipes();

// Whether two names stand for one file, however they are spelt.
bool NameOneFile(const std::string& a, const std::string& b);

enum class TargetKind { kNew, kFile, kReadOnly, kDirectory, kDevice };
TargetKind KindOfTarget(const std::string& name);

// Writes to a pipe or a device; "-" is standard output.
void WriteDirectly(const std::string& name, const std::string& contents);

// A file under a temporary name beside the one it is to become. Unless published it goes with the object.
class NewFile {
 public:
  NewFile(const std::string& name, const std::string& contents);
  NewFile(NewFile&& other) noexcept;
  NewFile& operator=(NewFile&&) = delete;
  ~NewFile();

  // Takes the place of the file of that name, in one step. Where that is a link, its target is replaced.
  void Publish();

 private:
  std::string name_;    // for messages
  std::string target_;  // the file itself, where the name is a link
#ifdef _WIN32
  void* handle_ = nullptr;
#else
  std::string temporary_;
#endif
};

}  // namespace tool
