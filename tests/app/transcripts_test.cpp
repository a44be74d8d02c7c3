// Runs of the tool as they look on a terminal: the files of cases/ tell what is typed and what is answered.
//
//   // comment
//   == name of a case, which has an empty folder to itself
//   -- FILE              the lines below are what it holds
//   -- FILE dxf [UNITS]  the same as entities (tool.h)
//   -- FILE box          boxes: a corner and the opposite one from it, in a line
//   $ command            a line of shell; below it what is printed, and after "! " each line of standard error
//   ? CODE               the exit code, where it is neither 0 nor, after an error, 2
//
// Blank lines at the end do not matter. A run that fails prints nothing and leaves the folder as it was.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "boxes.h"
#include "tool.h"

namespace {

namespace fs = std::filesystem;

struct Step {
  std::string file, kind, command;  // a file of a kind, or a command
  std::string text, errors;         // contents, or output
  int code = 0;
};

struct Case {
  std::string name;
  std::vector<Step> steps;
};

// For the names of tests.
void PrintTo(const Case& c, std::ostream* out) {
  *out << c.name;
}

std::string Trimmed(const std::string& text) {
  const std::size_t end = text.find_last_not_of('\n');
  return end == std::string::npos ? "" : text.substr(0, end + 1) + "\n";
}

Step FileStep(const std::string& line) {
  Step step;
  std::istringstream words(line.substr(3));
  words >> step.file;
  std::getline(words >> std::ws, step.kind);
  return step;
}

void AddLine(Step& step, const std::string& line) {
  const std::string start = line.substr(0, 2);
  if (start == "? ") {
    step.code = std::stoi(line.substr(2));
  } else if (start == "! ") {
    step.errors += line.substr(2) + "\n";
    const bool isError = line.find(": note: ") == std::string::npos && line.find(": warning: ") == std::string::npos;
    step.code = isError ? 2 : step.code;
  } else {
    step.text += line + "\n";
  }
}

std::vector<Case> AllCases() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(ZBR_CASES)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<Case> cases;
  for (const fs::path& file : files) {
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
      const std::string start = line.substr(0, 3);
      if (start == "== ") {
        cases.push_back({file.stem().string() + "_" + line.substr(3), {}});
      } else if (start == "-- ") {
        cases.back().steps.push_back(FileStep(line));
      } else if (start.substr(0, 2) == "$ ") {
        cases.back().steps.push_back({"", "", line.substr(2), "", "", 0});
      } else if (start != "// " && !cases.empty() && !cases.back().steps.empty()) {
        AddLine(cases.back().steps.back(), line);
      }
    }
  }
  return cases;
}

std::string BoxesText(const std::string& text) {
  std::vector<Box> boxes;
  std::istringstream numbers(text);
  for (Box box; numbers >> box.low[0] >> box.low[1] >> box.low[2] >> box.size[0] >> box.size[1] >> box.size[2];)
    boxes.push_back(box);
  return ObjText(boxes);
}

std::string ContentsOf(const Step& step) {
  if (step.kind == "box") return BoxesText(step.text);
  if (step.kind.rfind("dxf", 0) != 0) return Trimmed(step.text);
  return DxfText(Trimmed(step.text), step.kind == "dxf" ? 0 : std::stoi(step.kind.substr(4)));
}

class Transcripts : public Tool, public testing::WithParamInterface<Case> {};

TEST_P(Transcripts, AreAsTheyWere) {
  for (const Step& step : GetParam().steps) {
    if (!step.file.empty()) {
      Write(step.file, ContentsOf(step));
      continue;
    }
    const std::vector<std::string> files = Files();
    const Outcome outcome = Shell(step.command);
    EXPECT_EQ(outcome.code, step.code) << step.command;
    EXPECT_EQ(Trimmed(outcome.out), Trimmed(step.text)) << step.command;
    EXPECT_EQ(outcome.err, step.errors) << step.command;
    if (step.code == 2) {
      EXPECT_EQ(Files(), files) << step.command;
    }
  }
}
INSTANTIATE_TEST_SUITE_P(, Transcripts, testing::ValuesIn(AllCases()), [](const auto& p) { return p.param.name; });

}  // namespace
