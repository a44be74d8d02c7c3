// How calls of zbr-drawing and zbr-formats fail: by an exception that says what is wrong, and where in which file.
//
//   try {
//     mesh = zbr::formats::ReadMesh("part.obj");
//   } catch (const zbr::drawing::Failure& failure) {
//     Show(failure.what());  // "part.obj:12: ..."; or File(), Line() and Cause() one by one
//   }
//
// Thrown for bad input and files that cannot be read; std::bad_alloc comes through as it is. After a failure the arguments that
// were passed by reference are to be destroyed or assigned anew.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace zbr::drawing {

class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& cause) : std::runtime_error(cause), cause_(cause) {}
  Failure(const std::string& file, const std::string& cause)
      : std::runtime_error(file + ": " + cause), file_(file), cause_(cause) {}
  // In the form that editors can jump to: "file:line: cause".
  Failure(const std::string& file, std::size_t line, const std::string& cause)
      : std::runtime_error(file + ":" + std::to_string(line) + ": " + cause), file_(file), line_(line), cause_(cause) {}

  const std::string& File() const { return file_; }  // empty: not about a file
  std::size_t Line() const { return line_; }         // from 1; 0: not known, or not a text
  const std::string& Cause() const { return cause_; }

 private:
  std::string file_;
  std::size_t line_ = 0;
  std::string cause_;
};

[[noreturn]] inline void FailAt(const std::string& file, std::size_t line, const std::string& cause) {
  throw Failure(file, line, cause);
}

}  // namespace zbr::drawing
