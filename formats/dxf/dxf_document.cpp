// Header, tables, blocks and entities of a DXF file (AutoCAD 2000).
#include "formats/dxf/dxf_document.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <string_view>

#include "formats/text/utf8.h"

namespace zbr::formats {
namespace {

// Collects the text in memory. The base class would write to a file at once, and numbers with a fixed count of decimals, which
// loses small ones and overruns its buffer on large ones.
class TextWriter : public DL_WriterA {
 public:
  TextWriter() : DL_WriterA("", DL_Codes::AC1015) {}

  void dxfReal(int code, double value) const override {
    StartGroup(code);
    AppendNumber(text_, value);
    text_ += '\n';
  }
  void dxfInt(int code, int value) const override { dxfString(code, std::to_string(value)); }
  void dxfHex(int code, int value) const override {
    std::string digits;
    for (auto rest = static_cast<unsigned>(value); rest != 0 || digits.empty(); rest /= 16)
      digits.insert(0, 1, "0123456789ABCDEF"[rest % 16]);
    dxfString(code, digits);
  }
  void dxfString(int code, const char* value) const override { dxfString(code, std::string(value)); }
  void dxfString(int code, const std::string& value) const override {
    StartGroup(code);
    text_ += value;
    text_ += '\n';
  }

  std::string Take() { return std::move(text_); }

 private:
  void StartGroup(int code) const {
    text_ += code < 10 ? "  " : (code < 100 ? " " : "");
    text_ += std::to_string(code);
    text_ += '\n';
  }

  mutable std::string text_;
};

void WriteLinetypes(DL_Dxf& dxf, TextWriter& writer, const std::vector<DxfLinetype>& linetypes) {
  writer.tableLinetypes(3 + static_cast<int>(linetypes.size()));
  for (const char* name : {"BYBLOCK", "BYLAYER", "CONTINUOUS"}) dxf.writeLinetype(writer, DL_LinetypeData(name, name, 0, 0, 0.0));
  for (const DxfLinetype& type : linetypes) {
    std::vector<double> pattern = type.pattern;
    const double length =
        std::accumulate(pattern.begin(), pattern.end(), 0.0, [](double sum, double d) { return sum + std::abs(d); });
    dxf.writeLinetype(writer,
                      DL_LinetypeData(type.name, type.description, 0, static_cast<int>(pattern.size()), length, pattern.data()));
  }
  writer.tableEnd();
}

void WriteLayers(DL_Dxf& dxf, TextWriter& writer, const std::vector<DxfLayer>& layers) {
  constexpr int kThin = 25;
  writer.tableLayers(static_cast<int>(layers.size()) + 1);
  dxf.writeLayer(writer, DL_LayerData("0", 0), DL_Attributes("", DL_Codes::black, kThin, "CONTINUOUS", 1.0));
  for (const DxfLayer& layer : layers) {
    dxf.writeLayer(writer, DL_LayerData(DxfLayerName(layer.name), 0, layer.off),
                   DL_Attributes("", layer.colour, layer.lineWeight, layer.linetype, 1.0));
  }
  writer.tableEnd();
}

void WriteTables(DL_Dxf& dxf, TextWriter& writer, const DxfSetup& setup) {
  writer.sectionTables();
  dxf.writeVPort(writer);
  WriteLinetypes(dxf, writer, setup.linetypes);
  WriteLayers(dxf, writer, setup.layers);
  writer.tableStyle(1);
  dxf.writeStyle(writer, DL_StyleData("Standard", 0, 0.0, 1.0, 0.0, 0, 2.5, "txt", ""));
  writer.tableEnd();
  dxf.writeView(writer);
  dxf.writeUcs(writer);
  writer.tableAppid(1);
  dxf.writeAppid(writer, "ACAD");
  writer.tableEnd();
  dxf.writeDimStyle(writer, 1, 1, 1, 1, 1);
  dxf.writeBlockRecord(writer);
  writer.tableEnd();
  writer.sectionEnd();
}

void WriteBlocks(DL_Dxf& dxf, TextWriter& writer) {
  writer.sectionBlocks();
  for (const char* name : {"*Model_Space", "*Paper_Space", "*Paper_Space0"}) {
    dxf.writeBlock(writer, DL_BlockData(name, 0, 0.0, 0.0, 0.0));
    dxf.writeEndBlock(writer, name);
  }
  writer.sectionEnd();
}

DL_Attributes OnLayer(const std::string& layer) {
  constexpr int kByLayer = 256;
  return DL_Attributes(DxfLayerName(layer), kByLayer, -1, "BYLAYER", 1.0);
}

// The format is older than UTF-8 in it: other characters than ASCII are written as "\U+00E9". What is no valid sequence, or beyond
// four digits, becomes '?'.
std::string TextContent(const std::string& text) {
  std::string content;
  for (std::size_t i = 0; i < text.size();) {
    const auto [code, length] = CharacterAt(text, i);
    i += length;
    if (code < 0x20 || code > 0xFFFF) {
      content += '?';
      continue;
    }
    if (code < 0x80) {
      content += static_cast<char>(code);
      continue;
    }
    content += "\\U+";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) content += "0123456789ABCDEF"[code >> shift & 0xFU];
  }
  return content;
}

}  // namespace

