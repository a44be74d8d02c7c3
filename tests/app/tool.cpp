#include "tool.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

// The one built beside these tests; or another, as one for another system together with what runs it.
std::string Program() {
  const char* const other = std::getenv("ZBR_TEST_TOOL");
  return other != nullptr ? other : ZBR_TOOL;
}

}  // namespace

Tool::Tool() {
  std::string pattern = (fs::temp_directory_path() / "zbr-app-test-XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
}

Tool::~Tool() {
  fs::remove_all(folder_);
}

Outcome Tool::Shell(const std::string& line, const std::string& input) const {
  const std::string captured = folder_ + ".captured";
  fs::create_directory(captured);
  std::ofstream(captured + "/in", std::ios::binary) << input;
  const std::string script = "EX=" ZBR_EXAMPLES "\nzbr() { " + Program() + " \"$@\"; }\ncd " + folder_ + "\n" + line + "\n";
  std::ofstream(captured + "/script") << script;
  const std::string redirections = " <" + captured + "/in >" + captured + "/out 2>" + captured + "/err";
  const int status = std::system(("sh " + captured + "/script" + redirections).c_str());
  Outcome outcome;
  outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  outcome.out = Read("../" + fs::path(captured).filename().string() + "/out");
  outcome.err = Read("../" + fs::path(captured).filename().string() + "/err");
  fs::remove_all(captured);
  return outcome;
}

Outcome Tool::Run(const std::string& arguments, const std::string& input) const {
  return Shell("zbr " + arguments, input);
}

std::string Tool::Output(const std::string& arguments, const std::string& input) const {
  const Outcome outcome = Run(arguments, input);
  EXPECT_EQ(outcome.code, 0) << arguments;
  EXPECT_EQ(outcome.err, "") << arguments;
  return outcome.out;
}

void Tool::Write(const std::string& file, const std::string& text) const {
  std::ofstream(folder_ + "/" + file, std::ios::binary) << text;
}

std::string Tool::Read(const std::string& file) const {
  std::ostringstream text;
  text << std::ifstream(folder_ + "/" + file, std::ios::binary).rdbuf();
  return text.str();
}

std::vector<std::string> Tool::Files() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string Tool::Info(const std::string& file, const std::string& label) const {
  const Outcome outcome = Run("info " + file);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  std::istringstream lines(outcome.out);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(label + " ", 0) == 0) return line.substr(line.find_first_not_of(' ', label.size()));
  }
  return "";
}

double Tool::Area(const std::string& fileAndOptions) const {
  return std::strtod(Info(fileAndOptions, "area").c_str(), nullptr);
}

std::string DxfText(const std::string& entities, int units) {
  std::string text = "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n" + std::to_string(units) + "\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
  std::istringstream list(entities);
  for (std::string entity; std::getline(list, entity, ';');) {
    std::istringstream words(entity);
    std::string word;
    if (words >> word) text += "0\n" + word + "\n";
    while (words >> word) text += word + "\n";
  }
  return text + "0\nENDSEC\n0\nEOF\n";
}
