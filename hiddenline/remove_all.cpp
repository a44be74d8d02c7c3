// Many shells at once, on as many threads as the caller gives.
//
// Two steps, each cut into pieces of work that do not disturb one another: shells are prepared, several at once or large ones in
// pieces, then runs of triangles lose what their own shell and the others hide. Edges get their intervals at the last moment, as
// most of them lose them again. A triangle's visible intervals are written by the piece that it belongs to and read by no other;
// what others read of it (vertices, plane, states) was written in the first step. Numbers are given beforehand by position. So
// neither the number of threads nor their order changes a bit.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/sharing.h"
#include "core/tolerance_state.h"
#include "hiddenline/driver.h"
#include "hiddenline/occluders.h"
#include "hiddenline/occlusion.h"
#include "hiddenline/preparation.h"

namespace {

// Triangles in one piece of work, of one large shell or of several small ones: some tenths of a second at most, and enough to make
// up for handing it out.
constexpr unsigned kPiece = 4096;
// Triangles of a shell whose own preparation is worth sharing out.
constexpr unsigned kLargeShell = 32768;
// What preparing a triangle costs, compared with removing what hides it; for the progress alone.
constexpr double kPreparingShare = 0.2;

// Whole shells, or a part of one.
struct Piece {
  unsigned firstShell, endShell;
  zbr::TriangleRange range;  // of each of them, as far as it has so many
};

// Runs pieces of work, tells how far they are, ends early when asked to or when one fails.
class Runner {
 public:
  Runner(const ZBR_HL_REMOVAL& options, double total) : sharing(&options.executor), options_(options), total_(total) {}

  const zbr::Sharing sharing;

  // False when it was ended early. What a piece of work throws is thrown here, after all have ended.
  template <class Work>
  bool Run(std::size_t count, Work work) {
    sharing.Run(count, [&](std::size_t i) {
      if (ended_) return;
      try {
        Tell(work(i));
      } catch (...) {
        ended_ = true;
        throw;
      }
    });
    return !ended_;
  }

 private:
  void Tell(double worth) {
    if (!options_.progress) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    done_ += worth;
    if (!ended_ && !options_.progress(total_ > 0.0 ? std::min(done_ / total_, 1.0) : 1.0)) ended_ = true;
  }

  const ZBR_HL_REMOVAL& options_;
  double total_;
  std::atomic<bool> ended_{false};
  std::mutex mutex_;
  double done_ = 0.0;
};

bool IsReady(const ZBR_HL_SHELL& shell) {
  return shell.count == 0 || shell.prepared || shell.done;
}

// Of `shells` shells of which each has so many triangles to go through.
template <class CountOf>
std::vector<Piece> PiecesOf(unsigned shells, CountOf countOf) {
  constexpr unsigned kAll = std::numeric_limits<unsigned>::max();
  std::vector<Piece> pieces;
  unsigned filled = kPiece;  // of the last piece
  for (unsigned s = 0; s < shells; ++s) {
    const unsigned n = countOf(s);
    if (n < kPiece - filled) {
      pieces.back().endShell = s + 1;
      filled += n;
    } else if (n < kPiece) {
      pieces.push_back({s, s + 1, {0, kAll}});
      filled = n;
    } else {
      for (unsigned begin = 0; begin < n; begin += std::min(kPiece, n - begin)) {
        pieces.push_back({s, s + 1, {begin, begin + std::min(kPiece, n - begin)}});
      }
      filled = kPiece;
    }
  }
  return pieces;
}

class Remover {
 public:
  Remover(ZBR_HL_SHELL* shells, unsigned count) : shells_(shells), states_(count) {
    for (unsigned i = 0; i < count; ++i) states_[i].isAlone = shells[i].done;
  }

  // A small shell is hidden by itself at once, while it is in the cache.
  void Prepare(std::size_t i, const zbr::Sharing& sharing) {
    ZBR_HL_SHELL& shell = shells_[i];
    if (!IsReady(shell)) {
      std::vector<char> draws;
      zbr::PrepareShell(shell, sharing, shell.count > kPiece ? &draws : nullptr);
      shell.prepared = true;
      states_[i].isBare = true;
      if (!draws.empty() && !shell.quad_built) PutInOrder(i, std::move(draws));  // not where the tree is a former one
    }
    if (shell.done) states_[i].visible = zbr::VisibleExtents(shell);
    if (shell.done || shell.count > kPiece) return;
    const zbr::ToleranceScope scope(zbr::kOcclusionEps);
    zbr::Occluding by;
    zbr::OwnLists own;
    HideAlone(i, {0, shell.count}, by, own.Lend(zbr::ContactOf(shell)));
    states_[i].isAlone = true;
    states_[i].visible = zbr::VisibleExtents(shell);
  }

  // The triangles of a prepared shell to go through.
  unsigned CountOf(unsigned i) const {
    const auto& order = states_[i].order;
    return order == nullptr ? shells_[i].count : static_cast<unsigned>(order->size());
  }

