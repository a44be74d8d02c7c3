// Files damaged at random: an answer or one line of error, never a crash.

#include <random>
#include <sstream>

#include "tool.h"

namespace {

// Lines of standard error that are no notes or warnings.
int ErrorLines(const std::string& text) {
  std::istringstream lines(text);
  int count = 0;
  for (std::string line; std::getline(lines, line);) {
    const bool remark = line.find(": note: ") != std::string::npos || line.find(": warning: ") != std::string::npos;
    count += remark ? 0 : 1;
  }
  return count;
}

TEST_F(Tool, DamagedFiles) {
  Run("nest $EX/gasket.dxf --deviation 3 -o g.dxf -o g.wkt -o g.geojson -o g.txt; cp $EX/bracket.dxf .");
  const char* const kPieces[] = {"1e308", "-1",     "nan", "((", "]",  "{",    "\n", "999999999",
                                 "LINE",  "SEQEND", "90",  "42", "\"", "\xff", "0"};
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  const std::vector<std::string> files = Files();
  int refused = 0;
  for (int round = 0; round < 150; ++round) {
    const std::string& file = files[below(files.size())];
    std::string text = Read(file);
    for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
      const std::size_t at = below(text.size());
      switch (below(4)) {
        case 0:
          text.resize(at + 1);
          break;
        case 1:
          text[at] = static_cast<char>(below(256));
          break;
        case 2:
          text.replace(at, below(6), kPieces[below(std::size(kPieces))]);
          break;
        default:
          text.insert(at, text.substr(below(text.size()), below(200)));
      }
    }
    Write("damaged-" + file, text);
    const std::string commands[] = {"bool --op xor,union damaged-" + file + " g.txt -o out.svg", "check damaged-" + file,
                                    "clip damaged-" + file + " g.txt --both -o out.svg -o out.dxf"};
    const Outcome outcome = Run(commands[below(3)]);
    ASSERT_LE(outcome.code, 2) << file << " in round " << round << "\n" << outcome.err;
    ASSERT_EQ(ErrorLines(outcome.err), outcome.code == 2 ? 1 : 0) << file << " in round " << round << "\n" << outcome.err;
    refused += outcome.code == 2 ? 1 : 0;
  }
  EXPECT_GT(refused, 30);
  EXPECT_LT(refused, 148);
}

}  // namespace
