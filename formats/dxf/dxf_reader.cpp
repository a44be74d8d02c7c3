// Reads DXF. The groups are split and checked here, line by line; entities that can bound a region are then parsed by dxflib.
//
// Why not hand the whole file to the parser: it tells no line numbers, takes what is not a number for some number, and trusts the
// vertex count of a polyline. So each entity is first collected and checked as a whole, reduced to the codes that describe its
// shape, and only then parsed.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/dxf.h>
#include <zbr-formats/types.h>

#include <dxflib/dl_dxf.h>

#include <algorithm>
#include <array>
#include <set>
#include <sstream>

#include "formats/dxf/dxf_entities.h"
#include "formats/dxf/dxf_groups.h"

namespace zbr::formats {
namespace {

// 0 entity, 8 layer, 10-38 points, 39-59 radii, bulges and angles, 70 flags, 90 vertex count, 210-230 extrusion. Others (colours,
// handles, text, data of other programs) say nothing about the shape.
bool DescribesShape(int code) {
  static constexpr std::array<int, 20> kCodes = {0, 8, 10, 11, 20, 21, 30, 31, 38, 40, 41, 42, 50, 51, 70, 71, 90, 210, 220, 230};
  return std::binary_search(kCodes.begin(), kCodes.end(), code);
}

class DxfReader {
 public:
  DxfReader(std::string_view text, const std::string& file, Content content)
      : groups_(text, file), file_(file), entities_(drawing_, content == Content::kLines) {
    drawing_.file = file;
    drawing_.joinsEnds = true;
    std::istringstream none;
    parser_.in(none, &entities_);  // sets the parser's state, which its constructor leaves open
  }

  Drawing Read(std::string_view text) {
    if (text.substr(0, 18) == "AutoCAD Binary DXF") FailAt(file_, 1, "binary DXF is not read; save it as ASCII DXF");
    while (groups_.Next()) {
      const DxfGroup& group = groups_.group();
      if (group.code == 999) continue;
      if (group.code == 0 && group.value == "EOF") return Finish();
      if (group.code != 0 || group.value != "SECTION") Fail(group.line, "a section expected, but found " + Quoted(group.value));
      ReadSection(group.line);
    }
    Fail(groups_.group().line, "the file ends without EOF");
  }

 private:
  [[noreturn]] void Fail(std::size_t line, const std::string& cause) const { FailAt(file_, std::max<std::size_t>(line, 1), cause); }

  void NextInSection() {
    const std::size_t last = groups_.group().line;
    if (!groups_.Next()) Fail(last, "the file ends within a section");
  }

  void ReadSection(std::size_t start) {
    NextInSection();
    const std::string name(groups_.group().code == 2 ? groups_.group().value : "");
    if (name.empty()) Fail(start, "a section without a name");
    for (;;) {
      NextInSection();
      const DxfGroup& group = groups_.group();
      if (group.code == 0 && group.value == "ENDSEC") break;
      if (group.code == 0 && (group.value == "SECTION" || group.value == "EOF")) {
        Fail(group.line, "the section before does not end");
      }
      if (name == "HEADER") HeaderGroup(group);
      if (name == "ENTITIES") EntityGroup(group);
    }
    if (name == "ENTITIES") EndEntity(groups_.group().line);
  }

  void HeaderGroup(const DxfGroup& group) {
    if (group.code == 9) variable_ = group.value;
    if (group.code == 70 && variable_ == "$INSUNITS") {
      chunk_ = "9\n$INSUNITS\n70\n" + std::string(group.value) + "\n";
      chunkGroups_ = 2;
      ParseChunk();
      ClearChunk();
    }
  }

  // Entities are collected up to the next one, polylines with vertices of their own up to the end of the sequence.
  void EntityGroup(const DxfGroup& group) {
    if (group.code == 0) {
      if (entity_ == "POLYLINE" && (group.value == "VERTEX" || group.value == "SEQEND")) {
        CheckPart();
      } else {
        EndEntity(group.line);
        entity_ = group.value;
        entityLine_ = group.line;
        isTaken_ = RequiredDxfCodes(entity_) != nullptr && entity_ != "VERTEX";
      }
      part_ = group.value;
      partLine_ = group.line;
      partStart_ = chunk_.size();
      partGroups_ = chunkGroups_;
      seen_.clear();
      announced_ = 0;
      xs_ = ys_ = 0;
    }
    if (!isTaken_ || !DescribesShape(group.code)) {
      if (group.code == 67 && group.value != "0") isOnPaper_ = true;
      return;
    }
    NoteGroup(group);
    chunk_ += std::to_string(group.code);
    chunk_ += '\n';
    chunk_ += group.value;
    chunk_ += '\n';
    ++chunkGroups_;
  }

