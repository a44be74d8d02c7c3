// Outlines by the library, and their way back from the scene.
//
// A scene is centred and scaled, and what is merely scaled back is off by rounding: a width of 10 would come out
// as 10.000000000000002, and outlines of parts that fit would no longer share their edges. So the vertices of outlines are looked
// up among those of the model.
#include <zbr-drawing/outlines.h>

#include <zbr-drawing/removal.h>
#include <zbr/tolerance.h>

#include <bit>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "drawing/parallel.h"

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

struct ShellRange {
  ZBR_HL_SHELL* first;
  unsigned count;
};

// The shells of each object that has any; the others lost all their triangles when points were joined.
std::vector<ShellRange> ObjectsOf(const Model& model, Scene& scene) {
  std::vector<ShellRange> objects;
  for (std::size_t k = 0; k < model.ObjectCount(); ++k) {
    const std::uint32_t begin = model.objectBegin[k], end = model.objectBegin[k + 1];
    if (end > begin) objects.push_back({scene.shells.data() + begin, end - begin});
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

// Without lines there is nothing left to hide, and the comparison of two objects is one of their outlines alone.
void GiveUpLines(Scene& scene) {
  for (ZBR_HL_TRI& triangle : scene.triangles) {
    triangle.ClearEdgeAll();
    for (bool& drawn : triangle.dispj) drawn = false;
  }
}

void Narrow(const std::vector<ShellRange>& objects) {
  for (std::size_t j = 1; j < objects.size(); ++j) {
    for (std::size_t i = 0; i < j; ++i) {
      const auto& [a, na] = objects[i];
      const auto& [b, nb] = objects[j];
      if (MayOverlap(a->outline, b->outline)) ZBR_HiddenLine::HiddenLineObjByObj(a, b, na, nb, true);
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

// Where vertices of outlines are in the drawing, by their places in the scene. Few of the model's vertices are among them.
class ExactPlaces {
 public:
  ExactPlaces(const Model& model, const Scene& scene) : scene_(scene) {
    for (std::size_t k = 0; k < model.ObjectCount(); ++k) {
      ForEachRing(OutlineOf(model, scene, k), [&](const ZBR_LOOP& ring) {
        for (const ZBR_PT& p : ring.pt()) places_.try_emplace(PlaceOf(p), scene.ToDrawing(p));
      });
    }
    std::unordered_map<Place, ZBR_PT, PlaceHash> exact;
    for (std::size_t s = 0; s < model.ShellCount(); ++s) AddShell(model, s, exact);
    for (const auto& [place, p] : exact) places_[place] = p;
  }

  ZBR_PT operator()(const ZBR_PT& p) const { return places_.at(PlaceOf(p)); }

 private:
  void AddShell(const Model& model, std::size_t s, std::unordered_map<Place, ZBR_PT, PlaceHash>& exact) const {
    const ZBR_ZBREPS& shell = model.Shell(s);
    for (int t = 0; t < shell.GetTriangleCnt(); ++t) {
      const ZBR_HL_TRI& triangle = scene_.triangles[model.shellBegin[s] + static_cast<std::size_t>(t)];
      for (std::size_t i = 0; i < 3; ++i) {
        const Place place = PlaceOf(triangle.pt[i].xy());
        if (!places_.contains(place)) continue;
        const ZBR_PT3 p = scene_.view.In(VertexOf(*shell.GetTriangle(t), i).GetPt());
        exact.try_emplace(place, p.x() + 0.0, p.y() + 0.0);  // without the sign of a zero
      }
    }
  }

  const Scene& scene_;
  std::unordered_map<Place, ZBR_PT, PlaceHash> places_;
};

}  // namespace

void FindOutlines(const Model& model, Scene& scene, bool narrow, unsigned threads) {
  GiveUpLines(scene);
  const std::vector<ShellRange> objects = ObjectsOf(model, scene);
  RunParallel(objects.size(), threads, [&](std::size_t i) {
    const ZBR_TmpEps hold(kOutlineTolerance);
    ZBR_HiddenLine::OutLineObj(objects[i].first, objects[i].count);
  });
  if (!narrow || objects.size() < 2) return;
  RemoveHidden(scene, threads);
  const ZBR_TmpEps hold(kSceneTolerance);
  Narrow(objects);
}

std::vector<LoopList> OutlinesAroundMiddle(const Model& model, const Scene& scene) {
  return MovedOutlines(model, scene, [&](const ZBR_PT& p) { return ZBR_PT(p.x() / scene.scale, p.y() / scene.scale); });
}

std::vector<LoopList> OutlinesInPlace(const Model& model, const Scene& scene) {
  return MovedOutlines(model, scene, ExactPlaces(model, scene));
}

std::vector<LoopList> FindOutlines(const Model& model, const View& view, bool narrow, unsigned threads) {
  Scene scene = MakeScene(model, view);
  FindOutlines(model, scene, narrow, threads);
  return OutlinesInPlace(model, scene);
}

}  // namespace zbr::drawing
