// Writes a generated input to files, for the command-line tool or for other programs.
//
//   make_workload FAMILY SIZE A B     a pair of regions, for the families of Booleans
//   make_workload FAMILY SIZE FILE    a list of rings, for the families of nesting
//
// A file name ending in .wkt gives a MULTIPOLYGON, any other a plain text of rings: a point "x y" a line, an empty line between
// rings. Coordinates are written exactly.

#include <charconv>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "workloads.h"

namespace bench {
namespace {

// The shortest text that reads back as the same number.
void Append(double value, std::string& text) {
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void AppendPoint(const ZBR_PT& p, std::string& text) {
  Append(p.x(), text);
  text += ' ';
  Append(p.y(), text);
}

void AppendWktRing(const Ring& ring, std::string& text) {
  text += '(';
  for (const ZBR_PT& p : ring) {
    AppendPoint(p, text);
    text += ", ";
  }
  AppendPoint(ring.front(), text);
  text += ')';
}

std::string ToWkt(const Region& region) {
  if (region.empty()) return "MULTIPOLYGON EMPTY\n";
  std::string text = "MULTIPOLYGON (";
  for (const Polygon& polygon : region) {
    text += &polygon == &region.front() ? "(" : ",\n(";
    AppendWktRing(polygon.outer, text);
    for (const Ring& hole : polygon.holes) {
      text += ",\n";
      AppendWktRing(hole, text);
    }
    text += ')';
  }
  return text + ")\n";
}

std::string ToPlainText(const Region& region) {
  std::string text;
  for (const Ring& ring : ShuffledRings(region)) {
    if (!text.empty()) text += '\n';
    for (const ZBR_PT& p : ring) {
      AppendPoint(p, text);
      text += '\n';
    }
  }
  return text;
}

void Write(const Region& region, const std::string& path) {
  const bool wkt = path.ends_with(".wkt");
  std::ofstream file(path, std::ios::binary);
  file << (wkt ? ToWkt(region) : ToPlainText(region));
  file.close();
  if (!file) throw std::runtime_error(path + ": cannot be written");
}

std::size_t ParseSize(std::string_view text) {
  std::size_t size = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
  if (error != std::errc() || end != text.data() + text.size() || size == 0) {
    throw std::runtime_error(std::string(text) + ": the size must be a positive number");
  }
  return size;
}

// Whether the family exists and goes into as many files.
bool Make(std::string_view name, std::size_t size, const std::vector<std::string>& files) {
  for (const PairFamily& family : PairFamilies()) {
    if (family.name != name || files.size() != 2) continue;
    const RegionPair pair = family.make(size);
    Write(pair.a, files[0]);
    Write(pair.b, files[1]);
    return true;
  }
  for (const NestFamily& family : NestFamilies()) {
    if (family.name != name || files.size() != 1) continue;
    Write(family.make(size), files[0]);
    return true;
  }
  return false;
}

void PrintUsage() {
  std::fprintf(stderr, "usage: make_workload FAMILY SIZE A B   with FAMILY one of");
  for (const PairFamily& family : PairFamilies()) std::fprintf(stderr, " %s", family.name.data());
  std::fprintf(stderr, "\n       make_workload FAMILY SIZE FILE  with FAMILY one of");
  for (const NestFamily& family : NestFamilies()) std::fprintf(stderr, " %s", family.name.data());
  std::fprintf(stderr, "\nfiles: .wkt, or anything else for a plain text of rings\n");
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    if (argc >= 4 && bench::Make(argv[1], bench::ParseSize(argv[2]), std::vector<std::string>(argv + 3, argv + argc))) return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_workload: %s\n", error.what());
    return 1;
  }
  bench::PrintUsage();
  return 2;
}
