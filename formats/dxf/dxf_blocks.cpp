// Puts blocks in their places.
//
// Difficulty: blocks hold blocks, in columns and rows, so that a small file can stand for more than any memory holds, or for
// a block within itself. So the points that will come out are counted before, blocks without any are unfolded once, for what they
// left out, and those that are being unfolded are known.
#include <zbr-drawing/failure.h>
#include <zbr-drawing/numbers.h>

#include <map>
#include <set>
#include <utility>

#include "formats/dxf/dxf_contents.h"

namespace zbr::formats {
namespace {

constexpr double kMostPoints = 10000000;  // which take some gigabytes
constexpr std::size_t kDeepest = 100;
constexpr std::string_view kByBlock = "BYBLOCK";

// How the copies of a block differ from the block.
struct Place {
  Affine map;
  double heightScale = 1.0, height = 0.0;
  const DxfInsert* as = nullptr;  // with its own layer and colour resolved
  std::size_t line = 0;           // of the outermost insert
  bool hidden = false;
};

class Unfolding {
 public:
  Unfolding(const DxfBlocks& blocks, bool keepHeights, Drawing& drawing)
      : blocks_(blocks), keepHeights_(keepHeights), drawing_(drawing) {
    for (const DrawingLayer& layer : drawing.layers) {
      if (layer.frozen) frozen_.insert(DxfCapitals(layer.name));
      if (layer.off || layer.frozen) hidden_.insert(DxfCapitals(layer.name));
    }
  }

  void UnfoldDrawing(DxfContents& contents) {
    auto insert = contents.inserts.begin();
    for (std::size_t i = 0; i <= contents.paths.size(); ++i) {
      for (; insert != contents.inserts.end() && insert->before == i; ++insert) Unfold(*insert, Place());
      if (i == contents.paths.size()) break;
      AddPath(std::move(contents.paths[i]), Place());
    }
    AddLeftOut(contents.leftOut);
  }

 private:
  void AddPath(Path path, const Place& place) {
    if (place.as != nullptr) {
      Map(path, place.map);
      Raise(path, place);
      path.line = place.line;
      if (path.layer == "0") path.layer = place.as->layer;
      if (path.colour == kColourByBlock) path.colour = place.as->colour;
      if (DxfCapitals(path.lineType) == kByBlock) path.lineType = place.as->lineType;
    }
    path.hidden = path.hidden || place.hidden || (!hidden_.empty() && hidden_.contains(DxfCapitals(path.layer)));
    drawing_.paths.push_back(std::move(path));
  }

  void Raise(Path& path, const Place& place) const {
    if (!keepHeights_) return;
    if (path.heights.empty() && place.height != 0) path.heights.resize(path.points.size());
    for (double& z : path.heights) z = z * place.heightScale + place.height;
  }

  void AddLeftOut(const std::map<std::string, LeftOut>& leftOut) {
    for (const auto& [what, left] : leftOut) {
      LeftOut& all = drawing_.leftOut[what];
      if (all.count == 0 || left.line < all.line) all.line = left.line;
      all.count += left.count;
      all.bearsContours = all.bearsContours || left.bearsContours;
    }
  }

  // The insert with layer, colour and line type that it has where it stands.
  DxfInsert Resolved(DxfInsert insert, const Place& outer) const {
    if (outer.as == nullptr) return insert;
    if (insert.layer == "0") insert.layer = outer.as->layer;
    if (insert.colour == kColourByBlock) insert.colour = outer.as->colour;
    if (DxfCapitals(insert.lineType) == kByBlock) insert.lineType = outer.as->lineType;
    return insert;
  }

