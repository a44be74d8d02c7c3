// Writes DXF (AutoCAD 2000): a closed LWPOLYLINE for each ring, on a layer for each result.

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>

#include <array>
#include <string_view>

#include "formats/format.h"
#include "io/numbers.h"

namespace tool {
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

// Layer names may not hold these characters, and control characters would break the lines of the file.
std::string LayerName(const std::string& name) {
  std::string allowed = name;
  for (char& c : allowed) {
    if (static_cast<unsigned char>(c) < 0x20 || std::string_view("<>/\\\":;?*|=`").find(c) != std::string_view::npos) c = '_';
  }
  return allowed;
}

void WriteTables(DL_Dxf& dxf, TextWriter& writer, const std::vector<Layer>& layers) {
  constexpr std::array<int, 6> kColours = {DL_Codes::blue, DL_Codes::red, DL_Codes::green, DL_Codes::magenta, DL_Codes::cyan, 30};
  constexpr int kThin = 25;  // hundredths of a millimetre
  writer.sectionTables();
  dxf.writeVPort(writer);
  writer.tableLinetypes(3);
  for (const char* name : {"BYBLOCK", "BYLAYER", "CONTINUOUS"}) dxf.writeLinetype(writer, DL_LinetypeData(name, name, 0, 0, 0.0));
  writer.tableEnd();
  writer.tableLayers(static_cast<int>(layers.size()) + 1);
  dxf.writeLayer(writer, DL_LayerData("0", 0), DL_Attributes("", DL_Codes::black, kThin, "CONTINUOUS", 1.0));
  for (std::size_t i = 0; i < layers.size(); ++i) {
    dxf.writeLayer(writer, DL_LayerData(LayerName(layers[i].name), 0),
                   DL_Attributes("", kColours[i % kColours.size()], kThin, "CONTINUOUS", 1.0));
  }
  writer.tableEnd();
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

void WriteEntities(DL_Dxf& dxf, TextWriter& writer, const std::vector<Layer>& layers) {
  constexpr int kByLayer = 256;
  constexpr int kClosed = 1;
  writer.sectionEntities();
  for (const Layer& layer : layers) {
    const DL_Attributes attributes(LayerName(layer.name), kByLayer, -1, "BYLAYER", 1.0);
    ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) {
      dxf.writePolyline(writer, DL_PolylineData(static_cast<int>(ring.pt().size()), 0, 0, kClosed), attributes);
      for (const ZBR_PT& p : ring.pt()) dxf.writeVertex(writer, DL_VertexData(p.x(), p.y()));
      dxf.writePolylineEnd(writer);
    });
  }
  writer.sectionEnd();
}

}  // namespace

std::string WriteDxf(const std::vector<Layer>& layers, int units) {
  constexpr int kIntegerVariable = 70;
  DL_Dxf dxf;
  TextWriter writer;
  dxf.writeHeader(writer);
  writer.dxfString(9, "$INSUNITS");
  writer.dxfInt(kIntegerVariable, units);
  writer.sectionEnd();
  WriteTables(dxf, writer, layers);
  WriteBlocks(dxf, writer);
  WriteEntities(dxf, writer, layers);
  dxf.writeObjects(writer);
  dxf.writeObjectsEnd(writer);
  writer.dxfEOF();
  return writer.Take();
}

}  // namespace tool
