// What the hidden-line benchmarks need of a library: the same small interface for ours and for its peers.
#pragma once

#include <zbr-drawing/model.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/view.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace bench {

// Of a drawing, what can be compared: lengths are those of the projections, in scene units.
struct DrawnLines {
  double visible = 0.0;
  double visibleJunctions = 0.0;  // the part of it on edges of three and more triangles, counted once or more
  std::size_t pieces = 0;         // visible stretches, not chained
  std::uint64_t checksum = 0;     // of all ends of the stretches, to the bit; ours only
};

// Goes any number of times through Load (outside the clock: brings the model into the library's own form, without anything that an
// earlier Run left), Run (timed: removes the hidden lines) and Describe.
class HiddenRemover {
 public:
  virtual ~HiddenRemover() = default;
  virtual void Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) = 0;
  virtual void Run() = 0;
  virtual DrawnLines Describe() const = 0;
};

// Ours, whose scene stays open to what follows a removal.
class ZbrRemover final : public HiddenRemover {
 public:
  void Load(const zbr::drawing::Model& model, const zbr::drawing::View& view) override;
  void Run() override;
  DrawnLines Describe() const override;
  // As Run, in pieces for threads but on one. Returns the part of the time that is spent in pieces.
  double RunInPieces();
  const zbr::drawing::Scene& scene() const { return scene_; }

 private:
  zbr::drawing::Scene scene_;
};

// The polygonal algorithm of Open CASCADE; only where it was found when this was built.
std::unique_ptr<HiddenRemover> MakeOpenCascadeRemover();

// The least that a remover takes which asks a ray tracer, and a plain program with a grid: written here to be measured beside.
std::unique_ptr<HiddenRemover> MakeRaysBound();
std::unique_ptr<HiddenRemover> MakePlainGrid();

}  // namespace bench
