// The frame that programs expect around the entities of a DXF file. Since AutoCAD 2000 that is a small data base: each record has a
// handle and names its owner; drawing and paper are blocks, each with a layout among the objects. R12 needs line types, layers and
// a text style alone.
#include "formats/dxf/dxf_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace zbr::formats {
namespace {

enum Fixed : DxfHandle {
  kViewportTable = 1,
  kLineTypeTable,
  kLayerTable,
  kStyleTable,
  kViewTable,
  kCoordinateTable,
  kApplicationTable,
  kDimensionTable,
  kBlockTable,
  kViewport,
  kByBlock,
  kByLayer,
  kStyle,
  kApplication,
  kDimensionStyle,
  kRoot,
  kGroups,
  kLayouts,
  kMultilines,
  kMultiline,
  kPlotSettings,
  kPlotStyles,
  kPlotStyle,
  kModelLayout,
  kPaperLayout,
  kPaperSpace,
  kModelBegin = 0x20,
  kModelEnd,
  kPaperBegin,
  kPaperEnd
};

constexpr int kContinued = 65;  // letter that stands in line types for their alignment

// Inches and what is made of them.
bool IsImperial(int units) {
  constexpr std::array<int, 6> kImperial = {1, 2, 3, 8, 9, 10};
  return std::find(kImperial.begin(), kImperial.end(), units) != kImperial.end();
}

// Files may hold these widths only.
int KnownWidth(int hundredths) {
  constexpr std::array<int, 24> kWidths = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                           53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};
  if (hundredths < 0) return hundredths >= -3 ? hundredths : -3;
  return *std::min_element(kWidths.begin(), kWidths.end(),
                           [&](int a, int b) { return std::abs(a - hundredths) < std::abs(b - hundredths); });
}

void WriteHeader(DxfOutput& output, const DxfSetup& setup, const DxfBox& box, DxfHandle seed) {
  constexpr double kNothing = 1e20;  // as programs write it for drawings without entities
  const auto variable = [&](const char* name) { output.Text(9, name); };
  const auto integer = [&](const char* name, int code, long value) {
    variable(name);
    output.Integer(code, value);
  };
  output.Constants("0|SECTION|2|HEADER|9|$ACADVER");
  output.Text(1, output.IsOld() ? "AC1009" : "AC1015");
  output.Constants("9|$DWGCODEPAGE|3|ANSI_1252");
  variable("$INSBASE");
  output.Point(10, {0, 0}, 0);
  const Extent& e = box.extent;
  variable("$EXTMIN");
  output.Point(10, e.empty() ? ZBR_PT(kNothing, kNothing) : ZBR_PT(e.xmin, e.ymin), e.empty() ? kNothing : box.low);
  variable("$EXTMAX");
  output.Point(10, e.empty() ? ZBR_PT(-kNothing, -kNothing) : ZBR_PT(e.xmax, e.ymax), e.empty() ? -kNothing : box.high);
  // Programs that print without asking take their paper from here, else A4, upright.
  if (setup.paper.x() > 0 && setup.paper.y() > 0) {
    variable("$PLIMMIN");
    output.Point(10, {0, 0});
    variable("$PLIMMAX");
    output.Point(10, setup.paper);
  }
  integer("$INSUNITS", 70, setup.units);
  if (!output.IsOld()) {
    integer("$MEASUREMENT", 70, IsImperial(setup.units) ? 0 : 1);
    if (setup.showWidths) integer("$LWDISPLAY", 290, 1);
    variable("$HANDSEED");
    output.Handle(5, seed);
  }
  output.Constants("0|ENDSEC");
}

void StartTable(DxfOutput& output, const char* name, DxfHandle handle, std::size_t count) {
  output.Start("TABLE");
  output.Text(2, name);
  output.Handle(5, handle);
  output.Handle(330, 0);
  output.Subclass("AcDbSymbolTable");
  output.Integer(70, static_cast<long>(count));
}

void StartRecord(DxfOutput& output, const char* kind, DxfHandle handle, DxfHandle owner, const char* subclass) {
  output.Start(kind, handle, owner);
  output.Subclass("AcDbSymbolTableRecord");
  output.Subclass(subclass);
}

void EndTable(DxfOutput& output) {
  output.Start("ENDTAB");
}

// A window that shows the whole drawing.
void WriteViewports(DxfOutput& output, const Extent& extent) {
  const bool isEmpty = extent.empty();
  const ZBR_PT centre = isEmpty ? ZBR_PT() : ZBR_PT(extent.xmin / 2 + extent.xmax / 2, extent.ymin / 2 + extent.ymax / 2);
  const double height = isEmpty || extent.Size() == 0 ? 1.0 : extent.Size();
  StartTable(output, "VPORT", kViewportTable, 1);
  StartRecord(output, "VPORT", kViewport, kViewportTable, "AcDbViewportTableRecord");
  output.Constants("2|*Active|70|0|10|0.0|20|0.0|11|1.0|21|1.0");
  output.Point(12, centre);
  output.Constants("13|0.0|23|0.0|14|1.0|24|1.0|15|1.0|25|1.0|16|0.0|26|0.0|36|1.0|17|0.0|27|0.0|37|0.0");
  output.Real(40, height);
  output.Constants("41|1.5|42|50.0|43|0.0|44|0.0|50|0.0|51|0.0|71|0|72|1000|73|1|74|3|75|0|76|0|77|0|78|0");
  EndTable(output);
}

