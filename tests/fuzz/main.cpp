// How a fuzzer is called: by clang's fuzzing engine, or, where there is none, on the files of a folder and on seeded random bytes.
// usage without engine: PROGRAM FOLDER RANDOM-INPUTS
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes(data, size);
  Fuzz(bytes);
  return 0;
}

#ifndef ZBR_FUZZ_ENGINE
namespace {

std::string s_input;  // the name of what runs

#ifdef _WIN32
void TellInput(int /*signal*/) {
  std::fprintf(stderr, "on input %s\n", s_input.c_str());
}

void ListenTo(int signal) {
  std::signal(signal, TellInput);
}
#else
struct sigaction s_before[NSIG];

// Leaves the signal to whoever had it before, a sanitizer perhaps: what raised it runs again.
void TellInput(int signal) {
  std::fprintf(stderr, "on input %s\n", s_input.c_str());
  sigaction(signal, &s_before[signal], nullptr);
}

void ListenTo(int signal) {
  struct sigaction action = {};
  action.sa_handler = TellInput;
  sigaction(signal, &action, &s_before[signal]);
}
#endif

void Run(const std::string& name, const std::string& text) {
  s_input = name;
  const std::vector<std::uint8_t> data(text.begin(), text.end());
  LLVMFuzzerTestOneInput(data.data(), data.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  for (const int signal : {SIGABRT, SIGSEGV, SIGFPE}) ListenTo(signal);
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    Run(file.string(), std::string(std::istreambuf_iterator<char>(in), {}));
  }
  const int inputs = std::atoi(argv[2]);
  for (int seed = 0; seed < inputs; ++seed) {
    std::mt19937_64 random(static_cast<std::uint64_t>(seed));
    std::string text(random() % 400, '\0');
    for (char& c : text) c = static_cast<char>(random());
    Run("seed " + std::to_string(seed), text);
  }
  std::fprintf(stderr, "%zu files, %d random inputs\n", files.size(), inputs);
  return files.empty() ? 1 : 0;
}
#endif
