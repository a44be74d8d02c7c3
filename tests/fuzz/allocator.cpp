// The block allocator: buffers keep what is written to them until they are taken back, whatever else is asked for, through
// whichever handle.
#include <algorithm>
#include <utility>
#include <vector>

#include <zbr/allocator.h>

#include "fuzz/bytes.h"

void Fuzz(Bytes& bytes) {
  ZBR_CSimpleAlloc handles[] = {ZBR_CSimpleAlloc(static_cast<unsigned>(bytes.Below(200))), ZBR_CSimpleAlloc(100)};
  const ZBR_CSimpleAlloc other(64);
  handles[1] = handles[0];  // two handles on one set of blocks
  std::vector<std::pair<const char*, std::string>> buffers;
  for (int step = 0; step <= 200; ++step) {
    const int which = bytes.Below(2);
    ZBR_CSimpleAlloc& alloc = handles[which];
    const int kind = step == 200 ? 31 : bytes.Below(32);
    const int length = kind < 4 ? bytes.Below(256) : bytes.Below(24);
    const std::string contents(static_cast<std::size_t>(length), static_cast<char>('a' + step % 26));
    if (kind == 31) {
      for (const auto& [at, text] : buffers) Require(std::equal(text.begin(), text.end(), at), "buffers keep their contents");
      buffers.clear();
      alloc.clear();
    } else if (kind == 30) {
      alloc = other;  // the blocks stay with the other handle
      alloc = handles[1 - which];
    } else if (kind >= 24) {
      buffers.emplace_back(alloc.PushString(contents.c_str()), contents + '\0');
    } else {
      char* const at = static_cast<char*>(alloc.GetBuffer(static_cast<unsigned>(length)));
      std::copy(contents.begin(), contents.end(), at);
      buffers.emplace_back(at, contents);
    }
  }
}
