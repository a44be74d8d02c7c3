// An entity, or a record of a table, with its groups.
#pragma once

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "formats/dxf/dxf_groups.h"

namespace zbr::formats {

// What a file states of itself that the reading of others depends on.
struct DxfFile {
  std::string name;     // for messages
  bool isUtf8 = false;  // texts are, since AutoCAD 2007
};

struct DxfRecord {
  const DxfFile* file = nullptr;
  std::string_view kind;
  std::size_t line = 0;
  std::vector<DxfGroup> groups;     // without the one that names the kind
  std::vector<DxfRecord> vertices;  // of old polylines

  const DxfGroup* Find(int code) const;
  bool Has(int code) const { return Find(code) != nullptr; }

  // Of the first group of this code, else `otherwise`. Fail, naming the line, on a value that is not a finite number.
  double Real(int code, double otherwise = 0.0) const;
  long long Integer(int code, long long otherwise = 0) const;
  ZBR_PT3 Point(int code) const;  // of code, code + 10, code + 20
  ZBR_PT3 Point(int code, const ZBR_PT3& otherwise) const;
  std::string Name(int code) const;  // a text in UTF-8

  double Real(const DxfGroup& group) const;
  long long Integer(const DxfGroup& group) const;
};

// The text in UTF-8: "\U+00E9" replaced by what it stands for. Other bytes than UTF-8 in old files are taken for those of Western
// Windows, whatever code page the file names, so that different names stay different.
std::string DxfTextOf(std::string_view text, bool isUtf8);

}  // namespace zbr::formats
