// The block allocator.
//
// Standard blocks form a chain that only grows; clear() goes back to its start. A block's header is 20 bytes without padding, so
// that blockSize - 20 bytes are for buffers; its fields are therefore read and written bytewise. Blocks for single requests form a
// list of their own and go with clear().
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include <zbr/allocator.h>

namespace {

// A block of the chain: bytes left (4), the next buffer's address (8), the next block (8), then the buffers.
class Block {
 public:
  static constexpr std::size_t kHeader = 20;

  Block() = default;
  explicit Block(std::byte* memory) : memory_(memory) {}

  explicit operator bool() const { return memory_ != nullptr; }
  std::byte* memory() const { return memory_; }
  std::byte* data() const { return memory_ + kHeader; }

  std::uint32_t freeSize() const { return Load<std::uint32_t>(0); }
  Block next() const { return Block(Load<std::byte*>(12)); }
  void SetNext(Block next) const { Store(12, next.memory_); }
  void Reset(std::uint32_t capacity) const {
    Store(0, capacity);
    Store(4, data());
  }
  void* Take(std::uint32_t size) const {
    std::byte* const buffer = Load<std::byte*>(4);
    Store(4, buffer + size);
    Store(0, freeSize() - size);
    return buffer;
  }

 private:
  template <class T>
  T Load(std::size_t offset) const {
    T value;
    std::memcpy(&value, memory_ + offset, sizeof(T));
    return value;
  }
  template <class T>
  void Store(std::size_t offset, T value) const {
    std::memcpy(memory_ + offset, &value, sizeof(T));
  }

  std::byte* memory_ = nullptr;
};

// Ahead of the buffer of a single request.
struct SingleHeader {
  std::uint32_t totalSize;
  std::uint32_t size;
  SingleHeader* next;
};
static_assert(sizeof(SingleHeader) == 16 && sizeof(void*) == 8);

}  // namespace

// The blocks that one or several handles share.
class ZBR_CSimpleAlloc::Blocks {
 public:
  explicit Blocks(unsigned int blockSize) : blockSize_(blockSize) {}
  ~Blocks() {
    for (Block block = firstBlock_; block;) {
      const Block next = block.next();
      ::operator delete(block.memory());
      block = next;
    }
    DestructExceedBlocks();
  }
  Blocks(const Blocks&) = delete;
  Blocks& operator=(const Blocks&) = delete;

  void* GetBuffer(std::uint32_t size) {
    if (curBlock_ && size <= curBlock_.freeSize()) return curBlock_.Take(size);
    if (size > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    // Compared as signed: a block too small for its header holds nothing.
    if (static_cast<std::int32_t>(size) > static_cast<std::int32_t>(GetMaxFreeSize())) return SingleBuffer(size);
    Grow();
    return curBlock_.Take(size);
  }

  void Clear() {
    curBlock_ = firstBlock_;
    if (curBlock_) curBlock_.Reset(GetMaxFreeSize());
    DestructExceedBlocks();
  }

 private:
  std::uint32_t GetMaxFreeSize() const { return blockSize_ - static_cast<std::uint32_t>(Block::kHeader); }

  // Goes on to the next block of the chain, an old one if there is one.
  void Grow() {
    Block block = curBlock_ ? curBlock_.next() : Block();
    if (!block) {
      block = Block(static_cast<std::byte*>(::operator new(blockSize_)));
      block.SetNext(Block());
      if (curBlock_) {
        curBlock_.SetNext(block);
      } else {
        firstBlock_ = block;
      }
    }
    curBlock_ = block;
    curBlock_.Reset(GetMaxFreeSize());
  }

  void* SingleBuffer(std::uint32_t size) {
    void* const memory = ::operator new(sizeof(SingleHeader) + size);
    singles_ = new (memory) SingleHeader{static_cast<std::uint32_t>(sizeof(SingleHeader)) + size, size, singles_};
    return singles_ + 1;
  }

  void DestructExceedBlocks() {
    while (singles_ != nullptr) {
      SingleHeader* const next = singles_->next;
      ::operator delete(singles_);
      singles_ = next;
    }
  }

  std::uint32_t blockSize_;
  Block firstBlock_;
  Block curBlock_;
  SingleHeader* singles_ = nullptr;
};

ZBR_CSimpleAlloc::ZBR_CSimpleAlloc(unsigned int blockSize) : blocks_(std::make_shared<Blocks>(blockSize)) {}

ZBR_CSimpleAlloc::~ZBR_CSimpleAlloc() = default;

ZBR_CSimpleAlloc& ZBR_CSimpleAlloc::operator=(const ZBR_CSimpleAlloc& o) = default;

void* ZBR_CSimpleAlloc::GetBuffer(unsigned int size) {
  return blocks_->GetBuffer(size);
}

char* ZBR_CSimpleAlloc::PushString(const char* s) {
  if (s == nullptr) return nullptr;
  const std::size_t size = std::strlen(s) + 1;
  if (size > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  return static_cast<char*>(std::memcpy(GetBuffer(static_cast<unsigned int>(size)), s, size));
}

void ZBR_CSimpleAlloc::clear() {
  blocks_->Clear();
}