  void NoteGroup(const DxfGroup& group) {
    const bool isFirst = seen_.insert(group.code).second;
    if (group.code == 40 && part_ != "LWPOLYLINE" && part_ != "POLYLINE" && part_ != "VERTEX" && *ParseNumber(group.value) <= 0) {
      Fail(group.line + 1, "the radius of an entity must be positive");
    }
    if (part_ == "VERTEX" && group.code == 70) isSplineFrame_ = (*ParseInteger(group.value) & 16) != 0;
    if (part_ != "LWPOLYLINE") return;
    if (group.code == 90 && !isFirst) Fail(group.line, "the number of vertices is given twice");
    if (group.code == 90) announced_ = *ParseInteger(group.value);
    if ((group.code == 10 || group.code == 42) && !seen_.contains(90)) Fail(group.line, "a vertex before the number of vertices");
    if (group.code == 42 && xs_ == 0) Fail(group.line, "a bulge before the first vertex");
    xs_ += group.code == 10 ? 1 : 0;
    ys_ += group.code == 20 ? 1 : 0;
    if (xs_ != ys_ + (group.code == 10 ? 1 : 0) && (group.code == 10 || group.code == 20))
      Fail(group.line, "a vertex needs x and y");
  }

  // The entity, or the vertex of a polyline, that ends here must have all it needs.
  void CheckPart() {
    const std::vector<int>* required = isTaken_ ? RequiredDxfCodes(part_) : nullptr;
    if (required == nullptr) return;
    for (const int code : *required) {
      if (!seen_.contains(code)) Fail(partLine_, part_ + " lacks group " + std::to_string(code));
    }
    if (part_ == "LWPOLYLINE" && (xs_ != announced_ || ys_ != announced_)) {
      Fail(partLine_,
           part_ + " announces " + std::to_string(announced_) + " vertices and has " + std::to_string(std::min(xs_, ys_)));
    }
    if (isSplineFrame_) {  // a control point: not on the curve, which follows in vertices of its own
      chunk_.resize(partStart_);
      chunkGroups_ = partGroups_;
    }
    isSplineFrame_ = false;
  }

  void EndEntity(std::size_t line) {
    CheckPart();
    if (isTaken_ && entity_ == "POLYLINE" && part_ != "SEQEND") {
      Fail(line, "POLYLINE of line " + std::to_string(entityLine_) + " lacks SEQEND");
    }
    if (isTaken_ && !isOnPaper_) {
      ParseChunk();
    } else if (!entity_.empty()) {
      drawing_.LeaveOut(isOnPaper_ ? "entity in paper space" : entity_, entityLine_, false);
    }
    ClearChunk();
    entity_.clear();
    part_.clear();
    isTaken_ = isOnPaper_ = false;
  }

  // Parses what was collected. The parser acts on an entity when the next one begins, so one of no known kind follows.
  void ParseChunk() {
    entities_.SetLine(entityLine_);
    std::istringstream stream(chunk_ + "0\n.\n");
    for (int i = 0; i <= chunkGroups_; ++i) parser_.readDxfGroups(stream, &entities_);
  }

  void ClearChunk() {
    chunk_.clear();
    chunkGroups_ = 0;
  }

  Drawing Finish() { return std::move(drawing_); }

  DxfGroups groups_;
  const std::string& file_;
  Drawing drawing_;
  DxfEntities entities_;
  DL_Dxf parser_;
  std::string variable_;

  std::string entity_;  // being collected
  std::size_t entityLine_ = 0;
  bool isTaken_ = false;
  bool isOnPaper_ = false;
  std::string chunk_;
  int chunkGroups_ = 0;

  std::string part_;  // the entity itself, or a vertex of it
  std::size_t partLine_ = 0;
  std::size_t partStart_ = 0;  // in the chunk
  int partGroups_ = 0;
  bool isSplineFrame_ = false;
  std::set<int> seen_;
  long long announced_ = 0;
  long xs_ = 0, ys_ = 0;
};

}  // namespace

Drawing ReadDxf(const std::string& text, const std::string& file, Content content) {
  return DxfReader(text, file, content).Read(text);
}

}  // namespace zbr::formats
