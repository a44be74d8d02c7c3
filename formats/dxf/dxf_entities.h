// What the DXF reader knows about the entities it takes.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>

#include <dxflib/dl_creationadapter.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::formats {

// The group codes an entity must have; null for kinds of entities that hold no contour.
const std::vector<int>* RequiredDxfCodes(std::string_view entity);

// Turns parsed entities into paths. The reader sets `line` before it lets an entity be parsed.
class DxfEntities : public DL_CreationAdapter {
 public:
  DxfEntities(Drawing& drawing, bool keepHeights) : drawing_(drawing), keepHeights_(keepHeights) {}

  void SetLine(std::size_t line) { line_ = line; }

  void setVariableInt(const std::string& key, int value, int code) override;
  void addLine(const DL_LineData& data) override;
  void addArc(const DL_ArcData& data) override;
  void addCircle(const DL_CircleData& data) override;
  void addEllipse(const DL_EllipseData& data) override;
  void addPolyline(const DL_PolylineData& data) override;
  void addVertex(const DL_VertexData& data) override;
  void endEntity() override;
  void endSequence() override;

 private:
  // Whether the entity just parsed lies in a plane of the drawing; if not, it is counted as left out.
  bool IsFlat(const char* name);
  bool IsMirrored();
  void AddPath(Path path);
  void AddCurve(const Curve& curve, bool closed, double height);
  // Sets the heights of a path's points where they are to be kept and any is not 0.
  void SetHeights(Path& path, std::vector<double> heights) const;
  void FinishPolyline();

  Drawing& drawing_;
  bool keepHeights_;
  std::size_t line_ = 0;
  bool inPolyline_ = false;
  bool isMirrored_ = false;
  Path polyline_;
  double elevation_ = 0.0;
  std::vector<double> bulges_, heights_;  // of the polyline's vertices
};

}  // namespace zbr::formats
