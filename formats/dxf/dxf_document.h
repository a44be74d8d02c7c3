// The parts that every written DXF file has, and the entities in use.
#pragma once

#include <zbr/planar.h>
#include <zbr/spatial.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zbr::formats {

struct DxfLayer {
  std::string name;
  int colour = 7;      // of the colour index
  int lineWeight = 0;  // hundredths of a millimetre, of the widths that the format knows
  std::string linetype = "CONTINUOUS";
  bool off = false;
};

struct DxfLinetype {
  std::string name, description;
  std::vector<double> pattern;  // dashes positive, gaps negative
};

struct DxfSetup {
  std::vector<std::pair<std::string, int>> variables;  // of the header: "$INSUNITS", 4
  std::vector<DxfLinetype> linetypes;                  // beside CONTINUOUS
  std::vector<DxfLayer> layers;                        // beside "0"
};

// Layer names may not hold some characters, and control characters would break the lines of the file.
std::string DxfLayerName(const std::string& name);

// A drawing of AutoCAD 2000: made with its tables, given its entities one by one, then taken as text.
class DxfDocument {
 public:
  explicit DxfDocument(const DxfSetup& setup);
  DxfDocument(const DxfDocument&) = delete;
  DxfDocument& operator=(const DxfDocument&) = delete;
  ~DxfDocument();

  // A LWPOLYLINE; of a closed one the last point does not repeat the first.
  void AddPolyline(const std::vector<ZBR_PT>& points, bool closed, const std::string& layer, double height = 0.0);
  // A line in space: a LINE, a LWPOLYLINE at a height, or a polyline in space.
  void AddLine(const std::vector<ZBR_PT3>& points, bool closed, const std::string& layer);
  void AddCircle(const ZBR_PT& centre, double radius, const std::string& layer);
  // Text in UTF-8 that starts at a point of its base line.
  void AddText(const ZBR_PT& at, double height, const std::string& text, const std::string& layer);

  std::string Take();

 private:
  struct Writers;
  void AddSpacePolyline(const std::vector<ZBR_PT3>& points, bool closed, const std::string& layer);
  std::unique_ptr<Writers> writers_;
};

}  // namespace zbr::formats
