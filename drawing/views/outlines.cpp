// Outlines by the library, and their way back from the scene.
//
// A scene is centred and scaled, and what is merely scaled back is off by rounding: a width of 10 would come out
// as 10.000000000000002, and outlines of parts that fit would no longer share their edges. So the vertices of outlines are taken
// from the model where they are vertices of it.
//
// Of two objects one counts as nearer as a whole, which a section makes wrong as a rule: a pin lies behind the bush around it and
// before its far half. Nothing lies before what is cut, so cut faces go to their objects before objects are compared, and are in no
// overlap then.
#include <zbr-drawing/outlines.h>

#include <zbr-drawing/removal.h>
#include <zbr/boolean.h>
#include <zbr/tolerance.h>

#include <bit>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "drawing/parallel.h"
#include "drawing/views/bare_scene.h"
#include "drawing/views/section_outlines.h"

namespace zbr::drawing {
namespace {

// What hidden lines must take for walls seen edge-on still is part of an outline, so only triangles that are flat but for rounding
// errors are left out.
constexpr double kOutlineTolerance = 1e-12;

struct Place {
  std::uint64_t x, y;
  bool operator==(const Place&) const = default;
};
struct PlaceHash {
  std::size_t operator()(const Place& p) const {
    return static_cast<std::size_t>((p.x * 0x9e3779b97f4a7c15U ^ p.y) * 0xbf58476d1ce4e5b9U);
  }
};

Place PlaceOf(const ZBR_PT& p) {
  return {std::bit_cast<std::uint64_t>(p.x() + 0.0), std::bit_cast<std::uint64_t>(p.y() + 0.0)};
}

struct ObjectShells {
  ZBR_HL_SHELL* first;
  unsigned count;
  ZBR_HL_OUTLINE_SOURCES* sources;  // of its outline
};

// The shells of each object that has any; the others lost all their triangles when points were joined.
std::vector<ObjectShells> ObjectsOf(const Model& model, Scene& scene) {
  std::vector<ObjectShells> objects;
  for (std::size_t k = 0; k < model.ObjectCount(); ++k) {
    const std::uint32_t begin = model.objectBegin[k], end = model.objectBegin[k + 1];
    if (end > begin) objects.push_back({scene.shells.data() + begin, end - begin, &scene.outlines[k]});
  }
  return objects;
}

const LoopList& OutlineOf(const Model& model, const Scene& scene, std::size_t object) {
  static const LoopList kNone;
  const std::uint32_t begin = model.objectBegin[object];
  return begin < model.objectBegin[object + 1] ? scene.shells[begin].outline : kNone;
}

bool MayOverlap(LoopList& a, LoopList& b) {
  for (const auto& loop : a) {
    loop->Setup();
    for (const auto& other : b) {
      other->Setup();
      if (!loop->outof(*other, 0)) return true;
    }
  }
  return false;
}

void TakeAway(LoopList& from, LoopList& what) {
  if (!MayOverlap(from, what)) return;
  LoopList rest;
  zbrBooleanLoops(from, what, ZBR_BOOL_A_MINUS_B, rest);
  from = std::move(rest);
}

void Narrow(const std::vector<ObjectShells>& objects) {
  for (std::size_t j = 1; j < objects.size(); ++j) {
    for (std::size_t i = 0; i < j; ++i) {
      const ObjectShells& a = objects[i];
      const ObjectShells& b = objects[j];
      if (!MayOverlap(a.first->outline, b.first->outline)) continue;
      ZBR_HiddenLine::HiddenLineObjByObj(a.first, b.first, a.count, b.count, true);
    }
  }
}

template <class Move>
LoopList Moved(const LoopList& loops, const Move& move) {
  LoopList moved;
  ZBR_LOOP::DeepCopyLoops(moved, loops);
  ForEachRing(moved, [&](ZBR_LOOP& ring) {
    for (ZBR_PT& p : ring.pt()) p = move(p);
    ring.Reset();
    ring.Setup();
  });
  return moved;
}

template <class Move>
std::vector<LoopList> MovedOutlines(const Model& model, const Scene& scene, const Move& move) {
  std::vector<LoopList> outlines;
  for (std::size_t k = 0; k < model.ObjectCount(); ++k) outlines.push_back(Moved(OutlineOf(model, scene, k), move));
  return outlines;
}

// Where vertices of outlines are in the drawing, by their places in the scene. What nearer objects leave of an outline has vertices
// of whole outlines, and crossings of these.
class PlacesInDrawing {
 public:
  PlacesInDrawing(const Model& model, const Scene& scene) : model_(model), scene_(scene) {
    for (std::size_t k = 0; k < scene.outlines.size(); ++k) {
      const std::uint32_t first = model.objectBegin[k];
      if (first == model.objectBegin[k + 1]) continue;
      auto corner = scene.outlines[k].corners.begin();
      ForEachRing(scene.shells[first].outline_all, [&](const ZBR_LOOP& ring) {
        for (const ZBR_PT& p : ring.pt()) AddVertex(p, first, *corner++);
      });
    }
  }

  ZBR_PT operator()(const ZBR_PT& p) const {
    const auto place = places_.find(PlaceOf(p));
    return place != places_.end() ? place->second : scene_.ToDrawing(p);
  }

