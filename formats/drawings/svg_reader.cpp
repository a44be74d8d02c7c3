// Reads the shapes of SVG drawings: where they are drawn, with all transforms, views of parts (viewBox) and copies (use).
//
// Idea: the tree of elements is walked with a map to the page, which has its origin at the lower left and y upwards, as drawings
// have it, and is in millimetres where the file gives its size in a unit of length; else in the units of the file. Shapes become
// contours as they are in other drawings, each by itself: what lies in a ring in a ring is a hole, whatever is painted. A path that
// is filled closes, as it does in the picture; lines that are only stroked are as open as they are.
//
// Groups are layers, by the label that drawing programs give them, or by their id. Style sheets are not read: attributes and styles
// of the elements themselves tell what is filled and what is shown.
#include <zbr-drawing/affine.h>
#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "formats/drawings/svg_shapes.h"
#include "formats/drawings/svg_values.h"
#include "formats/pictures/svg_text.h"
#include "formats/text/blanks.h"
#include "formats/text/xml.h"

namespace zbr::formats {
namespace {

constexpr int kMillimetres = 4;                    // the code of the unit
constexpr int kDeepest = 1000, kDeepestCopy = 64;  // elements within each other, and copies within copies
constexpr std::size_t kMostCopied = 1000000;       // elements, where copies of copies multiply

// What holds for an element and what is in it.
struct Frame {
  Affine map;
  SvgViewport viewport;
  std::string_view layer;
  bool isFilled = true;
  bool isShown = true, isVisible = true;  // display takes out all that is in an element, visibility what does not say otherwise
  int depth = 0, copies = 0;
};

bool IsAnyOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// A property from the style, or else from the attribute of its name; empty where neither has it.
std::string_view PropertyOf(const XmlElement& element, std::string_view name) {
  std::string_view style = element.Attribute("style"), found;
  while (!style.empty()) {
    const std::string_view entry = style.substr(0, style.find(';'));
    style.remove_prefix(std::min(entry.size() + 1, style.size()));
    const std::size_t colon = entry.find(':');
    if (colon != std::string_view::npos && Trimmed(entry.substr(0, colon)) == name) found = Trimmed(entry.substr(colon + 1));
  }
  return found.empty() ? Trimmed(element.Attribute(name)) : found;
}

class SvgReader {
 public:
  SvgReader(const std::string& text, const std::string& file, Content content)
      : isForLines_(content == Content::kLines), elements_(ReadXml(text, file)) {
    drawing_.file = file;
    drawing_.joinsEnds = true;
    for (std::size_t i = 0; i < elements_.size(); ++i) {
      if (const std::string& id = elements_[i].Attribute("id"); !id.empty()) byId_.try_emplace(id, i);
    }
  }

  Drawing Read() {
    const XmlElement& root = elements_.front();
    if (root.name != "svg") FailAt(drawing_.file, root.line, "is XML, but no SVG: it begins with " + Quoted(root.name));
    if (root.Attribute(kContentAttribute) == kSheetContent)
      throw Failure(drawing_.file,
                    "is a sheet of views of a model, with frame and title; write the model's outline as a drawing, and read that");
    if (root.Attribute(kContentAttribute) == kPictureContent)
      throw Failure(drawing_.file,
                    "is a picture of a result, with legend and frame; write the result as DXF, GeoJSON or WKT, too, and read that");
    Frame page = PageOf(root);
    if (Inherit(root, page)) DrawChildren(root, page);
    for (const XmlElement& element : elements_) {
      if (element.name == "style") drawing_.LeaveOut("style sheet", element.line, false);
    }
    if (drawing_.paths.empty() && drawing_.leftOut.empty()) drawing_.LeaveOut("svg without shapes", root.line, false);
    return std::move(drawing_);
  }

 private:
  using Unit = SvgLength::Unit;

  struct Box {
    double x = 0.0, y = 0.0, width = 0.0, height = 0.0;
  };

