// Registers every entry of the data files as a test.
#include "entries/entry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

const std::string& Entry::At(const std::string& key) const {
  for (const auto& [k, text] : keys) {
    if (k == key) return text;
  }
  throw std::invalid_argument(suite + ", " + name + ": nothing says '" + key + "'");
}

std::string Entry::Or(const std::string& key, const std::string& otherwise) const {
  const std::vector<std::string> all = All(key);
  return all.empty() ? otherwise : all[0];
}

std::vector<std::string> Entry::All(const std::string& key) const {
  std::vector<std::string> texts;
  for (const auto& [k, text] : keys) {
    if (k == key) texts.push_back(text);
  }
  return texts;
}

std::vector<Entry> ReadEntries(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& file : std::filesystem::directory_iterator(folder)) files.push_back(file.path());
  std::sort(files.begin(), files.end());
  std::vector<Entry> entries;
  for (const auto& file : files) {
    if (file.extension() != ".txt") continue;
    std::ifstream in(file);
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
      if (text.empty() || text[0] == '#') continue;
      const std::size_t blank = std::min(text.find(' '), text.size());
      const std::string key = text.substr(0, blank);
      const std::string rest = text.substr(std::min(blank + 1, text.size()));
      if (key == "case")
        entries.push_back({file.stem().string(), rest, line, {}});
      else
        entries.back().keys.emplace_back(key, rest);
    }
  }
  return entries;
}

std::vector<double> Numbers(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  std::istringstream in(text);
  std::vector<double> numbers;
  for (std::string word; in >> word;) numbers.push_back(std::stod(word));
  return numbers;
}

std::vector<ZBR_PT3> Points(const std::string& text) {
  const std::vector<double> c = Numbers(text);
  if (c.size() % 3 != 0) throw std::invalid_argument("not points: " + text);
  std::vector<ZBR_PT3> points;
  for (std::size_t k = 0; k < c.size(); k += 3) points.emplace_back(c[k], c[k + 1], c[k + 2]);
  return points;
}

ZBR_PT PlanarPoint(const std::string& text) {
  const std::vector<double> c = Numbers(text);
  return {c.at(0), c.at(1)};
}

std::string Text(const std::vector<std::vector<ZBR_PT>>& lines) {
  LoopList loops;
  for (const auto& line : lines) loops.push_back(MakeLoop(line));
  return ToText(loops);
}

namespace {

class EntryTest : public testing::Test {
 public:
  EntryTest(const Entry& entry, void (*run)(const Entry&)) : entry_(entry), run_(run) {}
  void TestBody() override {
    SCOPED_TRACE(entry_.suite + ".txt:" + std::to_string(entry_.line) + ": " + entry_.name + "\n  why: " + entry_.At("why"));
    run_(entry_);
  }

 private:
  const Entry& entry_;
  void (*run_)(const Entry&);
};

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, void (*)(const Entry&)> runs = {
      {"booleans", RunBoolean},     {"regressions", RunBoolean}, {"chains", RunChain},     {"clips", RunClip},
      {"crossings", RunCrossings},  {"edges", RunEdge},          {"locations", RunLocate}, {"loops", RunLoops},
      {"nests", RunNest},           {"orders", RunOrders},       {"outlines", RunOutline}, {"picks", RunPick},
      {"predicates", RunPredicate}, {"relations", RunRelation},  {"scenes", RunScene},
  };
  testing::InitGoogleTest(&argc, argv);
  const std::vector<Entry> entries = ReadEntries(ZBR_TEST_DATA);
  std::set<std::string> names;
  for (const Entry& entry : entries) {
    const auto run = runs.find(entry.suite);
    std::string name = entry.name;
    std::replace(name.begin(), name.end(), '-', '_');  // which in a filter says "not"
    if (run == runs.end() || !names.insert(entry.suite + name).second) {
      std::fprintf(stderr, "%s.txt:%d: unknown file, or a name used twice: %s\n", entry.suite.c_str(), entry.line, name.c_str());
      return 1;
    }
    testing::RegisterTest(entry.suite.c_str(), name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [&entry, run]() -> testing::Test* { return new EntryTest(entry, run->second); });
  }
  return RUN_ALL_TESTS();
}
