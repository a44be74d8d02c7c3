// Bringing loop lists into the form the Boolean expects; everything geometric is done by the loop tree.
#include <zbr/boolean.h>

void zbrOptimizeLoops(std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  // On a copy, so that the caller's list is whole until the tree is.
  std::vector<std::shared_ptr<ZBR_LOOP>> work = loops;
  zbrMakeLoopTree(work);
  loops = work;
}

void zbrOptimizeLoop(const std::shared_ptr<ZBR_LOOP>& loop, std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  loops.push_back(loop);
}
