// What one run of a benchmark program measures: the arguments, and which peers are left out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// The sizes of one family: a short run, and the sizes whose results are reported. Growth is taken from the last two.
struct Sizes {
  std::string_view family;
  std::vector<std::size_t> quick;
  std::vector<std::size_t> full;
};

struct Selection {
  bool quick = false;
  std::vector<std::string> families;  // none: all

  bool Wants(std::string_view family) const;
  const std::vector<std::size_t>& Of(const Sizes& sizes) const { return quick ? sizes.quick : sizes.full; }
};

// Reads [--quick] [FAMILY...]; `known` are the families there are. On anything else prints the usage and ends the program with
// exit code 2.
Selection ParseSelection(int argc, char** argv, const std::vector<Sizes>& known);

// Whether `peer` is left out of an operation on a family at size n, because a single run would take longer than about twenty
// seconds or tell nothing new. Tells so on standard error, once per reason.
bool IsLeftOut(std::string_view peer, std::string_view family, std::string_view operation, std::size_t n);

}  // namespace bench
