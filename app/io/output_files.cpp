// Writing files that appear complete or not at all.
#include "app/io/output_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>

#include "app/libraries.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailWithErrno(const std::string& name, const char* what) {
  throw Failure(name, what + std::string(": ") + std::strerror(errno));
}

void WriteAll(int descriptor, const std::string& contents, const std::string& name) {
  std::size_t done = 0;
  while (done < contents.size()) {
    const ssize_t n = ::write(descriptor, contents.data() + done, contents.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) FailWithErrno(name, "cannot write");
    done += static_cast<std::size_t>(n);
  }
}

void WriteDirectly(const std::string& name, const std::string& contents) {
  const int descriptor = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) FailWithErrno(name, "cannot open");
  const std::unique_ptr<const int, void (*)(const int*)> closer(&descriptor, [](const int* d) { ::close(*d); });
  WriteAll(descriptor, contents, name);
}

// mkstemp creates private files; an output has the mode of the file it replaces, or that of any new file.
void SetMode(int descriptor, const std::string& target) {
  struct stat old;
  if (::stat(target.c_str(), &old) == 0) {
    ::fchmod(descriptor, old.st_mode & 07777U);
    return;
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(descriptor, 0666U & ~mask);
}

// A file that nobody may write is not to be replaced either, which the rights of the folder alone would allow, and root may all.
bool IsReadOnly(const std::string& name, const fs::file_status& status) {
  constexpr fs::perms kWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  return (status.permissions() & kWrite) == fs::perms::none || ::access(name.c_str(), W_OK) != 0;
}

bool IsRegularOrNew(const std::string& name) {
  std::error_code ignored;
  const fs::file_status status = fs::status(name, ignored);
  if (fs::is_directory(status)) throw Failure(name, "is a directory");
  if (fs::is_regular_file(status) && IsReadOnly(name, status)) throw Failure(name, "is read-only");
  return !fs::exists(status) || fs::is_regular_file(status);
}

}  // namespace

bool IsSameFile(const std::string& a, const std::string& b) {
  if (a == b) return true;
  if (a == "-" || b == "-") return false;
  std::error_code error;
  const fs::path first = fs::weakly_canonical(fs::absolute(a), error);
  if (error) return false;
  return first == fs::weakly_canonical(fs::absolute(b), error) && !error;
}

OutputFiles::~OutputFiles() {
  for (const Pending& file : files_) {
    if (!file.temporary.empty()) ::unlink(file.temporary.c_str());
  }
}

void OutputFiles::Add(const std::string& name, std::string contents) {
  for (const Pending& file : files_) {
    if (IsSameFile(file.name, name)) throw Failure(name, "named twice as output");
  }
  files_.push_back({name, std::move(contents), "", name});
}

void OutputFiles::Commit() {
  for (Pending& file : files_) {
    if (file.name == "-" || !IsRegularOrNew(file.name)) continue;
    std::error_code ignored;
    if (fs::is_symlink(file.name, ignored)) file.target = fs::weakly_canonical(file.name).string();  // the link itself stays
    std::string pattern = file.target + ".XXXXXX";
    const int descriptor = ::mkstemp(pattern.data());
    if (descriptor < 0) FailWithErrno(file.name, "cannot write");
    file.temporary = pattern;
    const std::unique_ptr<const int, void (*)(const int*)> closer(&descriptor, [](const int* d) { ::close(*d); });
    SetMode(descriptor, file.target);
    WriteAll(descriptor, file.contents, file.name);
  }
  // What may still fail comes before any file gets its name. A reader that has gone must not end the run while files are left over.
  const auto isLeftOver = [](const Pending& file) { return !file.temporary.empty(); };
  if (std::any_of(files_.begin(), files_.end(), isLeftOver)) std::signal(SIGPIPE, SIG_IGN);
  for (Pending& file : files_) {
    if (file.name == "-") {
      WriteAll(STDOUT_FILENO, file.contents, "standard output");
    } else if (file.temporary.empty()) {
      WriteDirectly(file.name, file.contents);
    }
  }
  for (Pending& file : files_) {
    if (file.temporary.empty()) continue;
    if (std::rename(file.temporary.c_str(), file.target.c_str()) != 0) FailWithErrno(file.name, "cannot write");
    file.temporary.clear();
  }
}

void WriteToStandardOutput(std::string text) {
  OutputFiles output;
  output.Add("-", std::move(text));
  output.Commit();
}

}  // namespace tool
