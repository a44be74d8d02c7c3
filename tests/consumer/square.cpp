// A second source that includes the headers, so that a definition missing its `inline` fails to link.
#include "square.h"

std::shared_ptr<ZBR_LOOP> MakeSquare(double x, double y, double side) {
  auto loop = std::make_shared<ZBR_LOOP>();
  loop->pt() = {ZBR_PT(x, y), ZBR_PT(x + side, y), ZBR_PT(x + side, y + side), ZBR_PT(x, y + side)};
  return loop;
}