  // Removes from the triangles of a piece what hides them. Returns how many there are, those passed over included.
  double Remove(const Piece& piece, const zbr::ShellSearch& search) {
    const zbr::ToleranceScope scope(zbr::kOcclusionEps);
    zbr::OwnLists own;
    zbr::Occluding by;
    double triangles = 0.0;
    for (unsigned s = piece.firstShell; s < piece.endShell; ++s) {
      const unsigned count = CountOf(s);
      if (count == 0) triangles += shells_[s].count;
      if (count == 0) continue;
      ZBR_HL_SHELL& shell = shells_[s];
      State& state = states_[s];
      const zbr::TriangleRange range{piece.range.begin, std::min(piece.range.end, count), state.order.get()};
      const zbr::Scratch lists = own.Lend(zbr::ContactOf(shell));
      if (!state.isAlone) HideAlone(s, range, by, lists);
      zbr::FindOthersNear(shell, state.isAlone ? state.visible : AllOf(shell), search, by);
      state.pairs += zbr::HideTriangles(shell, range, by, lists);
      triangles += static_cast<double>(range.end - range.begin) / count * shell.count;
    }
    return triangles;
  }

  void Finish() {
    for (std::size_t s = 0; s < states_.size(); ++s) {
      shells_[s].pairs_tried += states_[s].pairs;
      shells_[s].done = true;
    }
  }

 private:
  // Of a shell.
  struct State {
    bool isAlone = false;                          // hidden by itself
    bool isBare = false;                           // its edges have no intervals before that
    std::unique_ptr<std::vector<unsigned>> order;  // of a large one: what it is gone through in
    zbr::Extents visible;                          // what is left of it by then
    std::atomic<std::uint64_t> pairs{0};
  };

  static zbr::Extents AllOf(const ZBR_HL_SHELL& s) { return {{s.min_x, s.min_y, s.max_x, s.max_y}, s.min_z, s.max_z}; }

  // Of the triangles that have something to draw. In the order of the tree each edge meets the occluders of the one before: of a
  // gear of 200,000 triangles seen along its axis, with steep walls under each other, that is a third of the time.
  void PutInOrder(std::size_t i, std::vector<char> draws) {
    const ZBR_HL_SHELL& shell = shells_[i];
    auto& order = *(states_[i].order = std::make_unique<std::vector<unsigned>>());
    const auto add = [&](std::size_t position) {
      if (draws[position] != 0) order.push_back(static_cast<unsigned>(position));
      draws[position] = 0;
    };
    shell.occluders->tree.ForEach([&](int position) { add(static_cast<std::size_t>(position)); });
    for (std::size_t k = 0; k < shell.count; ++k) add(k);  // invalid ones, and those whose extents are no numbers
  }

  void HideAlone(std::size_t i, zbr::TriangleRange range, zbr::Occluding& by, const zbr::Scratch& lists) {
    by.own = true;
    by.others.clear();
    by.search = nullptr;
    by.isBare = states_[i].isBare;
    states_[i].pairs += zbr::HideTriangles(shells_[i], range, by, lists);
    by.isBare = false;
  }

  ZBR_HL_SHELL* shells_;
  std::vector<State> states_;
};

// On every way out no shell is left prepared: those that are not done by then start afresh.
class NothingPrepared {
 public:
  NothingPrepared(ZBR_HL_SHELL* shells, unsigned count) : shells_(shells), count_(count) {}
  ~NothingPrepared() {
    for (unsigned i = 0; i < count_; ++i) shells_[i].prepared = false;
  }
  NothingPrepared(const NothingPrepared&) = delete;
  NothingPrepared& operator=(const NothingPrepared&) = delete;

 private:
  ZBR_HL_SHELL* shells_;
  unsigned count_;
};

// Small shells are shared out, then each of the large ones within itself. False when it was ended.
bool PrepareAll(const ZBR_HL_SHELL* shells, unsigned count, Runner& runner, Remover& remover) {
  const auto isLarge = [&](std::size_t i) { return shells[i].count > kLargeShell; };
  const auto prepare = [&](std::size_t i, const zbr::Sharing& sharing) {
    remover.Prepare(i, sharing);
    return kPreparingShare * shells[i].count;
  };
  if (!runner.Run(count, [&](std::size_t i) { return isLarge(i) ? 0.0 : prepare(i, zbr::Sharing()); })) return false;
  for (unsigned s = 0; s < count; ++s) {
    if (isLarge(s) && !runner.Run(1, [&](std::size_t) { return prepare(s, runner.sharing); })) return false;
  }
  return true;
}

double TrianglesOf(const ZBR_HL_SHELL* shells, unsigned count) {
  double sum = 0.0;
  for (unsigned i = 0; i < count; ++i) sum += shells[i].count;
  return sum;
}

}  // namespace

bool ZBR_HiddenLine::RemoveAll(ZBR_HL_SHELL* shells, unsigned count, const ZBR_HL_REMOVAL& options) {
  if (options.contact_tolerance > 0.0) {
    for (unsigned i = 0; i < count; ++i) shells[i].contact_tolerance = options.contact_tolerance;
  }
  zbr::NumberInOrder(shells, count);
  const NothingPrepared afterwards(shells, count);
  Runner runner(options, TrianglesOf(shells, count));
  Remover remover(shells, count);
  if (!PrepareAll(shells, count, runner, remover)) return false;
  const std::vector<Piece> pieces = PiecesOf(count, [&](unsigned s) { return remover.CountOf(s); });
  const zbr::ShellSearch search({shells, count});
  const auto remove = [&](std::size_t i) { return (1.0 - kPreparingShare) * remover.Remove(pieces[i], search); };
  if (!runner.Run(pieces.size(), remove)) return false;
  remover.Finish();
  return true;
}