  void Unfold(const DxfInsert& insert, const Place& outer) {
    if (++made_ > kMostPoints) FailTooMany(insert.line);
    const auto found = blocks_.find(DxfCapitals(insert.block));
    const char* fault = nullptr;
    if (found == blocks_.end()) {
      fault = "INSERT of a block that is not there";
    } else if (found->second.isElsewhere) {
      fault = "INSERT of another file";
    } else if (open_.contains(&found->second) || open_.size() >= kDeepest) {
      fault = "INSERT of a block within itself";
    }
    if (fault != nullptr) return drawing_.LeaveOut(fault, insert.line, true);
    const DxfBlock& block = found->second;
    const double points = PointsOf(block);
    if (outer.as == nullptr) Count(points * static_cast<double>(insert.rows) * static_cast<double>(insert.columns), insert.line);
    if (points == 0 && !emptyOnes_.insert(&block).second) return;
    open_.insert(&block);
    const DxfInsert resolved = Resolved(insert, outer);
    for (long long row = 0; row < insert.rows; ++row) {
      for (long long column = 0; column < insert.columns; ++column) {
        UnfoldCopy(block, resolved, outer, insert.column * static_cast<double>(column) + insert.row * static_cast<double>(row));
        if (points == 0) break;
      }
      if (points == 0) break;
    }
    open_.erase(&block);
  }

  void UnfoldCopy(const DxfBlock& block, const DxfInsert& insert, const Place& outer, const ZBR_PT& moved) {
    Place place;
    place.map = outer.map.After(Affine::Move(moved).After(insert.place.After(Affine::Move(block.base.xy() * -1.0))));
    place.heightScale = outer.heightScale * insert.heightScale;
    place.height = outer.height + outer.heightScale * (insert.height - insert.heightScale * block.base.z());
    place.as = &insert;
    place.line = outer.as == nullptr ? insert.line : outer.line;
    place.hidden = outer.hidden || insert.hidden || frozen_.contains(DxfCapitals(insert.layer));
    const DxfContents& contents = block.contents;
    made_ += static_cast<double>(contents.paths.size());
    if (made_ > kMostPoints) FailTooMany(place.line);
    auto inner = contents.inserts.begin();
    for (std::size_t i = 0; i <= contents.paths.size(); ++i) {
      for (; inner != contents.inserts.end() && inner->before == i; ++inner) Unfold(*inner, place);
      if (i == contents.paths.size()) break;
      AddPath(contents.paths[i], place);
    }
    AddLeftOut(contents.leftOut);
  }

  // How many points a copy of the block stands for. Of one within itself, or nested too deep, a part of them, as it may stand
  // elsewhere with more; those are counted as they are made.
  double PointsOf(const DxfBlock& block, std::size_t depth = 0) {
    constexpr double kSome = 1.0;
    if (depth > kDeepest) return kSome;
    const auto [known, isNew] = pointsOf_.emplace(&block, kSome);
    if (!isNew) return known->second;
    double points = 0;
    for (const Path& path : block.contents.paths) points += static_cast<double>(path.points.size() + path.curves.size());
    for (const DxfInsert& insert : block.contents.inserts) {
      const auto found = blocks_.find(DxfCapitals(insert.block));
      if (found == blocks_.end()) continue;
      points += PointsOf(found->second, depth + 1) * static_cast<double>(insert.rows) * static_cast<double>(insert.columns);
    }
    return pointsOf_[&block] = points;
  }

  void Count(double points, std::size_t line) {
    points_ += points;
    if (points_ > kMostPoints) FailTooMany(line);
  }
  [[noreturn]] void FailTooMany(std::size_t line) const {
    FailAt(drawing_.file, line, "the blocks stand for more than " + RoundedText(kMostPoints, 1) + " points");
  }

  const DxfBlocks& blocks_;
  bool keepHeights_;
  Drawing& drawing_;
  std::set<std::string, std::less<>> frozen_, hidden_;
  std::set<const DxfBlock*> open_;
  std::set<const DxfBlock*> emptyOnes_;  // that were unfolded
  std::map<const DxfBlock*, double> pointsOf_;
  double points_ = 0;
  double made_ = 0;  // inserts taken up and paths made of them
};

}  // namespace

std::string DxfCapitals(std::string_view name) {
  std::string capitals(name);
  for (char& c : capitals) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return capitals;
}

void UnfoldBlocks(DxfContents contents, const DxfBlocks& blocks, bool keepHeights, Drawing& drawing) {
  Unfolding(blocks, keepHeights, drawing).UnfoldDrawing(contents);
}

}  // namespace zbr::formats
