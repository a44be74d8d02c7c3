// The loop record: cached area and box, copies, and operations on whole forests.
//
// Loops may be nested as deep as there are loops, so everything that visits children does so with a stack of its own instead of
// recursion.
#include <zbr/loop.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <new>

#include "core/boundary.h"
#include "loops/point_in_loop.h"

namespace {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;

// Calls visit(loop) for every loop of the list and its descendants.
template <class Visit>
void ForEachLoop(const LoopList& loops, Visit visit) {
  std::vector<const LoopList*> pending{&loops};
  while (!pending.empty()) {
    const LoopList& list = *pending.back();
    pending.pop_back();
    for (const std::shared_ptr<ZBR_LOOP>& loop : list) {
      visit(*loop);
      if (!loop->children().empty()) pending.push_back(&loop->children());
    }
  }
}

// Deep copies of the loops of a list. They are hung nowhere until all are made: the place they go to may lie among the loops read.
LoopList CopiesOf(const LoopList& loops) {
  struct Job {
    LoopList source;
    LoopList* target;
  };
  LoopList copies;
  std::vector<Job> pending;
  pending.push_back({loops, &copies});
  while (!pending.empty()) {
    const Job job = std::move(pending.back());
    pending.pop_back();
    job.target->reserve(job.source.size());
    for (const std::shared_ptr<ZBR_LOOP>& loop : job.source) {
      const auto copy = std::make_shared<ZBR_LOOP>();
      copy->CopyMember(*loop);
      job.target->push_back(copy);
      if (!loop->children().empty()) pending.push_back({loop->children(), &copy->children()});
    }
  }
  return copies;
}

}  // namespace

ZBR_LOOP::ZBR_LOOP(const ZBR_LOOP& o) = default;

ZBR_LOOP& ZBR_LOOP::operator=(const ZBR_LOOP& o) {
  if (this == &o) return *this;
  LoopList copies = CopiesOf(o.children_);
  CopyMember(o);
  std::move(copies.begin(), copies.end(), std::back_inserter(children_));
  return *this;
}

namespace {

// False when there is no memory for `more` loops: loops are released in that case, too, and nothing may throw then.
bool MakeRoom(LoopList& list, std::size_t more) {
  const std::size_t needed = list.size() + more;
  if (needed <= list.capacity()) return true;
  try {
    list.reserve(std::max(needed, 2 * list.capacity()));
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

}  // namespace

ZBR_LOOP::~ZBR_LOOP() {
  // A loop released here as last owner gives up its children first, so that no destructor calls another through the depth of the
  // nesting (as long as there is memory).
  LoopList pending = std::move(children_);
  while (!pending.empty()) {
    const std::shared_ptr<ZBR_LOOP> loop = std::move(pending.back());
    pending.pop_back();
    if (loop.use_count() != 1) continue;
#if !defined(__SANITIZE_THREAD__)                         // which does not model fences
    std::atomic_thread_fence(std::memory_order_acquire);  // other owners may have let go of it on other threads
#endif
    if (!MakeRoom(pending, loop->children_.size())) continue;  // its own destructor does it, one level deeper
    std::move(loop->children_.begin(), loop->children_.end(), std::back_inserter(pending));
    loop->children_.clear();
  }
}

void ZBR_LOOP::CopyMember(const ZBR_LOOP& o) {
  if (this == &o) return;
  pt() = o.pt();
  level_ = o.level_;
  setuped_ = o.setuped_;
  area_ = o.area_;
  xmax_ = o.xmax_;
  xmin_ = o.xmin_;
  ymax_ = o.ymax_;
  ymin_ = o.ymin_;
}

void ZBR_LOOP::Setup() {
  if (setuped_) return;
  area_ = get_area();
  const zbr::Box box = zbr::BoundsOf(pt());
  xmax_ = box.xmax;
  xmin_ = box.xmin;
  ymax_ = box.ymax;
  ymin_ = box.ymin;
  setuped_ = true;
}

void ZBR_LOOP::reverse() {
  std::reverse(pt().begin(), pt().end());
  area_ = -area_;
}

bool ZBR_LOOP::outof(const ZBR_LOOP& o, double d) const {
  return zbr::AreApart(zbr::BoxOf(*this), zbr::BoxOf(o), d);
}

void ZBR_LOOP::Offset(const ZBR_PT& v) {
  const auto translate = [v](ZBR_LOOP& loop) {  // by value: v may be a point of the loop
    for (ZBR_PT& p : loop.pt()) p += v;
    loop.xmax_ += v.x();
    loop.xmin_ += v.x();
    loop.ymax_ += v.y();
    loop.ymin_ += v.y();
  };
  translate(*this);
  ForEachLoop(children_, translate);
}

void ZBR_LOOP::Offset(std::vector<std::shared_ptr<ZBR_LOOP>>& loops, const ZBR_PT& v) {
  const ZBR_PT by = v;
  for (const std::shared_ptr<ZBR_LOOP>& loop : loops) loop->Offset(by);
}

ZBR_PT ZBR_LOOP::LinTo(double t) const {
  return zbr::BoundaryPoint(pt(), t);
}

double ZBR_LOOP::get_area(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  // A sum per list, as if by recursion: a child list is summed up before it is added to the sum of the list it hangs in.
  struct Partial {
    const LoopList* list;
    std::size_t next;
    double sum;
  };
  std::vector<Partial> stack{{&loops, 0, 0.0}};
  for (;;) {
    Partial& top = stack.back();
    if (top.next < top.list->size()) {
      stack.push_back({&(*top.list)[top.next]->children_, 0, 0.0});
      continue;
    }
    const double sum = top.sum;
    stack.pop_back();
    if (stack.empty()) return sum;
    Partial& up = stack.back();
    up.sum += (*up.list)[up.next]->area_ + sum;
    ++up.next;
  }
}

void ZBR_LOOP::CopyLoopsPtr(std::vector<std::shared_ptr<ZBR_LOOP>>& dst, const std::vector<std::shared_ptr<ZBR_LOOP>>& src) {
  // The assignment may release the loop that owns src.
  LoopList copy = src;
  dst = std::move(copy);
}

void ZBR_LOOP::DeepCopyLoops(std::vector<std::shared_ptr<ZBR_LOOP>>& dst, const std::vector<std::shared_ptr<ZBR_LOOP>>& src) {
  dst = CopiesOf(src);
}

void ZBR_LOOP::AppendTopLoopDup(std::vector<std::shared_ptr<ZBR_LOOP>>& loops, const ZBR_LOOP& o) {
  auto copy = std::make_shared<ZBR_LOOP>();
  copy->CopyMember(o);
  copy->level_ = -1;
  loops.push_back(std::move(copy));
}
