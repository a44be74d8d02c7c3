// Workloads as our loops, and what they hold.

#include "zbr_loops.h"

namespace bench {

ZBR_BOOLEAN_OPE LibraryOp(Op op) {
  switch (op) {
    case Op::kUnion:
      return ZBR_BOOL_OR;
    case Op::kIntersection:
      return ZBR_BOOL_AND;
    case Op::kAMinusB:
      return ZBR_BOOL_A_MINUS_B;
    case Op::kBMinusA:
      return ZBR_BOOL_B_MINUS_A;
    case Op::kXor:
      return ZBR_BOOL_XOR;
  }
  return ZBR_BOOL_OR;
}

std::shared_ptr<ZBR_LOOP> MakeLoop(const Ring& ring) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt() = ring;
  loop->Setup();
  return loop;
}

LoopList MakeNested(const Region& region) {
  LoopList loops;
  for (const Polygon& polygon : region) {
    loops.push_back(MakeLoop(polygon.outer));
    for (const Ring& hole : polygon.holes) loops.push_back(MakeLoop(hole));
  }
  zbrMakeLoopTree(loops);
  return loops;
}

Summary Summarise(const LoopList& loops) {
  Summary summary;
  for (const auto& loop : loops) {
    summary.Add(Area(loop->pt()));
    for (const auto& hole : loop->children()) summary.Add(Area(hole->pt()));
  }
  return summary;
}

}  // namespace bench