void WriteLineTypes(DxfOutput& output, const std::vector<LineType>& types, DxfHandle& next) {
  StartTable(output, "LTYPE", kLineTypeTable, types.size() + (output.IsOld() ? 0 : 2));
  const auto start = [&](DxfHandle handle, const std::string& name) {
    StartRecord(output, "LTYPE", handle, kLineTypeTable, "AcDbLinetypeTableRecord");
    output.Text(2, name);
    output.Integer(70, 0);
  };
  if (!output.IsOld()) {
    start(kByBlock, "ByBlock");
    output.Constants("3||72|65|73|0|40|0.0");
    start(kByLayer, "ByLayer");
    output.Constants("3||72|65|73|0|40|0.0");
  }
  for (const LineType& type : types) {
    start(next++, type.name);
    output.Text(3, DxfText(type.description));
    output.Integer(72, kContinued);
    output.Integer(73, static_cast<long>(type.pattern.size()));
    output.Real(40, std::accumulate(type.pattern.begin(), type.pattern.end(), 0.0,
                                    [](double sum, double length) { return sum + std::abs(length); }));
    for (const double length : type.pattern) {
      output.Real(49, length);
      if (!output.IsOld()) output.Integer(74, 0);
    }
  }
  EndTable(output);
}

void WriteLayers(DxfOutput& output, const std::vector<DrawingLayer>& layers, DxfHandle& next) {
  StartTable(output, "LAYER", kLayerTable, layers.size());
  for (const DrawingLayer& layer : layers) {
    StartRecord(output, "LAYER", next++, kLayerTable, "AcDbLayerTableRecord");
    output.Text(2, layer.name);
    output.Integer(70, layer.frozen ? 1 : 0);
    output.Integer(62, layer.off ? -layer.colour : layer.colour);  // a negative colour switches it off
    output.Text(6, layer.lineType);
    if (output.IsOld()) continue;
    output.Integer(370, KnownWidth(layer.lineWeight));
    output.Handle(390, kPlotStyle);
  }
  EndTable(output);
}

void WriteStyles(DxfOutput& output, const std::string& font) {
  StartTable(output, "STYLE", kStyleTable, 1);
  StartRecord(output, "STYLE", kStyle, kStyleTable, "AcDbTextStyleTableRecord");
  output.Constants("2|Standard|70|0|40|0.0|41|1.0|50|0.0|71|0|42|2.5");
  output.Text(3, font);
  output.Text(4, "");
  EndTable(output);
}

void WriteNewTables(DxfOutput& output) {
  for (const auto& [name, handle] : {std::pair("VIEW", kViewTable), std::pair("UCS", kCoordinateTable)}) {
    StartTable(output, name, handle, 0);
    EndTable(output);
  }
  StartTable(output, "APPID", kApplicationTable, 1);
  StartRecord(output, "APPID", kApplication, kApplicationTable, "AcDbRegAppTableRecord");
  output.Constants("2|ACAD|70|0");
  EndTable(output);
  StartTable(output, "DIMSTYLE", kDimensionTable, 1);
  output.Constants("100|AcDbDimStyleTable|71|1");
  output.Start("DIMSTYLE");
  output.Handle(105, kDimensionStyle);  // not 5, which is a length there
  output.Handle(330, kDimensionTable);
  output.Constants("100|AcDbSymbolTableRecord|100|AcDbDimStyleTableRecord|2|Standard|70|0");
  EndTable(output);
  StartTable(output, "BLOCK_RECORD", kBlockTable, 2);
  StartRecord(output, "BLOCK_RECORD", kModelSpace, kBlockTable, "AcDbBlockTableRecord");
  output.Text(2, "*Model_Space");
  output.Handle(340, kModelLayout);
  StartRecord(output, "BLOCK_RECORD", kPaperSpace, kBlockTable, "AcDbBlockTableRecord");
  output.Text(2, "*Paper_Space");
  output.Handle(340, kPaperLayout);
  EndTable(output);
}

void WriteBlock(DxfOutput& output, const char* name, bool onPaper, DxfHandle record, DxfHandle begin, DxfHandle end) {
  const auto part = [&](const char* kind, DxfHandle handle, const char* subclass) {
    output.Start(kind, handle, record);
    output.Subclass("AcDbEntity");
    if (onPaper) output.Integer(67, 1);
    output.Text(8, "0");
    output.Subclass(subclass);
  };
  part("BLOCK", begin, "AcDbBlockBegin");
  output.Text(2, name);
  output.Integer(70, 0);
  output.Point(10, {0, 0}, 0);
  output.Text(3, name);
  output.Text(1, "");
  part("ENDBLK", end, "AcDbBlockEnd");
}

