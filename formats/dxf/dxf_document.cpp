// Entities of the plane and their names.
#include "formats/dxf/dxf_document.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "formats/dxf/dxf_curves.h"
#include "formats/dxf/dxf_tables.h"

namespace zbr::formats {
namespace {

struct Pattern {
  std::string_view name, description;
  std::vector<double> lengths;
};

const std::vector<Pattern>& StandardPatterns() {
  static const std::vector<Pattern> kPatterns = {{"DASHED", "Dashed __ __ __ __", {12.7, -6.35}},
                                                 {"HIDDEN", "Hidden __ __ __ __", {6.35, -3.175}},
                                                 {"CENTER", "Center ____ _ ____ _", {31.75, -6.35, 6.35, -6.35}},
                                                 {"PHANTOM", "Phantom _____ _ _ _____", {31.75, -6.35, 6.35, -6.35, 6.35, -6.35}},
                                                 {"DOT", "Dot . . . . . .", {0.0, -6.35}},
                                                 {"DASHDOT", "Dash dot __ . __ . __", {12.7, -6.35, 0.0, -6.35}},
                                                 {"DIVIDE", "Divide ____ . . ____", {12.7, -6.35, 0.0, -6.35, 0.0, -6.35}},
                                                 {"BORDER", "Border __ __ . __ __", {12.7, -6.35, 12.7, -6.35, 0.0, -6.35}}};
  return kPatterns;
}

std::string Capitals(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

bool IsAllowed(char c, bool isOld) {
  if (isOld) return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '$' || c == '-' || c == '_';
  return static_cast<unsigned char>(c) >= 0x20 && std::string_view("<>/\\\":;?*|=`,").find(c) == std::string_view::npos;
}

// The name as the format takes it, and different from all those before, capitals or not.
std::string AllowedName(const std::string& name, bool isOld, std::set<std::string>& taken) {
  constexpr std::size_t kLongestOld = 31, kLongest = 255;
  std::string allowed = isOld ? Capitals(name) : name;
  for (char& c : allowed) c = IsAllowed(c, isOld) ? c : '_';
  if (!isOld) allowed = DxfText(allowed);
  const std::size_t longest = isOld ? kLongestOld : kLongest;
  allowed.resize(std::min(allowed.size(), longest));
  if (allowed.empty()) allowed.append(1, '_');
  if (allowed.front() == ' ') allowed.front() = '_';
  if (allowed.back() == ' ') allowed.back() = '_';
  std::string different = allowed;
  for (int k = 2; !taken.insert(Capitals(different)).second; ++k) {
    const std::string number = std::to_string(k);
    different.assign(allowed, 0, longest - 1 - number.size());
    different.append(1, '_').append(number);
  }
  return different;
}

}  // namespace

LineType StandardLineType(const std::string& name, double scale) {
  for (const Pattern& pattern : StandardPatterns()) {
    if (pattern.name != Capitals(name)) continue;
    LineType type{name, std::string(pattern.description), pattern.lengths};
    for (double& length : type.pattern) length *= scale;
    return type;
  }
  return {name, "", {}};
}

DxfDocument::DxfDocument(DxfSetup setup) : setup_(std::move(setup)), entities_(setup_.version), next_(kFirstEntity) {
  const std::vector<LineType> types = std::exchange(setup_.lineTypes, {});
  setup_.lineTypes.push_back({"CONTINUOUS", "Solid line", {}});
  lineTypeOf_["CONTINUOUS"] = "CONTINUOUS";
  lineTypeNames_ = {"CONTINUOUS", "BYLAYER", "BYBLOCK"};
  for (const LineType& type : types) {
    if (Capitals(type.name) == "CONTINUOUS" || lineTypeOf_.contains(type.name)) continue;
    setup_.lineTypes.push_back(type);
    setup_.lineTypes.back().name = lineTypeOf_[type.name] = AllowedName(type.name, entities_.IsOld(), lineTypeNames_);
  }
  const std::vector<DrawingLayer> layers = std::exchange(setup_.layers, {});
  setup_.layers.emplace_back().name = "0";
  layerNames_ = {"0"};
  layerOf_[""] = layerOf_["0"] = 0;
  for (const DrawingLayer& layer : layers) {
    if (layer.name == "0") setup_.layers[0] = layer;
    const auto [found, isNew] = layerOf_.emplace(layer.name, setup_.layers.size());
    if (isNew) {
      setup_.layers.push_back(layer);
      setup_.layers.back().name = AllowedName(layer.name, entities_.IsOld(), layerNames_);
    }
    std::string& lineType = setup_.layers[found->second].lineType;
    lineType = LineTypeOf(lineType);
  }
}

const std::string& DxfDocument::LineTypeOf(const std::string& name) {
  const auto found = lineTypeOf_.find(name);
  if (found != lineTypeOf_.end()) return found->second;
  const std::string capitals = Capitals(name);
  if (capitals == "CONTINUOUS" || capitals.empty() || capitals == "BYLAYER" || capitals == "BYBLOCK")
    return lineTypeOf_[name] = capitals.empty() ? setup_.lineTypes.front().name : capitals;
  LineType type = StandardLineType(name);
  type.name = AllowedName(name, entities_.IsOld(), lineTypeNames_);
  setup_.lineTypes.push_back(type);
  return lineTypeOf_[name] = type.name;
}

const DrawingLayer& DxfDocument::LayerOf(const DxfPen& pen) {
  const auto [found, isNew] = layerOf_.emplace(pen.layer, setup_.layers.size());
  if (isNew) setup_.layers.emplace_back().name = AllowedName(pen.layer, entities_.IsOld(), layerNames_);
  return setup_.layers[found->second];
}

bool DxfDocument::IsDashed(const DxfPen& pen) {
  const std::string& name = pen.lineType.empty() ? LayerOf(pen).lineType : LineTypeOf(pen.lineType);
  return std::any_of(setup_.lineTypes.begin(), setup_.lineTypes.end(),
                     [&](const LineType& type) { return type.name == name && !type.pattern.empty(); });
}

void DxfDocument::Start(const char* kind, const char* subclass, const DxfPen& pen) {
  entities_.Start(kind, next_++, kModelSpace);
  entities_.Subclass("AcDbEntity");
  entities_.Text(8, LayerOf(pen).name);
  if (!pen.lineType.empty()) entities_.Text(6, LineTypeOf(pen.lineType));
  if (pen.colour != kColourByLayer) entities_.Integer(62, pen.colour);
  if (subclass != nullptr) entities_.Subclass(subclass);
}

void DxfDocument::ExtendBy(const ZBR_PT& p, double z) {
  low_ = extent_.empty() ? z : std::min(low_, z);
  high_ = extent_.empty() ? z : std::max(high_, z);
  extent_.Add(p);
}

// By its ends and where it runs along one of the axes; by its control points, between which it lies.
void DxfDocument::ExtendBy(const Curve& curve) {
  if (curve.spline != nullptr) {
    for (const ZBR_PT& p : Trimmed(*curve.spline, curve.t0, curve.t1).control) ExtendBy(p);
    return;
  }
  ExtendBy(curve.At(curve.t0));
  ExtendBy(curve.At(curve.t1));
  const double low = std::min(curve.t0, curve.t1), high = std::max(curve.t0, curve.t1);
  for (const double turning : {Atan2(curve.v.x(), curve.u.x()), Atan2(curve.v.y(), curve.u.y())}) {
    const double first = turning + std::ceil((low - turning) / kPi) * kPi;
    for (int k = 0; k < 3 && first + k * kPi <= high; ++k) ExtendBy(curve.At(first + k * kPi));
  }
}

void DxfDocument::AddLine(const ZBR_PT& from, const ZBR_PT& to, const DxfPen& pen) {
  AddSpaceLine({{from.x(), from.y(), 0}, {to.x(), to.y(), 0}}, false, pen);
}

void DxfDocument::AddCircle(const ZBR_PT& centre, double radius, const DxfPen& pen) {
  Start("CIRCLE", "AcDbCircle", pen);
  entities_.Point(10, centre, 0);
  entities_.Real(40, radius);
  ExtendBy(centre - ZBR_PT(radius, radius));
  ExtendBy(centre + ZBR_PT(radius, radius));
}

void DxfDocument::AddPolyline(const std::vector<ZBR_PT>& points, bool closed, const DxfPen& pen, double height,
                              const std::vector<double>& bulges) {
  constexpr int kClosed = 1;
  constexpr int kPatternRunsThrough = 128;  // else each short edge of a curve starts a dash of its own
  for (std::size_t i = 0; i < points.size(); ++i) {
    ExtendBy(points[i], height);
    const double bulge = i < bulges.size() ? bulges[i] : 0.0;
    if (bulge != 0 && (closed || i + 1 < points.size())) ExtendBy(BulgeArc(points[i], points[(i + 1) % points.size()], bulge));
  }
  if (entities_.IsOld()) return AddOldPolyline(points, closed, pen, height, bulges);
  Start("LWPOLYLINE", "AcDbPolyline", pen);
  entities_.Integer(90, static_cast<long>(points.size()));
  entities_.Integer(70, (closed ? kClosed : 0) + (IsDashed(pen) ? kPatternRunsThrough : 0));
  if (height != 0) entities_.Real(38, height);
  for (std::size_t i = 0; i < points.size(); ++i) {
    entities_.Point(10, points[i]);
    if (i < bulges.size() && bulges[i] != 0) entities_.Real(42, bulges[i]);
  }
}

void DxfDocument::AddOldPolyline(const std::vector<ZBR_PT>& points, bool closed, const DxfPen& pen, double height,
                                 const std::vector<double>& bulges) {
  constexpr int kClosed = 1, kPatternRunsThrough = 128;
  Start("POLYLINE", nullptr, pen);
  entities_.Integer(66, 1);  // vertices follow
  entities_.Point(10, {0, 0}, height);
  entities_.Integer(70, (closed ? kClosed : 0) + (IsDashed(pen) ? kPatternRunsThrough : 0));
  for (std::size_t i = 0; i < points.size(); ++i) {
    Start("VERTEX", nullptr, pen);
    entities_.Point(10, points[i], height);
    if (i < bulges.size() && bulges[i] != 0) entities_.Real(42, bulges[i]);
  }
  Start("SEQEND", nullptr, pen);
}

void DxfDocument::AddSpaceLine(const std::vector<ZBR_PT3>& points, bool closed, const DxfPen& pen) {
  const ZBR_PT3& first = points.front();
  const bool isLevel = std::all_of(points.begin(), points.end(), [&](const ZBR_PT3& p) { return p.z() == first.z(); });
  if (points.size() == 2 && !closed) {
    const ZBR_PT3& last = points.back();
    Start("LINE", "AcDbLine", pen);
    entities_.Point(10, first.xy(), first.z());
    entities_.Point(11, last.xy(), last.z());
    ExtendBy(first.xy(), first.z());
    ExtendBy(last.xy(), last.z());
  } else if (isLevel) {
    std::vector<ZBR_PT> flat;
    for (const ZBR_PT3& p : points) flat.push_back(p.xy());
    AddPolyline(flat, closed, pen, first.z());
  } else {
    AddSpacePolyline(points, closed, pen);
  }
}

void DxfDocument::AddSpacePolyline(const std::vector<ZBR_PT3>& points, bool closed, const DxfPen& pen) {
  constexpr int kClosed = 1, kInSpace = 8, kVertexInSpace = 32;
  const DxfHandle polyline = next_;
  Start("POLYLINE", "AcDb3dPolyline", pen);
  entities_.Integer(66, 1);  // vertices follow
  entities_.Point(10, {0, 0}, 0);
  entities_.Integer(70, kInSpace + (closed ? kClosed : 0));
  const auto part = [&](const char* kind) {
    entities_.Start(kind, next_++, polyline);
    entities_.Subclass("AcDbEntity");
    entities_.Text(8, LayerOf(pen).name);
  };
  for (const ZBR_PT3& p : points) {
    part("VERTEX");
    entities_.Subclass("AcDbVertex");
    entities_.Subclass("AcDb3dPolylineVertex");
    entities_.Point(10, p.xy(), p.z());
    entities_.Integer(70, kVertexInSpace);
    ExtendBy(p.xy(), p.z());
  }
  part("SEQEND");
}

void DxfDocument::AddText(const ZBR_PT& at, double height, const std::string& text, const DxfPen& pen) {
  Start("TEXT", "AcDbText", pen);
  entities_.Point(10, at, 0);
  entities_.Real(40, height);
  entities_.Text(1, DxfText(text));
  entities_.Text(7, "Standard");
  entities_.Subclass("AcDbText");
  ExtendBy(at);
  ExtendBy(at + ZBR_PT(0, height));
}

std::string DxfDocument::Take() {
  DxfOutput output(setup_.version);
  WriteDxfStart(output, setup_, {extent_, low_, high_}, next_);
  output.Append(entities_);
  WriteDxfEnd(output);
  return output.Take();
}

}  // namespace zbr::formats
