// zbr: the command-line tool.

#include <zbr-drawing/frame.h>
#include <zbr/tolerance.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <new>

#include "app/cli/command_line.h"
#include "app/commands/left_out.h"
#include "app/io/system.h"
#include "app/libraries.h"

int main(int argc, char** argv) {
  tool::PrepareProcess();
  try {
    zbrSetEps(tool::kTolerance);
    const int code = tool::CommandLine().Run(tool::Arguments(argc, argv));
    // What was printed may not have arrived: on a full disk, at a closed pipe.
    std::cout.flush();
    if (!std::cout || std::fflush(stdout) != 0 || std::ferror(stdout) != 0) throw tool::Failure("standard output: cannot write");
    return code;
  } catch (const tool::Incomplete& incomplete) {
    std::fprintf(stderr, "%s\n", incomplete.what());
    return tool::kExitFound;
  } catch (const tool::Failure& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  } catch (const std::bad_alloc&) {
    std::fputs("zbr: out of memory\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zbr: %s\n", error.what());
  }
  return tool::kExitError;
}