void StartDictionary(DxfOutput& output, DxfHandle handle, DxfHandle owner, const char* kind = "DICTIONARY") {
  output.Start(kind, handle, owner);
  output.Constants("100|AcDbDictionary|281|1");
}

void Entry(DxfOutput& output, const char* name, DxfHandle handle) {
  output.Text(3, name);
  output.Handle(350, handle);
}

void WriteLayout(DxfOutput& output, const char* name, bool onPaper, DxfHandle handle, DxfHandle block) {
  output.Start("LAYOUT", handle, kLayouts);
  output.Constants(
      "100|AcDbPlotSettings|1||2|none_device|4||6||40|0.0|41|0.0|42|0.0|43|0.0|44|0.0|45|0.0|46|0.0|47|0.0|48|0.0|49|0.0|140|0.0|"
      "141|"
      "0.0|142|1.0|143|1.0");
  output.Integer(70, onPaper ? 688 : 1712);  // a new layout's settings; 1024: of the drawing itself
  output.Constants("72|1|73|0|74|5|7||75|16|147|1.0|148|0.0|149|0.0|100|AcDbLayout");
  output.Text(1, name);
  output.Integer(70, 1);
  output.Integer(71, onPaper ? 1 : 0);
  output.Constants(
      "10|0.0|20|0.0|11|420.0|21|297.0|12|0.0|22|0.0|32|0.0|14|1e+20|24|1e+20|34|1e+20|15|-1e+20|25|-1e+20|35|-1e+20|146|0.0|13|0."
      "0|"
      "23|0.0|33|0.0|16|1.0|26|0.0|36|0.0|17|0.0|27|1.0|37|0.0|76|0");
  output.Handle(330, block);
}

void WriteObjects(DxfOutput& output) {
  output.Constants("0|SECTION|2|OBJECTS");
  StartDictionary(output, kRoot, 0);
  Entry(output, "ACAD_GROUP", kGroups);
  Entry(output, "ACAD_LAYOUT", kLayouts);
  Entry(output, "ACAD_MLINESTYLE", kMultilines);
  Entry(output, "ACAD_PLOTSETTINGS", kPlotSettings);
  Entry(output, "ACAD_PLOTSTYLENAME", kPlotStyles);
  StartDictionary(output, kGroups, kRoot);
  StartDictionary(output, kLayouts, kRoot);
  Entry(output, "Model", kModelLayout);
  Entry(output, "Layout1", kPaperLayout);
  StartDictionary(output, kMultilines, kRoot);
  Entry(output, "Standard", kMultiline);
  StartDictionary(output, kPlotSettings, kRoot);
  StartDictionary(output, kPlotStyles, kRoot, "ACDBDICTIONARYWDFLT");
  Entry(output, "Normal", kPlotStyle);
  output.Constants("100|AcDbDictionaryWithDefault");
  output.Handle(340, kPlotStyle);
  output.Start("ACDBPLACEHOLDER", kPlotStyle, kPlotStyles);
  output.Start("MLINESTYLE", kMultiline, kMultilines);
  output.Constants(
      "100|AcDbMlineStyle|2|Standard|70|0|3||62|256|51|90.0|52|90.0|71|2|49|0.5|62|256|6|BYLAYER|49|-0.5|62|256|6|BYLAYER");
  WriteLayout(output, "Model", false, kModelLayout, kModelSpace);
  WriteLayout(output, "Layout1", true, kPaperLayout, kPaperSpace);
  output.Constants("0|ENDSEC");
}

}  // namespace

void WriteDxfStart(DxfOutput& output, const DxfSetup& setup, const DxfBox& box, DxfHandle next) {
  WriteHeader(output, setup, box, next + setup.layers.size() + setup.lineTypes.size());
  if (!output.IsOld()) output.Constants("0|SECTION|2|CLASSES|0|ENDSEC");
  output.Constants("0|SECTION|2|TABLES");
  WriteViewports(output, box.extent);
  WriteLineTypes(output, setup.lineTypes, next);
  WriteLayers(output, setup.layers, next);
  WriteStyles(output, setup.font);
  if (!output.IsOld()) WriteNewTables(output);
  output.Constants("0|ENDSEC|0|SECTION|2|BLOCKS");
  if (!output.IsOld()) {
    WriteBlock(output, "*Model_Space", false, kModelSpace, kModelBegin, kModelEnd);
    WriteBlock(output, "*Paper_Space", true, kPaperSpace, kPaperBegin, kPaperEnd);
  }
  output.Constants("0|ENDSEC|0|SECTION|2|ENTITIES");
}

void WriteDxfEnd(DxfOutput& output) {
  output.Constants("0|ENDSEC");
  if (!output.IsOld()) WriteObjects(output);
  output.Constants("0|EOF");
}

}  // namespace zbr::formats
