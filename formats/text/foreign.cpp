#include "formats/text/foreign.h"

#include <zbr-formats/files.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace zbr::formats {
namespace {

struct Foreign {
  std::string_view start;
  const char* cause;
};

constexpr Foreign kForeign[] = {
    {"AC10", "is a DWG file; save it as DXF"},
    {"AC2.", "is a DWG file; save it as DXF"},
    {"AC1.", "is a DWG file; save it as DXF"},
    {"ISO-10303-21;", "is a STEP file; export a drawing as DXF, a model as STL, OBJ, PLY, OFF, glTF or 3MF"},
    {"%PDF-", "is a PDF file; export the drawing as DXF"},
    {"%!PS", "is a PostScript file; export the drawing as DXF"},
    {"\xC5\xD0\xD3\xC6", "is a PostScript file; export the drawing as DXF"},
    {"\x89PNG", "is a picture of pixels; export the drawing as DXF"},
    {"\xff\xd8\xff", "is a picture of pixels; export the drawing as DXF"},
    {"<!DOCTYPE html", "is a web page, perhaps the answer of a server in place of a file"},
    {"<!doctype html", "is a web page, perhaps the answer of a server in place of a file"},
    {"<html", "is a web page, perhaps the answer of a server in place of a file"},
    {"\x1f\x8b", "is packed by gzip; unpack it first"},
    {"\xff\xfe", "is text in UTF-16; save it in UTF-8"},
    {"\xfe\xff", "is text in UTF-16; save it in UTF-8"},
    {std::string_view("PK\x03\x04", 4),
     "is a ZIP archive; a model in 3MF has to be named .3mf or told to be one, others are to be unpacked"},
};

}  // namespace

void RefuseForeign(std::string_view bytes, const std::string& name) {
  const std::size_t first = std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size());
  for (const Foreign& foreign : kForeign) {
    if (bytes.substr(first).starts_with(foreign.start)) throw Failure(name, foreign.cause);
  }
}

void RefuseBinary(std::string_view bytes, const std::string& name) {
  // Texts may be padded or have stray characters, but do not begin with them; one of 1,000 binary files begins with none.
  constexpr std::size_t kLooked = 64;
  const auto isControl = [](unsigned char c) { return c < '\t' || (c > '\r' && c < ' '); };
  const std::string_view start = bytes.substr(0, kLooked);
  if (std::any_of(start.begin(), start.end(), isControl))
    throw Failure(name, "is a binary file of another kind than its name says");
}

void RefuseForeignFile(const std::string& file) {
  constexpr std::size_t kStart = 4096;  // bytes, blanks before the first sign included
  using std::filesystem::file_type;
  std::error_code ignored;
  const file_type type = file == "-" ? file_type::character : std::filesystem::status(PathOf(file), ignored).type();
  if (type == file_type::regular || type == file_type::directory || type == file_type::not_found)
    RefuseForeign(ReadFile(file, kStart), file);
}

}  // namespace zbr::formats
