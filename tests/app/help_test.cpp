// Help and the manual page.

#include <regex>
#include <set>

#include "tool.h"

namespace {

TEST_F(Tool, EveryOptionOfEveryCommandIsInTheManual) {
  const std::string manual = Run("help --man").out;
  EXPECT_EQ(manual.rfind(".TH ZBR 1", 0), 0U);
  std::size_t options = 0;
  for (const std::string command : {"bool", "nest", "inside", "info", "check", "help"}) {
    EXPECT_NE(manual.find(".SS zbr " + command), std::string::npos);
    const std::string help = Run("help " + command).out;
    EXPECT_EQ(help, Run(command + " --help").out);
    const std::regex option("\n  (-[a-z],)?--([a-z]+)");
    for (std::sregex_iterator it(help.begin(), help.end(), option), end; it != end; ++it, ++options) {
      EXPECT_NE(manual.find("\\-\\-" + (*it)[2].str() + "\\fR"), std::string::npos) << (*it)[2];
    }
  }
  EXPECT_GT(options, 20U);
  for (const std::string topic : {"formats", "outputs", "check", "exit", "examples"}) {
    const Outcome outcome = Run("help " + topic);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_GT(outcome.out.size(), 80U) << topic;
  }
}

TEST_F(Tool, HelpFitsTheTerminal) {
  for (const char* arguments : {"help", "help bool", "help formats", "--help"}) {
    const std::string help = Run(arguments).out;
    EXPECT_FALSE(std::regex_search(help, std::regex("[^\n]{100}"))) << help;
    EXPECT_TRUE(arguments == std::string("help formats") || help.find("Usage: zbr") != std::string::npos) << help;
  }
  EXPECT_TRUE(std::regex_match(Run("--version").out, std::regex("zbr \\d+\\.\\d+\\.\\d+\n")));
}

}  // namespace
