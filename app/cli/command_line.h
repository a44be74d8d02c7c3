// The command line: every option of every command, declared once. Help texts and the manual page are made from this.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

#include "app/commands/commands.h"
#include "app/libraries.h"

namespace tool {

// Prose of the manual beside the options; `zbr help TOPIC` prints one.
struct Topic {
  std::string name;
  std::string text;  // paragraphs separated by blank lines, to be filled; lines that start with two blanks are kept as they are
};
const std::vector<Topic>& Topics();

class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Parses and runs. Returns the exit code.
  int Run(std::vector<std::string> arguments);

 private:
  static void DeclareInput(CLI::App& command, InputOptions& input);
  void DeclareBool();
  void DeclareNest();
  void DeclareTransform();
  void DeclareInside();
  void DeclareDraw();
  void DeclareSheet(CLI::App& command);
  void DeclarePick();
  void DeclareOutline();
  void DeclareClip();
  void DeclareFile(const std::string& name, const std::string& description, FileOptions& options);
  void DeclareCheck();
  void DeclareHelp();
  int RunChosen();
  int RunHelp();
  int PrintHelp(const CLI::App& app) const;

  CLI::App app_;
  BoolOptions bool_;
  NestOptions nest_;
  TransformOptions transform_;
  InsideOptions inside_;
  DrawOptions draw_;
  PickOptions pick_;
  OutlineOptions outline_;
  ClipOptions clip_;
  FileOptions info_;
  CheckOptions check_;
  std::string topic_;
  bool manual_ = false;
};

}  // namespace tool