 private:
  void AddVertex(const ZBR_PT& p, std::size_t firstShell, const ZBR_HL_SOURCE& corner) {
    if (corner.triangle < 0 || scene_.view.perspective) return;
    const ZBR_ZBREPS& shell = model_.Shell(firstShell + static_cast<std::size_t>(corner.shell));
    const ZBR_PT3& vertex = VertexOf(*shell.GetTriangle(corner.triangle), static_cast<std::size_t>(corner.edge)).GetPt();
    const ZBR_PT3 q = scene_.view.In(vertex);
    places_.try_emplace(PlaceOf(p), q.x() + 0.0, q.y() + 0.0);  // without the sign of a zero
  }

  const Model& model_;
  const Scene& scene_;
  std::unordered_map<Place, ZBR_PT, PlaceHash> places_;
};

// Whole outlines, and what they run along if `traced`: corners are all that the way back needs.
std::vector<ObjectShells> OutlineAll(const Model& model, Scene& scene, bool traced, unsigned threads) {
  GiveUpLines(scene);
  scene.outlines.assign(model.ObjectCount(), {});
  std::vector<ObjectShells> objects = ObjectsOf(model, scene);
  RunParallel(objects.size(), threads, [&](std::size_t i) {
    const ZBR_TmpEps hold(kOutlineTolerance);
    ZBR_HL_OUTLINE_SOURCES& sources = *objects[i].sources;
    ZBR_HiddenLine::OutLineObj(objects[i].first, objects[i].count, sources);
    if (traced) return;
    sources.pieces = {};
    sources.offsets = {};
  });
  return objects;
}

// In the model's numbers; a scene's are places in the shells of an object.
OutlinePiece PieceOf(const Model& model, std::uint32_t firstShell, const ZBR_HL_PIECE& piece) {
  const std::uint32_t shell = firstShell + static_cast<std::uint32_t>(piece.source.shell);
  const std::size_t triangle = model.shellBegin[shell] + static_cast<std::size_t>(piece.source.triangle);
  return {shell, {model.source[triangle], static_cast<std::uint8_t>(piece.source.edge)}, piece.t0, piece.t1};
}

}  // namespace

void FindOutlines(const Model& model, Scene& scene, bool narrow, unsigned threads) {
  std::vector<CutFace> none;
  if (narrow) {
    FindSectionOutlines(model, scene, none, threads);
  } else {
    OutlineAll(model, scene, false, threads);
  }
}

std::vector<CutFace> CutFacesOf(const SectionCut& section, const Scene& scene) {
  std::vector<CutFace> faces;
  for (std::size_t i = 0; i < section.faces.size(); ++i) {
    LoopList loops = zbrLoopsOfRegion(section.covers[i].view());
    faces.push_back({section.faces[i].object, Moved(loops, [&](const ZBR_PT& p) { return p * scene.scale; })});
    for (std::size_t k = 0; k < i; ++k) {
      if (faces[k].object != faces[i].object) TakeAway(faces[i].loops, faces[k].loops);
    }
  }
  return faces;
}

void FindSectionOutlines(const Model& model, Scene& scene, std::vector<CutFace>& faces, unsigned threads) {
  const std::vector<ObjectShells> objects = OutlineAll(model, scene, false, threads);
  if (objects.size() < 2) return;
  RemoveHidden(scene, threads);
  const ZBR_TmpEps hold(kSceneTolerance);
  for (std::size_t k = 0; k < model.ObjectCount(); ++k) {
    const std::uint32_t begin = model.objectBegin[k];
    if (begin == model.objectBegin[k + 1]) continue;
    for (CutFace& face : faces) {
      if (face.object != k) TakeAway(scene.shells[begin].outline, face.loops);
    }
  }
  Narrow(objects);
}

std::vector<LoopList> OutlinesAroundMiddle(const Model& model, const Scene& scene) {
  return MovedOutlines(model, scene, [&](const ZBR_PT& p) { return ZBR_PT(p.x() / scene.scale, p.y() / scene.scale); });
}

std::vector<LoopList> OutlinesInPlace(const Model& model, const Scene& scene) {
  return MovedOutlines(model, scene, PlacesInDrawing(model, scene));
}

std::vector<LoopList> FindOutlines(const Model& model, const View& view, bool narrow, unsigned threads) {
  Scene scene = MakeScene(model, view, {}, false, threads);
  FindOutlines(model, scene, narrow, threads);
  return OutlinesInPlace(model, scene);
}

std::vector<TracedOutline> TraceOutlines(const Model& model, const View& view, unsigned threads) {
  Scene scene = MakeScene(model, view, {}, false, threads);
  OutlineAll(model, scene, true, threads);
  std::vector<TracedOutline> traced(model.ObjectCount());
  std::vector<LoopList> outlines = OutlinesInPlace(model, scene);
  for (std::size_t k = 0; k < traced.size(); ++k) {
    traced[k].loops = std::move(outlines[k]);
    ZBR_HL_OUTLINE_SOURCES& sources = scene.outlines[k];
    for (const ZBR_HL_PIECE& piece : sources.pieces) traced[k].pieces.push_back(PieceOf(model, model.objectBegin[k], piece));
    if (!sources.offsets.empty()) traced[k].offsets = std::move(sources.offsets);
  }
  return traced;
}

}  // namespace zbr::drawing
