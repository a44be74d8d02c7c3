// Many shells at once, on as many threads as the caller gives.
//
// Two steps, each cut into pieces of work that do not disturb one another: shells are prepared one by one, then runs of triangles
// lose what their own shell and the others hide. A triangle's visible intervals are written by the piece that it belongs to and
// read by no other; what others read of it (vertices, plane, states) was written in the first step. Numbers are given beforehand by
// position. So neither the number of threads nor their order changes a bit.
#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <vector>

#include <zbr/hidden_line.h>

#include "core/constants.h"
#include "core/tolerance_state.h"
#include "hiddenline/driver.h"

namespace {

// Triangles in one piece of work: some tenths of a second at most, and enough to make up for handing it out.
constexpr unsigned kPiece = 4096;
// What preparing a triangle costs, compared with removing what hides it; for the progress alone.
constexpr double kPreparingShare = 0.2;

struct Piece {
  ZBR_HL_SHELL* shell;
  zbr::TriangleRange range;
  bool alsoItself;  // the shell's own pass is still to be made
  std::uint64_t pairs = 0;
};

// Runs pieces of work under the caller's tolerance, tells how far they are, ends early when asked to or when one fails.
class Runner {
 public:
  Runner(const ZBR_HL_REMOVAL& options, double total) : options_(options), total_(total), eps_(zbr::t_tolerance.eps) {}

  // False when it was ended early. What a piece of work throws is thrown here, after all have ended.
  template <class Work>
  bool Run(std::size_t count, Work work) {
    const std::function<void(std::size_t)> guarded = [&](std::size_t i) {
      if (ended_) return;
      try {
        const zbr::ToleranceScope scope(eps_);
        Tell(work(i));
      } catch (...) {
        Fail(std::current_exception());
      }
    };
    if (options_.executor) {
      options_.executor(count, guarded);
    } else {
      for (std::size_t i = 0; i < count; ++i) guarded(i);
    }
    if (failure_) std::rethrow_exception(failure_);
    return !ended_;
  }

 private:
  void Tell(double worth) {
    if (!options_.progress) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    done_ += worth;
    if (!ended_ && !options_.progress(std::min(done_ / total_, 1.0))) ended_ = true;
  }
  void Fail(std::exception_ptr failure) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!failure_) failure_ = std::move(failure);
    ended_ = true;
  }

  const ZBR_HL_REMOVAL& options_;
  double total_;
  double eps_;
  std::atomic<bool> ended_{false};
  std::mutex mutex_;
  double done_ = 0.0;
  std::exception_ptr failure_;
};

bool IsReady(const ZBR_HL_SHELL& shell) {
  return shell.count == 0 || shell.prepared || shell.done;
}

std::vector<Piece> PiecesOf(ZBR_HL_SHELL* shells, unsigned count) {
  std::vector<Piece> pieces;
  for (unsigned s = 0; s < count; ++s) {
    const unsigned n = shells[s].count;
    for (unsigned begin = 0; begin < n; begin += kPiece) {
      pieces.push_back({&shells[s], {begin, begin + std::min(kPiece, n - begin)}, !shells[s].done});
    }
  }
  return pieces;
}

void Remove(Piece& piece, const zbr::ShellSearch& search) {
  const zbr::ToleranceScope scope(zbr::kOcclusionEps);
  zbr::OwnLists own;
  const zbr::Scratch lists = own.Lend(zbr::ContactOf(*piece.shell));
  if (piece.alsoItself) piece.pairs += zbr::HideTriangles(*piece.shell, piece.range, {{piece.shell}}, lists);
  piece.pairs += zbr::HideTriangles(*piece.shell, piece.range, zbr::OthersNear(*piece.shell, search), lists);
}

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
  const bool prepared = runner.Run(count, [&](std::size_t i) {
    ZBR_HL_SHELL& shell = shells[i];
    if (!IsReady(shell)) {
      zbr::PrepareShell(shell);
      shell.prepared = true;
    }
    return kPreparingShare * shell.count;
  });
  if (!prepared) return false;
  const zbr::ShellSearch search({shells, count});
  std::vector<Piece> pieces = PiecesOf(shells, count);
  const bool finished = runner.Run(pieces.size(), [&](std::size_t i) {
    Remove(pieces[i], search);
    return (1.0 - kPreparingShare) * (pieces[i].range.end - pieces[i].range.begin);
  });
  if (!finished) return false;
  for (const Piece& piece : pieces) piece.shell->pairs_tried += piece.pairs;
  for (unsigned i = 0; i < count; ++i) shells[i].done = true;
  return true;
}
