// The entry points of Booleans on loop lists.
#include <zbr/boolean.h>

#include "boolean/combination.h"
#include "core/constants.h"
#include "core/tolerance_state.h"

void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                     const ZBR_BOOLEAN_OPE* ops, std::vector<std::shared_ptr<ZBR_LOOP>>* results, int count,
                     std::vector<ZBR_CROSS>& crosses, ZBR_BOOLEAN_STATUS& status) {
  const zbr::ToleranceScope tolerance(zbr::kBooleanEps);
  crosses.clear();
  zbr::Combination work(A, B, crosses);
  work.FindCrossings();
  // A result list may be an operand: all are formed before the first is handed over.
  std::vector<std::vector<std::shared_ptr<ZBR_LOOP>>> formed;
  for (int k = 0; k < count; ++k) formed.push_back(work.Combine(ops[k]));
  work.MarkDone();
  status.exact = work.WasExact();
  for (int k = 0; k < count; ++k) results[k] = std::move(formed[static_cast<std::size_t>(k)]);
}

void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                     const ZBR_BOOLEAN_OPE* ops, std::vector<std::shared_ptr<ZBR_LOOP>>* results, int count,
                     std::vector<ZBR_CROSS>& crosses) {
  ZBR_BOOLEAN_STATUS status;
  zbrBooleanLoops(A, B, ops, results, count, crosses, status);
}

void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                     ZBR_BOOLEAN_OPE op, std::vector<std::shared_ptr<ZBR_LOOP>>& result) {
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(A, B, &op, &result, 1, crosses);
}
