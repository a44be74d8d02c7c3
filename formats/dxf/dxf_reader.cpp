// Reads DXF: tables for what is said of layers and line types, blocks, and the entities of the drawing.
//
// What breaks a file (a group that is none, a number that is no number in an entity that is wanted, an end within a section) is an
// error; an entity that is wrong in itself is left out, and noted. Sections may be missing, their ends repeated, and what old
// programs left between them is passed over.
#include <zbr-drawing/numbers.h>
#include <zbr-formats/dxf.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <string>
#include <utility>

#include "formats/dxf/dxf_contents.h"
#include "formats/dxf/dxf_entities.h"
#include "formats/dxf/dxf_groups.h"
#include "formats/dxf/dxf_record.h"

namespace zbr::formats {
namespace {

class DxfReader {
 public:
  DxfReader(std::string_view text, const std::string& file, Content content)
      : groups_(text, file), keepsHeights_(content == Content::kLines) {
    file_.name = file;
    drawing_.file = file;
    drawing_.joinsEnds = true;
    record_.file = &file_;
  }

  Drawing Read() {
    bool hasSections = false, hasEnd = false;
    while (!hasEnd && groups_.Next()) {
      const DxfGroup& group = groups_.group();
      if (group.Is(0, "SECTION")) {
        hasSections = true;
        ReadSection();
      } else if (group.Is(0, "EOF")) {
        hasEnd = true;
      } else if (!hasSections && group.code != kComment) {
        FailAt(file_.name, group.line, "a section expected, but found " + Quoted(group.text));
      }
    }
    if (!hasEnd) FailAt(file_.name, std::max<std::size_t>(groups_.group().line, 1), "the file ends without EOF");
    UnfoldBlocks(std::move(contents_), blocks_, keepsHeights_, drawing_);
    return std::move(drawing_);
  }

 private:
  static constexpr int kComment = 999;

  void ReadSection() {
    NextInSection();
    const std::string name(groups_.group().code == 2 ? groups_.group().text : std::string_view());
    if (name.empty()) FailAt(file_.name, groups_.group().line, "a section without a name");
    // A table's record may follow at once.
    if (name == "HEADER") return ReadHeader();
    NextInSection();
    while (!AtEndOfSection()) {
      if (groups_.group().code != 0) {
        NextInSection();
        continue;
      }
      ReadRecord();
      if (name == "TABLES") TakeTableRecord();
      if (name == "BLOCKS") TakeBlockPart();
      if (name == "ENTITIES") DxfEntities(contents_, *drawing_.names, keepsHeights_).Take(record_);
    }
  }

  void NextInSection() {
    const std::size_t last = groups_.group().line;
    if (!groups_.Next()) FailAt(file_.name, last, "the file ends within a section");
  }

  bool AtEndOfSection() const {
    const DxfGroup& group = groups_.group();
    if (group.Is(0, "SECTION") || group.Is(0, "EOF")) FailAt(file_.name, group.line, "the section before does not end");
    return group.Is(0, "ENDSEC");
  }

  void ReadHeader() {
    std::string_view variable;
    for (NextInSection(); !AtEndOfSection(); NextInSection()) {
      const DxfGroup& group = groups_.group();
      if (group.code == 9) variable = group.text;
      // Versions are AC1009, AC1015 and so on; letters in their order, too.
      if (variable == "$ACADVER" && group.code == 1) file_.isUtf8 = group.text >= std::string_view("AC1021");
      if (variable == "$INSUNITS" && group.code == 70)
        drawing_.units = static_cast<int>(std::clamp(record_.Integer(group), 0LL, 1000LL));
    }
  }

  // The record that starts here, with the vertices of an old polyline; then the next one is the current group.
  void ReadRecord() {
    ReadGroups(record_);
    record_.vertices.clear();
    if (record_.kind != "POLYLINE") return;
    while (groups_.group().Is(0, "VERTEX")) {
      DxfRecord& vertex = record_.vertices.emplace_back();
      vertex.file = &file_;
      ReadGroups(vertex);
    }
    if (!groups_.group().Is(0, "SEQEND"))
      FailAt(file_.name, groups_.group().line, "POLYLINE of line " + std::to_string(record_.line) + " lacks SEQEND");
  }

  void ReadGroups(DxfRecord& record) {
    constexpr int kFirstOfApplications = 1000;
    record.kind = groups_.group().text;
    record.line = groups_.group().line;
    record.groups.clear();
    for (NextInSection(); groups_.group().code != 0; NextInSection()) {
      if (groups_.group().code < kFirstOfApplications && groups_.group().code != kComment) record.groups.push_back(groups_.group());
    }
  }

  void TakeTableRecord() {
    constexpr long kFrozen = 1;
    if (record_.kind == "LAYER") {
      DrawingLayer& layer = drawing_.layers.emplace_back();
      layer.name = record_.Name(2);
      const auto colour = static_cast<int>(std::clamp(record_.Integer(62, 7), -256LL, 256LL));
      layer.off = colour < 0;
      layer.colour = std::abs(colour);
      layer.frozen = (record_.Integer(70) & kFrozen) != 0;
      if (record_.Has(6)) layer.lineType = record_.Name(6);
      layer.lineWeight = static_cast<int>(std::clamp(record_.Integer(370, layer.lineWeight), -3LL, 1000LL));
    } else if (record_.kind == "LTYPE") {
      LineType& type = drawing_.lineTypes.emplace_back();
      type.name = record_.Name(2);
      type.description = record_.Name(3);
      for (const DxfGroup& group : record_.groups) {
        if (group.code == 49) type.pattern.push_back(record_.Real(group));
      }
    }
  }

  void TakeBlockPart() {
    constexpr long kElsewhere = 4;
    if (record_.kind == "BLOCK") {
      block_ = &blocks_[DxfCapitals(record_.Name(2))];
      *block_ = DxfBlock();
      block_->base = record_.Point(10);
      block_->isElsewhere = (record_.Integer(70) & kElsewhere) != 0;
    } else if (record_.kind == "ENDBLK") {
      block_ = nullptr;
    } else if (block_ != nullptr) {
      DxfEntities(block_->contents, *drawing_.names, keepsHeights_).Take(record_);
    }
  }

  DxfGroups groups_;
  DxfFile file_;
  bool keepsHeights_;
  Drawing drawing_;
  DxfRecord record_;
  DxfBlocks blocks_;
  DxfBlock* block_ = nullptr;  // being read
  DxfContents contents_;
};

}  // namespace

Drawing ReadDxf(const std::string& text, const std::string& file, Content content) {
  return DxfReader(text, file, content).Read();
}

}  // namespace zbr::formats
