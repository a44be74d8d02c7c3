// Cases from the data files, each with the areas it must give.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/expect.h"

namespace {

struct Entry {
  std::string name, areas, a, b;
};

std::vector<Entry> ReadEntries(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<Entry> entries;
  for (std::string key, text; in >> key && std::getline(in >> std::ws, text);) {
    if (key == "case") entries.push_back({text, "", "", ""});
    if (key == "areas") entries.back().areas = text;
    if (key == "A") entries.back().a = text;
    if (key == "B") entries.back().b = text;
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