  std::optional<Box> ViewBoxOf(const XmlElement& element) const {
    const std::string& text = element.Attribute("viewBox");
    if (text.empty()) return std::nullopt;
    const std::optional<std::vector<double>> numbers = SvgNumberList(text);
    if (!numbers || numbers->size() != 4) FailAt(drawing_.file, element.line, "viewBox needs four numbers, but is " + Quoted(text));
    const Box box{(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
    if (!(box.width > 0) || !(box.height > 0)) FailAt(drawing_.file, element.line, "viewBox " + Quoted(text) + " has no size");
    return box;
  }

  std::optional<SvgLength> LengthOf(const XmlElement& element, const char* name) const {
    const std::string& text = element.Attribute(name);
    if (text.empty() || text == "auto") return std::nullopt;
    const std::optional<SvgLength> length = ParseSvgLength(text);
    if (!length) FailAt(drawing_.file, element.line, std::string(name) + " is no length: " + Quoted(text));
    return length;
  }

  // From the view box to a box of this size, as preserveAspectRatio says.
  static Affine Fitted(const XmlElement& element, const Box& from, double width, double height) {
    const std::string& text = element.Attribute("preserveAspectRatio");
    double sx = width / from.width, sy = height / from.height;
    if (text.find("none") != std::string::npos) return Affine{sx, 0, -from.x * sx, 0, sy, -from.y * sy};
    sx = sy = text.find("slice") != std::string::npos ? std::max(sx, sy) : std::min(sx, sy);
    const auto part = [&](const char* least, const char* most) {
      return text.find(least) != std::string::npos ? 0.0 : (text.find(most) != std::string::npos ? 1.0 : 0.5);
    };
    const double dx = (width - from.width * sx) * part("xMin", "xMax"), dy = (height - from.height * sy) * part("YMin", "YMax");
    return Affine{sx, 0, dx - from.x * sx, 0, sy, dy - from.y * sy};
  }

  // Of the root: in millimetres, or in the units of the file where its size is in pixels or not given.
  Frame PageOf(const XmlElement& root) {
    const std::optional<Box> viewBox = ViewBoxOf(root);
    const std::optional<SvgLength> width = LengthOf(root, "width"), height = LengthOf(root, "height");
    const auto isPhysical = [](const std::optional<SvgLength>& l) { return l && l->unit == Unit::kPhysical && l->value > 0; };
    const auto isSize = [](const std::optional<SvgLength>& l) { return l && l->unit != Unit::kPercent && l->value > 0; };
    const double ownWidth = isSize(width) ? width->InUserUnits(0) : 0.0, ownHeight = isSize(height) ? height->InUserUnits(0) : 0.0;
    const Box view = viewBox.value_or(Box{0, 0, ownWidth, ownHeight});
    Frame page;
    page.viewport = {view.width, view.height};
    double pageHeight = view.height;
    page.map = Affine::Move(ZBR_PT(-view.x, -view.y));
    if (isPhysical(width) || isPhysical(height)) {
      drawing_.units = kMillimetres;
      const double w = isPhysical(width) ? width->value : height->value * (view.width / view.height);
      pageHeight = isPhysical(height) ? height->value : (view.width > 0 ? w * (view.height / view.width) : 0.0);
      page.map = viewBox ? Fitted(root, view, w, pageHeight) : Affine::Scale(kMillimetresPerPixel, kMillimetresPerPixel);
    }
    page.map = Affine{1, 0, 0, 0, -1, pageHeight}.After(page.map);
    return page;
  }

  // Takes over what an element says of itself and of what is in it; false where that does not tell its place.
  bool Inherit(const XmlElement& element, Frame& frame) {
    if (const std::string_view fill = PropertyOf(element, "fill"); !fill.empty() && fill != "inherit")
      frame.isFilled = fill != "none";
    if (PropertyOf(element, "display") == "none") frame.isShown = false;
    if (const std::string_view text = PropertyOf(element, "visibility"); !text.empty()) frame.isVisible = text == "visible";
    const std::string& label = element.Attribute("inkscape:label");
    if (element.name == "g" && !(label.empty() && element.Attribute("id").empty()))
      frame.layer = drawing_.names->Keep(label.empty() ? element.Attribute("id") : label);
    const std::string_view transform = PropertyOf(element, "transform");
    if (!transform.empty()) {
      const std::optional<Affine> own = ParseSvgTransform(transform);
      if (!own) {
        drawing_.LeaveOut(element.name + " with a malformed transform", element.line, true);
        return false;
      }
      frame.map = frame.map.After(*own);
    }
    for (const char* const cutter : {"clip-path", "mask"}) {
      if (const std::string_view by = PropertyOf(element, cutter); !by.empty() && by != "none")
        drawing_.LeaveOut(cutter, element.line, true);
    }
    return true;
  }

  void DrawChildren(const XmlElement& element, const Frame& frame) {
    for (const std::size_t child : element.children) Draw(elements_[child], frame);
  }

  void Draw(const XmlElement& element, Frame frame) {
    if (++frame.depth > kDeepest) FailAt(drawing_.file, element.line, "elements and copies are nested too deeply");
    if (frame.copies > 0 && ++copied_ > kMostCopied)
      FailAt(drawing_.file, element.line, "copies of copies make more than a million elements");
    const bool isShape = IsSvgShape(element.name);
    if (isShape || IsAnyOf(element.name, {"g", "a", "switch", "svg", "use"})) {
      if (!Inherit(element, frame)) return;
      if (isShape) return AddShape(element, frame);
      if (element.name == "use") return DrawCopy(element, frame);
      if (element.name != "svg") return DrawChildren(element, frame);
      return DrawView(element, LengthOf(element, "width"), LengthOf(element, "height"), frame);
    }
    if (IsAnyOf(element.name, {"text", "image", "foreignObject"})) drawing_.LeaveOut(element.name, element.line, false);
  }

  // A part of the page with coordinates of its own.
  void DrawView(const XmlElement& element, const std::optional<SvgLength>& width, const std::optional<SvgLength>& height,
                Frame frame) {
    const auto place = [&](const char* name, double whole) {
      const std::optional<SvgLength> length = LengthOf(element, name);
      return length ? length->InUserUnits(whole) : 0.0;
    };
    const SvgViewport& outer = frame.viewport;
    const double w = width ? width->InUserUnits(outer.width) : outer.width,
                 h = height ? height->InUserUnits(outer.height) : outer.height;
    if (element.name == "svg") frame.map = frame.map.After(Affine::Move(ZBR_PT(place("x", outer.width), place("y", outer.height))));
    frame.viewport = {w, h};
    if (const std::optional<Box> box = ViewBoxOf(element); box && w > 0 && h > 0) {
      frame.map = frame.map.After(Fitted(element, *box, w, h));
      frame.viewport = {box->width, box->height};
    }
    DrawChildren(element, frame);
  }

  void DrawCopy(const XmlElement& use, Frame frame) {
    const std::string& href = use.Attribute("href").empty() ? use.Attribute("xlink:href") : use.Attribute("href");
    const auto found = href.starts_with('#') ? byId_.find(href.substr(1)) : byId_.end();
    if (found == byId_.end()) return drawing_.LeaveOut("use of what the file does not hold", use.line, true);
    if (++frame.copies > kDeepestCopy) FailAt(drawing_.file, use.line, "copies are nested too deeply");
    const XmlElement& original = elements_[found->second];
    const std::optional<SvgLength> x = LengthOf(use, "x"), y = LengthOf(use, "y");
    frame.map = frame.map.After(
        Affine::Move(ZBR_PT(x ? x->InUserUnits(frame.viewport.width) : 0.0, y ? y->InUserUnits(frame.viewport.height) : 0.0)));
    if (original.name != "symbol") return Draw(original, frame);
    if (!Inherit(original, frame)) return;
    const auto size = [&](const char* name) { return LengthOf(use, name) ? LengthOf(use, name) : LengthOf(original, name); };
    DrawView(original, size("width"), size("height"), frame);
  }

  void AddShape(const XmlElement& element, const Frame& frame) {
    std::optional<std::vector<Path>> paths = SvgShapePaths(element, frame.viewport);
    if (!paths) return drawing_.LeaveOut("malformed " + element.name, element.line, true);
    if (IsFlat(frame.map)) return drawing_.LeaveOut(element.name + " without width", element.line, false);
    // What a style sheet says of the filling is not known.
    const bool closes = !isForLines_ && frame.isFilled && element.Attribute("class").empty();
    for (Path& path : *paths) Map(path, frame.map);
    if (!std::all_of(paths->begin(), paths->end(), IsFinite))
      return drawing_.LeaveOut(element.name + " whose coordinates overflow", element.line, true);
    for (Path& path : *paths) {
      if (closes && path.points.size() > 2) path.closed = true;
      path.line = element.line;
      path.layer = frame.layer;
      path.hidden = !frame.isShown || !frame.isVisible;
      drawing_.paths.push_back(std::move(path));
    }
  }

  // Whether it leaves nothing of the plane but a line.
  static bool IsFlat(const Affine& map) {
    constexpr double kFlattest = 1e-9;
    const ZBR_PT u = map.OfVector(ZBR_PT(1, 0)), v = map.OfVector(ZBR_PT(0, 1));
    return std::abs(u.OuterProduct(v)) <= kFlattest * (u.Length2() + v.Length2());
  }

  static bool IsFinite(const Path& path) {
    const auto isFinite = [](const ZBR_PT& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); };
    return std::all_of(path.points.begin(), path.points.end(), isFinite) &&
           std::all_of(path.curves.begin(), path.curves.end(), [&](const Curve& curve) {
             return curve.spline ? curve.spline->IsValid() : isFinite(curve.centre) && isFinite(curve.u) && isFinite(curve.v);
           });
  }

  bool isForLines_;
  std::vector<XmlElement> elements_;
  std::unordered_map<std::string, std::size_t> byId_;
  std::size_t copied_ = 0;
  Drawing drawing_;
};

}  // namespace

Drawing ReadSvg(const std::string& text, const std::string& file, Content content) {
  return SvgReader(text, file, content).Read();
}

}  // namespace zbr::formats
