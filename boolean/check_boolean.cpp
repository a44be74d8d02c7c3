// Runs the whole Boolean on one pair of inputs and drops the results.
#include <zbr/boolean.h>

#include "core/tolerance_state.h"

void zbrCheckPolyBoolean(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                         bool alsoSwapped) {
  ZBR_BOOLEAN_OPE ops[] = {ZBR_BOOL_A_MINUS_B, ZBR_BOOL_B_MINUS_A, ZBR_BOOL_AND, ZBR_BOOL_OR, ZBR_BOOL_XOR};
  std::vector<std::shared_ptr<ZBR_LOOP>> results[5];
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(A, B, ops, results, 5, crosses);
  std::vector<std::shared_ptr<ZBR_LOOP>> swappedResult;
  std::vector<ZBR_CROSS> swappedCrosses;
  zbrBooleanLoops(B, A, ops, &swappedResult, 1, swappedCrosses);
  zbr::t_tolerance = zbr::MakeTolerance(zbr::t_tolerance.eps);
  if (alsoSwapped) zbrCheckPolyBoolean(B, A, false);
}
