// How help on the terminal looks.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace tool {

// The parser's own layout with the arguments named as a person would write them: "zbr bool [OPTION]... A B".
class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat();
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option_name(const CLI::Option* option, bool isPositional) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
};

// Makes one line of each paragraph of a topic.
std::string Filled(const std::string& text);

// Breaks long lines between words. Lines that start with two blanks go on below the column of the descriptions.
std::string Wrapped(const std::string& text);

}  // namespace tool
