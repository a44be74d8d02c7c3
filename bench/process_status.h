// What the system tells of this process.
#pragma once

#include <fstream>
#include <string>

namespace bench {

// A value of the process's status file, in MiB.
inline double StatusMib(const std::string& key) {
  std::ifstream status("/proc/self/status");
  std::string word;
  double kib = 0.0;
  while (status >> word) {
    if (word == key + ":") status >> kib;
  }
  return kib / 1024.0;
}

}  // namespace bench