struct DxfDocument::Writers {
  DL_Dxf dxf;
  TextWriter text;
  std::set<std::string> dashed;  // layers
};

std::string DxfLayerName(const std::string& name) {
  std::string allowed = name;
  for (char& c : allowed) {
    if (static_cast<unsigned char>(c) < 0x20 || std::string_view("<>/\\\":;?*|=`").find(c) != std::string_view::npos) c = '_';
  }
  return allowed;
}

DxfDocument::DxfDocument(const DxfSetup& setup) : writers_(std::make_unique<Writers>()) {
  constexpr int kIntegerVariable = 70;
  auto& [dxf, text, dashed] = *writers_;
  dxf.writeHeader(text);
  for (const auto& [name, value] : setup.variables) {
    text.dxfString(9, name);
    text.dxfInt(kIntegerVariable, value);
  }
  text.sectionEnd();
  for (const DxfLayer& layer : setup.layers) {
    if (layer.linetype != "CONTINUOUS") dashed.insert(layer.name);
  }
  WriteTables(dxf, text, setup);
  WriteBlocks(dxf, text);
  text.sectionEntities();
}

DxfDocument::~DxfDocument() = default;

void DxfDocument::AddPolyline(const std::vector<ZBR_PT>& points, bool closed, const std::string& layer, double height) {
  constexpr int kClosed = 1;
  constexpr int kPatternRunsThrough = 128;  // else each short edge of a curve starts a dash of its own
  auto& [dxf, text, dashed] = *writers_;
  const int flags = (closed ? kClosed : 0) + (dashed.contains(layer) ? kPatternRunsThrough : 0);
  dxf.writePolyline(text, DL_PolylineData(static_cast<int>(points.size()), 0, 0, flags), OnLayer(layer));
  constexpr int kElevation = 38;
  if (height != 0) text.dxfReal(kElevation, height);
  for (const ZBR_PT& p : points) dxf.writeVertex(text, DL_VertexData(p.x(), p.y()));
  dxf.writePolylineEnd(text);
}

void DxfDocument::AddLine(const std::vector<ZBR_PT3>& points, bool closed, const std::string& layer) {
  const ZBR_PT3& first = points.front();
  const bool isLevel = std::all_of(points.begin(), points.end(), [&](const ZBR_PT3& p) { return p.z() == first.z(); });
  if (points.size() == 2 && !closed) {
    const ZBR_PT3& last = points.back();
    writers_->dxf.writeLine(writers_->text, DL_LineData(first.x(), first.y(), first.z(), last.x(), last.y(), last.z()),
                            OnLayer(layer));
  } else if (isLevel) {
    std::vector<ZBR_PT> flat;
    for (const ZBR_PT3& p : points) flat.push_back(p.xy());
    AddPolyline(flat, closed, layer, first.z());
  } else {
    AddSpacePolyline(points, closed, layer);
  }
}

// The writing library knows polylines of the plane alone.
void DxfDocument::AddSpacePolyline(const std::vector<ZBR_PT3>& points, bool closed, const std::string& layer) {
  constexpr int kSubclass = 100, kVerticesFollow = 66, kFlags = 70, kClosed = 1, kInSpace = 8, kVertexInSpace = 32;
  const TextWriter& text = writers_->text;
  const auto start = [&](const char* entity, const char* subclass) {
    text.entity(entity);
    text.dxfString(kSubclass, "AcDbEntity");
    text.entityAttributes(OnLayer(layer));
    if (subclass != nullptr) text.dxfString(kSubclass, subclass);
  };
  const auto coordinates = [&](const ZBR_PT3& p) {
    text.dxfReal(10, p.x());
    text.dxfReal(20, p.y());
    text.dxfReal(30, p.z());
  };
  start("POLYLINE", "AcDb3dPolyline");
  text.dxfInt(kVerticesFollow, 1);
  coordinates(ZBR_PT3());
  text.dxfInt(kFlags, kInSpace + (closed ? kClosed : 0));
  for (const ZBR_PT3& p : points) {
    start("VERTEX", "AcDbVertex");
    text.dxfString(kSubclass, "AcDb3dPolylineVertex");
    coordinates(p);
    text.dxfInt(kFlags, kVertexInSpace);
  }
  start("SEQEND", nullptr);
}

void DxfDocument::AddCircle(const ZBR_PT& centre, double radius, const std::string& layer) {
  writers_->dxf.writeCircle(writers_->text, DL_CircleData(centre.x(), centre.y(), 0.0, radius), OnLayer(layer));
}

void DxfDocument::AddText(const ZBR_PT& at, double height, const std::string& text, const std::string& layer) {
  const DL_TextData data(at.x(), at.y(), 0.0, at.x(), at.y(), 0.0, height, 1.0, 0, 0, 0, TextContent(text), "Standard", 0.0);
  writers_->dxf.writeText(writers_->text, data, OnLayer(layer));
}

std::string DxfDocument::Take() {
  DL_Dxf& dxf = writers_->dxf;
  TextWriter& text = writers_->text;
  text.sectionEnd();
  dxf.writeObjects(text);
  dxf.writeObjectsEnd(text);
  text.dxfEOF();
  return text.Take();
}

}  // namespace zbr::formats
