// The block allocator.
//
// Standard blocks form a chain that only grows; clear() goes back to its start. The first 20 bytes of a block are its own, so that
// blockSize - 20 bytes are for buffers; what is used of them is the next block's address. How much is left of the block being
// filled is kept beside the chain, where GetBuffer reaches it without a call. Blocks for single requests form a list of their own
// and go with clear().
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include <zbr/allocator.h>

namespace {

// A block of the chain. Its address is written bytewise, as its place is not aligned.
class Block {
 public:
  static constexpr std::size_t kHeader = 20;

  Block() = default;
  explicit Block(std::size_t size) : memory_(static_cast<char*>(::operator new(size))) { SetNext(Block()); }
  void Delete() const { ::operator delete(memory_); }

  explicit operator bool() const { return memory_ != nullptr; }
  char* data() const { return memory_ + kHeader; }
  Block next() const {
    Block next;
    std::memcpy(&next.memory_, memory_ + kNext, sizeof next.memory_);
    return next;
  }
  void SetNext(Block next) const { std::memcpy(memory_ + kNext, &next.memory_, sizeof next.memory_); }

 private:
  static constexpr std::size_t kNext = 12;

  char* memory_ = nullptr;
};

// Ahead of the buffer of a single request.
struct alignas(16) SingleHeader {
  std::uint32_t totalSize;
  std::uint32_t size;
  SingleHeader* next;
};
static_assert(sizeof(SingleHeader) == 16);  // so that such buffers are aligned for anything

}  // namespace

// The blocks that one or several handles share.
class ZBR_CSimpleAlloc::Blocks : public Room {
 public:
  explicit Blocks(unsigned int blockSize) : blockSize_(blockSize) {}
  ~Blocks() {
    for (Block block = firstBlock_; block;) std::exchange(block, block.next()).Delete();
    DestructExceedBlocks();
  }
  Blocks(const Blocks&) = delete;
  Blocks& operator=(const Blocks&) = delete;

  // A request that the room does not serve at once.
  void* GetBuffer(std::uint32_t size) {
    if (size > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    // Compared as signed: a block too small for its header holds nothing.
    if (static_cast<std::int32_t>(size) > static_cast<std::int32_t>(GetMaxFreeSize())) return SingleBuffer(size);
    if (!curBlock_ || size > left) Grow();
    left -= size;
    return std::exchange(next, next + size);
  }

  void Clear() {
    if (firstBlock_) Fill(firstBlock_);
    DestructExceedBlocks();
  }

 private:
  std::uint32_t GetMaxFreeSize() const { return blockSize_ - static_cast<std::uint32_t>(Block::kHeader); }

  void Fill(Block block) {
    curBlock_ = block;
    left = GetMaxFreeSize();
    next = block.data();
  }

  // Goes on to the next block of the chain, an old one if there is one.
  void Grow() {
    Block block = curBlock_ ? curBlock_.next() : Block();
    if (!block) {
      block = Block(blockSize_);
      if (curBlock_) {
        curBlock_.SetNext(block);
      } else {
        firstBlock_ = block;
      }
    }
    Fill(block);
  }

  void* SingleBuffer(std::uint32_t size) {
    void* const memory = ::operator new(sizeof(SingleHeader) + size);
    singles_ = new (memory) SingleHeader{static_cast<std::uint32_t>(sizeof(SingleHeader)) + size, size, singles_};
    return singles_ + 1;
  }

  void DestructExceedBlocks() {
    while (singles_ != nullptr) ::operator delete(std::exchange(singles_, singles_->next));
  }

  std::uint32_t blockSize_;
  Block firstBlock_;
  Block curBlock_;
  SingleHeader* singles_ = nullptr;
};

ZBR_CSimpleAlloc::ZBR_CSimpleAlloc(unsigned int blockSize) : blocks_(std::make_shared<Blocks>(blockSize)), room_(blocks_.get()) {}

ZBR_CSimpleAlloc::~ZBR_CSimpleAlloc() = default;

ZBR_CSimpleAlloc& ZBR_CSimpleAlloc::operator=(const ZBR_CSimpleAlloc& o) = default;

void* ZBR_CSimpleAlloc::NewRoom(unsigned int size) {
  return blocks_->GetBuffer(size);
}

char* ZBR_CSimpleAlloc::PushString(const char* s) {
  if (s == nullptr) return nullptr;
  const std::size_t size = std::strlen(s) + 1;
  if (size > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
  return static_cast<char*>(std::memcpy(GetBuffer(static_cast<unsigned int>(size)), s, size));
}

void ZBR_CSimpleAlloc::clear() {
  blocks_->Clear();
}
