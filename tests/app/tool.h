// Runs the tool as a user would.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

struct Outcome {
  int code = -1;  // exit code; 128 + signal when it crashed
  std::string out, err;
};

// Each test has a folder of its own, in which the tool runs.
class Tool : public testing::Test {
 protected:
  Tool();
  ~Tool() override;

  // A line of shell, in which $EX names the folder of the example drawings and zbr is the tool; and one that begins with "zbr".
  Outcome Shell(const std::string& line, const std::string& input = "") const;
  Outcome Run(const std::string& arguments, const std::string& input = "") const;
  // What is printed by a run that has nothing to complain of.
  std::string Output(const std::string& arguments, const std::string& input = "") const;

  void Write(const std::string& file, const std::string& text) const;
  std::string Read(const std::string& file) const;
  std::vector<std::string> Files() const;

  // The value of a line of `zbr info FILE`.
  std::string Info(const std::string& file, const std::string& label) const;
  double Area(const std::string& fileAndOptions) const;

 private:
  std::string folder_;
};

// A DXF file with these entities, given as "LINE 10 0 20 0 11 5 21 0; CIRCLE ...": name, then codes and values.
std::string DxfText(const std::string& entities, int units = 0);
