// Sheets in the format asked for.
#include <zbr-formats/sheets.h>

#include <zbr-formats/dxf.h>

namespace zbr::formats {

std::optional<SheetFormat> SheetFormatByName(const std::string& name) {
  if (name == "svg") return SheetFormat::kSvg;
  if (name == "dxf") return SheetFormat::kDxf;
  if (name == "pdf") return SheetFormat::kPdf;
  if (name == "json") return SheetFormat::kJson;
  return std::nullopt;
}

std::string WriteSheet(SheetFormat format, const Sheet& sheet, const std::vector<ObjectSource>& objects, std::size_t shells,
                       DxfVersion version, unsigned threads) {
  if (format == SheetFormat::kDxf) return WriteSheetDxf(sheet, objects, version);
  if (format == SheetFormat::kPdf) return WriteSheetPdf(sheet);
  if (format == SheetFormat::kJson) return WriteSheetJson(sheet, objects, shells);
  return WriteSheetSvg(sheet, objects, threads);
}

}  // namespace zbr::formats
