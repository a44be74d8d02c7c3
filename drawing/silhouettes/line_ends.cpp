#include "drawing/silhouettes/line_ends.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <tuple>
#include <utility>

namespace zbr::drawing {
namespace {

constexpr std::uint32_t kNone = 0xffffffffU;

// Pieces are numbered, the view's own first, and their ends in pairs.
class EndJoiner {
 public:
  EndJoiner(ViewLines& view, std::vector<Line>& lines, double scale) : view_(view) {
    for (Line& line : view.lines) {
      if (!line.hidden && line.edgeClass == EdgeClass::kSilhouette && !line.chain.closed && line.chain.curves.empty())
        AddPiece(line, scale);
    }
    own_ = pieces_.size();
    for (Line& line : lines) {
      if (line.chain.closed) {
        Shrink(line.chain, scale);
        added_.push_back(std::move(line));
      } else {
        AddPiece(line, 1.0);
        Shrink(line.chain, scale);
      }
    }
  }

  void Run() {
    FindPartners();
    done_.resize(pieces_.size());
    for (std::uint32_t end = 0; end < partner_.size(); ++end) {
      if (partner_[end] == kNone && !done_[end / 2]) Follow(end);
    }
    for (std::uint32_t end = 0; end < partner_.size(); end += 2) {
      if (!done_[end / 2]) Follow(end);
    }
    std::erase_if(view_.lines, [](const Line& line) { return line.chain.points.empty(); });
    AddVisible(view_, std::move(added_));
  }

 private:
  struct End {
    std::tuple<std::uint32_t, double, double> key;
    std::uint32_t end;
  };

  static void Shrink(Chain& chain, double scale) {
    for (ZBR_PT& p : chain.points) p.Set(p.x() / scale, p.y() / scale);
  }

  void AddPiece(Line& line, double scale) {
    for (const ZBR_PT& p : {line.chain.points.front() * scale, line.chain.points.back() * scale})
      ends_.push_back({{line.shell, p.x(), p.y()}, static_cast<std::uint32_t>(ends_.size())});
    pieces_.push_back(&line);
  }

  // What the view has is left as it is but where something is added.
  void FindPartners() {
    partner_.assign(ends_.size(), kNone);
    std::sort(ends_.begin(), ends_.end(),
              [](const End& a, const End& b) { return std::tie(a.key, a.end) < std::tie(b.key, b.end); });
    for (std::size_t begin = 0, end = 0; begin < ends_.size(); begin = end) {
      while (end < ends_.size() && ends_[end].key == ends_[begin].key) ++end;
      if (end - begin != 2 || ends_[begin + 1].end / 2 < own_) continue;
      partner_[ends_[begin].end] = ends_[begin + 1].end;
      partner_[ends_[begin + 1].end] = ends_[begin].end;
    }
  }

  // From an end at which a piece is entered.
  void Follow(std::uint32_t start) {
    std::vector<std::uint32_t> entered;
    std::uint32_t end = start;
    for (; end != kNone && !done_[end / 2]; end = partner_[end ^ 1U]) {
      done_[end / 2] = true;
      entered.push_back(end);
    }
    if (entered.size() == 1 && start / 2 < own_) return;
    Line line = *pieces_[start / 2];
    line.chain = {};
    for (const std::uint32_t at : entered) Append(line.chain, std::move(pieces_[at / 2]->chain), at % 2 == 1);
    line.chain.closed = end != kNone;
    if (line.chain.closed) line.chain.points.back() = line.chain.points.front();
    const std::uint32_t first = *std::min_element(entered.begin(), entered.end());
    if (first / 2 < own_) {
      *pieces_[first / 2] = std::move(line);
    } else {
      added_.push_back(std::move(line));
    }
  }

  static void Append(Chain& chain, Chain&& piece, bool backwards) {
    if (backwards) {
      std::reverse(piece.points.begin(), piece.points.end());
      std::reverse(piece.edges.begin(), piece.edges.end());
    }
    if (!chain.points.empty()) chain.points.pop_back();
    chain.points.insert(chain.points.end(), piece.points.begin(), piece.points.end());
    for (const EdgeRef& edge : piece.edges) {
      if (chain.edges.empty() || !(chain.edges.back() == edge)) chain.edges.push_back(edge);
    }
    piece = {};
  }

  ViewLines& view_;
  std::vector<Line*> pieces_;
  std::size_t own_ = 0;  // pieces of the view
  std::vector<End> ends_;
  std::vector<std::uint32_t> partner_;
  std::vector<bool> done_;
  std::vector<Line> added_;
};

}  // namespace

void AddToEnds(ViewLines& view, std::vector<Line> lines, double scale) {
  EndJoiner(view, lines, scale).Run();
}

}  // namespace zbr::drawing
