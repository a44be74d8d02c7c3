// Help and the manual page.

#include <sstream>

#include "tool.h"

namespace {

TEST_F(Tool, EveryOptionOfEveryCommandIsInTheManual) {
  const std::string manual = Run("help --man").out;
  EXPECT_EQ(manual.rfind(".TH ZBR 1", 0), 0U);
  std::size_t options = 0;
  for (const std::string command : {"bool", "clip", "nest", "inside", "info", "check", "draw", "outline", "pick", "help"}) {
    EXPECT_NE(manual.find(".SS zbr " + command), std::string::npos);
    const std::string help = Run("help " + command).out;
    EXPECT_EQ(help, Run(command + " --help").out);
    for (std::size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2), ++options) {
      std::string name = "\\-\\-";
      for (const char c : help.substr(at + 2, help.find_first_of(" ,.;\n'", at) - at - 2))
        name.append(c == '-' ? "\\-" : std::string(1, c));
      EXPECT_NE(manual.find(name), std::string::npos) << name;
    }
  }
  EXPECT_GT(options, 20U);
  for (const std::string topic : {"formats", "outputs", "outlines", "checks", "views", "exit", "examples"}) {
    const Outcome outcome = Run("help " + topic);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_GT(outcome.out.size(), 80U) << topic;
    EXPECT_EQ(outcome.out.find("Usage:"), std::string::npos) << topic << " is a command, too";
  }
}

TEST_F(Tool, HelpFitsTheTerminal) {
  for (const char* arguments : {"help", "help bool", "help formats", "--help"}) {
    const std::string help = Run(arguments).out;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 96U) << line;
    EXPECT_TRUE(arguments == std::string("help formats") || help.find("Usage: zbr") != std::string::npos) << help;
  }
  EXPECT_EQ(Run("--version").out, "zbr " ZBR_VERSION "\n");
}

}  // namespace
