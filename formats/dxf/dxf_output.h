// Groups of a DXF file as text, with the differences between the versions of the format.
#pragma once

#include <zbr-formats/dxf.h>
#include <zbr/planar.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zbr::formats {

// A record's own number in the file, by which others refer to it; written in hexadecimal digits. 0 names nothing.
using DxfHandle = std::size_t;

std::string HandleText(DxfHandle handle);

// Text as these versions hold it: in ASCII, other characters as "\U+00E9". What is no valid sequence, or needs more than four
// digits, becomes '?'; so do control characters, which would break the lines of the file.
std::string DxfText(std::string_view text);

class DxfOutput {
 public:
  explicit DxfOutput(DxfVersion version) : version_(version) {}

  bool IsOld() const { return version_ == DxfVersion::kR12; }

  void Text(int code, std::string_view value);
  void Integer(int code, long value);
  void Real(int code, double value);
  void Handle(int code, DxfHandle handle);          // not in old files, which do without
  void Subclass(std::string_view name);             // the same
  void Point(int code, const ZBR_PT& p, double z);  // three groups: code, code + 10, code + 20
  void Point(int code, const ZBR_PT& p);

  // Starts a record of this kind.
  void Start(std::string_view kind) { Text(0, kind); }
  void Start(std::string_view kind, DxfHandle handle, DxfHandle owner);

  // Several groups of constant text at once: "70|1|40|0.5".
  void Constants(std::string_view groups);

  void Append(const DxfOutput& other) { text_ += other.text_; }
  std::string Take() { return std::move(text_); }

 private:
  void Code(int code);

  DxfVersion version_;
  std::string text_;
};

}  // namespace zbr::formats
