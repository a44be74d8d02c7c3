// A block allocator for small buffers and strings that are all released at once.
#pragma once

#include <memory>
#include <utility>

#include <zbr/export.h>

// Hands out buffers from blocks of a fixed size, one after another. Single buffers are not released; clear() rewinds to the first
// block and keeps the blocks, so that filling the allocator again allocates nothing. A request that no block can hold gets a block
// of its own.
//
// Buffers are not aligned: a buffer starts where the one before it ends. They stay valid until clear() or until the last handle
// goes. Assignment makes both objects handles on the same blocks; what one allocates or clears, the other sees. Not for concurrent
// use of one set of blocks. A buffer costs a call, a comparison and two additions.
class ZBR_CSimpleAlloc {
 public:
  // blockSize: bytes per block, 20 of which are the block's own. Nothing is allocated yet. With fewer than 20 (or more than 2^31 +
  // 19) every request gets a block of its own.
  ZBR_API explicit ZBR_CSimpleAlloc(unsigned int blockSize);
  ZBR_API ~ZBR_CSimpleAlloc();
  ZBR_CSimpleAlloc(const ZBR_CSimpleAlloc&) = delete;
  ZBR_API ZBR_CSimpleAlloc& operator=(const ZBR_CSimpleAlloc& o);

  // `size` bytes; zero bytes give the address of the next buffer. Throws std::bad_alloc when memory runs out, and for 2^31 bytes
  // and more.
  void* GetBuffer(unsigned int size) {
    if (size - 1U >= room_->left) return NewRoom(size);  // for zero bytes, too: there may be no block yet
    room_->left -= size;
    return std::exchange(room_->next, room_->next + size);
  }
  // A copy of s, terminating zero included. Null for a null s.
  ZBR_API char* PushString(const char* s);
  // Takes back all buffers. Blocks are kept, but for those made for a single request.
  ZBR_API void clear();

 private:
  ZBR_CSimpleAlloc() = default;

  // What is left of the block that is being filled.
  struct Room {
    unsigned int left = 0;
    char* next = nullptr;
  };
  class Blocks;
  ZBR_API void* NewRoom(unsigned int size);

  std::shared_ptr<Blocks> blocks_;
  Room* room_ = nullptr;  // of the blocks
};
