// Writing files that appear complete or not at all.
#include "app/io/output_files.h"

#include <algorithm>

#include "app/libraries.h"

namespace tool {
namespace {

bool IsRegularOrNew(const std::string& name) {
  const TargetKind kind = KindOfTarget(name);
  if (kind == TargetKind::kDirectory) throw Failure(name, "is a directory");
  if (kind == TargetKind::kReadOnly) throw Failure(name, "is read-only");
  return kind != TargetKind::kDevice;
}

}  // namespace

bool IsSameFile(const std::string& a, const std::string& b) {
  return a == b || (a != "-" && b != "-" && NameOneFile(a, b));
}

void OutputFiles::Add(const std::string& name, std::string contents) {
  for (const Pending& file : files_) {
    if (IsSameFile(file.name, name)) throw Failure(name, "named twice as output");
  }
  files_.push_back({name, std::move(contents), {}});
}

void OutputFiles::Commit() {
  for (Pending& file : files_) {
    if (file.name != "-" && IsRegularOrNew(file.name)) file.written.emplace(file.name, file.contents);
  }
  // What may still fail comes before any file gets its name. A reader that has gone must not end the run while files are left over.
  if (std::any_of(files_.begin(), files_.end(), [](const Pending& file) { return file.written.has_value(); })) IgnoreClosedPipes();
  for (const Pending& file : files_) {
    if (!file.written) WriteDirectly(file.name, file.contents);
  }
  for (Pending& file : files_) {
    if (file.written) file.written->Publish();
  }
}

void WriteToStandardOutput(std::string text) {
  OutputFiles output;
  output.Add("-", std::move(text));
  output.Commit();
}

}  // namespace tool
