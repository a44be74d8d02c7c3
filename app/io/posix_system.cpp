// The tool on POSIX systems.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>

#include "app/io/system.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

using Closer = std::unique_ptr<const int, void (*)(const int*)>;

Closer CloseAtEnd(const int& descriptor) {
  return {&descriptor, [](const int* d) { ::close(*d); }};
}

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

// Each stage of a drawing allocates arrays of a million and frees those of the stage before. By default glibc gives large ones back
// to the system and gets new pages for the next, which the system has to clear: a third of its time for a process (0.7 to 0.44 s
// for 90,000 boxes).
void KeepFreedMemory() {
#if defined(__GLIBC__)
  constexpr int kLargest = std::numeric_limits<int>::max();
  ::mallopt(M_MMAP_THRESHOLD, kLargest);
  ::mallopt(M_TRIM_THRESHOLD, kLargest);
#endif
}

}  // namespace

void PrepareProcess() {
  std::signal(SIGXFSZ, SIG_IGN);  // writing then fails, and what was written is removed
  KeepFreedMemory();
}

std::vector<std::string> Arguments(int argc, char** argv) {
  return {argv + 1, argv + argc};
}

bool IsTerminalOnStandardError() {
  return ::isatty(STDERR_FILENO) == 1;
}

void IgnoreClosedPipes() {
  std::signal(SIGPIPE, SIG_IGN);
}

bool NameOneFile(const std::string& a, const std::string& b) {
  const auto whole = [](const std::string& name) {  // nothing for what has no place, as an empty name
    std::error_code error;
    const fs::path path = fs::absolute(name, error);
    return error ? fs::path() : fs::weakly_canonical(path, error);
  };
  const fs::path first = whole(a);
  return !first.empty() && first == whole(b);
}

TargetKind KindOfTarget(const std::string& name) {
  std::error_code ignored;
  const fs::file_status status = fs::status(name, ignored);
  if (fs::is_directory(status)) return TargetKind::kDirectory;
  if (fs::is_regular_file(status)) return IsReadOnly(name, status) ? TargetKind::kReadOnly : TargetKind::kFile;
  return fs::exists(status) ? TargetKind::kDevice : TargetKind::kNew;
}

void WriteDirectly(const std::string& name, const std::string& contents) {
  if (name == "-") return WriteAll(STDOUT_FILENO, contents, "standard output");
  const int descriptor = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) FailWithErrno(name, "cannot open");
  const Closer closer = CloseAtEnd(descriptor);
  WriteAll(descriptor, contents, name);
}

NewFile::NewFile(const std::string& name, const std::string& contents) : name_(name), target_(name) {
  std::error_code ignored;
  if (fs::is_symlink(name, ignored)) target_ = fs::weakly_canonical(name).string();
  std::string pattern = target_ + ".XXXXXX";
  const int descriptor = ::mkstemp(pattern.data());
  if (descriptor < 0) FailWithErrno(name, "cannot write");
  const Closer closer = CloseAtEnd(descriptor);
  temporary_ = pattern;
  try {
    SetMode(descriptor, target_);
    WriteAll(descriptor, contents, name);
  } catch (...) {
    ::unlink(pattern.c_str());
    throw;
  }
}

NewFile::NewFile(NewFile&& other) noexcept
    : name_(std::move(other.name_)), target_(std::move(other.target_)), temporary_(std::exchange(other.temporary_, "")) {}

NewFile::~NewFile() {
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void NewFile::Publish() {
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) FailWithErrno(name_, "cannot write");
  temporary_.clear();
}

}  // namespace tool
