#include "formats/dxf/dxf_output.h"

#include <zbr-drawing/numbers.h>

#include "formats/text/utf8.h"

namespace zbr::formats {

std::string HandleText(DxfHandle handle) {
  std::string digits;
  for (DxfHandle rest = handle; rest != 0 || digits.empty(); rest /= 16) digits.insert(0, 1, "0123456789ABCDEF"[rest % 16]);
  return digits;
}

std::string DxfText(std::string_view text) {
  std::string content;
  for (std::size_t i = 0; i < text.size();) {
    const auto [code, length] = CharacterAt(text, i);
    i += length;
    if (code < 0x20 || code == 0x7F || code > 0xFFFF) {
      content += '?';
    } else if (code < 0x80) {
      content += static_cast<char>(code);
    } else {
      content += "\\U+";
      for (const unsigned shift : {12U, 8U, 4U, 0U}) content += "0123456789ABCDEF"[code >> shift & 0xFU];
    }
  }
  return content;
}

void DxfOutput::Code(int code) {
  text_ += code < 10 ? "  " : (code < 100 ? " " : "");
  text_ += std::to_string(code);
  text_ += '\n';
}

void DxfOutput::Text(int code, std::string_view value) {
  Code(code);
  text_ += value;
  text_ += '\n';
}

void DxfOutput::Integer(int code, long value) {
  Text(code, std::to_string(value));
}

void DxfOutput::Real(int code, double value) {
  Code(code);
  const std::size_t start = text_.size();
  AppendNumber(text_, value);
  if (text_.find_first_of(".e", start) == std::string::npos) text_ += ".0";  // some readers tell kinds of numbers by their looks
  text_ += '\n';
}

void DxfOutput::Handle(int code, DxfHandle handle) {
  if (!IsOld()) Text(code, HandleText(handle));
}

void DxfOutput::Subclass(std::string_view name) {
  if (!IsOld()) Text(100, name);
}

void DxfOutput::Point(int code, const ZBR_PT& p) {
  Real(code, p.x());
  Real(code + 10, p.y());
}

void DxfOutput::Point(int code, const ZBR_PT& p, double z) {
  Point(code, p);
  Real(code + 20, z);
}

void DxfOutput::Start(std::string_view kind, DxfHandle handle, DxfHandle owner) {
  Start(kind);
  Handle(5, handle);
  Handle(330, owner);
}

void DxfOutput::Constants(std::string_view groups) {
  while (!groups.empty()) {
    const std::size_t middle = groups.find('|'), end = std::min(groups.find('|', middle + 1), groups.size());
    Code(static_cast<int>(ParseInteger(groups.substr(0, middle)).value_or(0)));
    text_ += groups.substr(middle + 1, end - middle - 1);
    text_ += '\n';
    groups.remove_prefix(std::min(end + 1, groups.size()));
  }
}

}  // namespace zbr::formats
