// Entities of a DXF file as paths.
#pragma once

#include <zbr-drawing/affine.h>
#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>
#include <zbr/spatial.h>

#include <string>
#include <vector>

#include "formats/dxf/dxf_contents.h"
#include "formats/dxf/dxf_record.h"
#include "formats/dxf/dxf_wide.h"

namespace zbr::formats {

// The plane in which an entity gives its points: that of the drawing, or one in space that its normal tells, the rest of its axes
// being agreed on.
class DxfPlane {
 public:
  explicit DxfPlane(const DxfRecord& entity);

  bool IsEdgeOn() const;  // seen from above a line
  Affine At(double elevation) const;
  double HeightOf(const ZBR_PT& p, double elevation) const;
  const ZBR_PT3& normal() const { return normal_; }

 private:
  ZBR_PT3 x_, y_, normal_;
};

// Turns one entity after the other into paths.
class DxfEntities {
 public:
  DxfEntities(DxfContents& contents, Names& names, bool keepHeights)
      : contents_(contents), names_(names), keepHeights_(keepHeights) {}

  void Take(const DxfRecord& entity);

 private:
  using Taking = void (DxfEntities::*)(const DxfRecord&);
  struct Kind {
    Taking take = nullptr;
    std::vector<int> required;  // groups
  };
  static const Kind* KindOf(std::string_view kind);

  void TakeLine(const DxfRecord& entity);
  void TakeArc(const DxfRecord& entity);
  void TakeCircle(const DxfRecord& entity);
  void TakeEllipse(const DxfRecord& entity);
  void TakeSpline(const DxfRecord& entity);
  void AddPolyline(const std::vector<WideVertex>& vertices, bool closed, double elevation, const DxfRecord& entity);
  void TakeFlatPolyline(const DxfRecord& entity);
  void TakePolyline(const DxfRecord& entity);
  void TakeSpacePolyline(const DxfRecord& entity);
  void TakeSolid(const DxfRecord& entity);
  void TakeMultiline(const DxfRecord& entity);
  void TakeHatch(const DxfRecord& entity);
  void TakeInsert(const DxfRecord& entity);

  // What leaves an entity out: it contradicts itself, or has no extent.
  void Malformed(const DxfRecord& entity);
  void WithoutSize(const DxfRecord& entity);
  void EdgeOn(const DxfRecord& entity);
  void LeaveOut(const std::string& what, const DxfRecord& entity, bool bearsContours);

  // Takes a path given in the plane of the entity.
  void AddInPlane(Path path, const DxfRecord& entity, const DxfPlane& plane, double elevation);
  // Takes a path of the drawing. Heights are dropped where they are not wanted, or all 0.
  void Add(Path path, const DxfRecord& entity);

  DxfContents& contents_;
  Names& names_;
  bool keepHeights_;
};

}  // namespace zbr::formats
