// Cases from the data files, each with the areas it must give.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/expect.h"

namespace {

struct Entry {
  std::string name, areas, a, b;
};

// The text after a key word at the start of a line, if the line has it.
bool Takes(const std::string& line, const std::string& key, std::string& out) {
  if (line.rfind(key + ' ', 0) != 0) return false;
  out = line.substr(key.size() + 1);
  return true;
}

std::vector<Entry> ReadEntries(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<Entry> entries;
  std::string why;
  for (std::string line, name; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (Takes(line, "case", name)) {
      entries.push_back({name, "", "", ""});
      continue;
    }
    if (entries.empty()) throw std::runtime_error("no case before: " + line);
    Entry& entry = entries.back();
    if (!Takes(line, "why", why) && !Takes(line, "areas", entry.areas) && !Takes(line, "A", entry.a) &&
        !Takes(line, "B", entry.b)) {
      throw std::runtime_error("not understood: " + line);
    }
  }
  return entries;
}

TEST(Regression, EveryEntryOfTheDataFiles) {
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(ZBR_TEST_DATA)) {
    if (file.path().extension() != ".txt") continue;
    for (const Entry& entry : ReadEntries(file.path())) {
      SCOPED_TRACE(entry.name);
      ExpectBoolean(entry.a, entry.b, entry.areas);
      ++count;
    }
  }
  EXPECT_GE(count, 5);
}

}  // namespace
