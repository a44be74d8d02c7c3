// The sub-commands: what each is given and the function that runs it. All return the exit code and throw Failure for errors.
#pragma once

#include <string>
#include <vector>

#include "geometry/contours.h"

namespace tool {

inline constexpr int kExitFine = 0;
inline constexpr int kExitFound = 1;  // of check alone
inline constexpr int kExitError = 2;

// Options of every command that reads drawings.
struct InputOptions {
  std::string format;               // of files whose names do not tell
  std::vector<std::string> layers;  // empty: all
  FlattenOptions flatten{-1.0, -1.0};
};

struct BoolOptions {
  InputOptions input;
  std::vector<std::string> operations;
  std::vector<std::string> files;  // A, B, and outputs that followed the one of -o
  std::vector<std::string> outputs;
  bool stats = false;
};

struct NestOptions {
  InputOptions input;
  std::string file;
  std::vector<std::string> outputs;
};

struct InsideOptions {
  InputOptions input;
  std::string file;
  std::vector<std::string> coordinates;  // empty: points are read from standard input
};

struct FileOptions {
  InputOptions input;
  std::string file;
};

int RunBool(const BoolOptions& options);
int RunNest(const NestOptions& options);
int RunInside(const InsideOptions& options);
int RunInfo(const FileOptions& options);
int RunCheck(const FileOptions& options);

}  // namespace tool
