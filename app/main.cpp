// zbr: the command-line tool.

#include <zbr/tolerance.h>

#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "geometry/frame.h"
#include "io/failure.h"

int main(int argc, char** argv) {
  try {
    zbrSetEps(tool::kTolerance);
    return tool::CommandLine().Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const tool::Failure& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  } catch (const std::bad_alloc&) {
    std::fputs("zbr: out of memory\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zbr: %s\n", error.what());
  }
  return tool::kExitError;
}
