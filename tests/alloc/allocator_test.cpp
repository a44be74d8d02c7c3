// The block allocator: where buffers lie, what is allocated for them, and that it is freed once. Allocations of this program are
// counted, and those of more than a gigabyte refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <vector>

#include <zbr/allocator.h>

namespace {

long g_news = 0;
long g_live = 0;
std::size_t g_asked = 0;  // by the last request

[[gnu::noinline]] void Free(void* memory) {  // else gcc takes free for a mismatch of a new it has not replaced
  if (memory != nullptr) --g_live;
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  g_asked = size;
  void* const memory = size > 1U << 30U ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) throw std::bad_alloc();
  ++g_news;
  ++g_live;
  return memory;
}

void operator delete(void* memory) noexcept {
  Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  Free(memory);
}

namespace {

constexpr unsigned int kLargest = std::numeric_limits<std::int32_t>::max();

char* Get(ZBR_CSimpleAlloc& alloc, unsigned int size) {
  return static_cast<char*>(alloc.GetBuffer(size));
}

TEST(Allocator, BlocksAreFilledEndToEnd) {
  ZBR_CSimpleAlloc alloc(100);
  alloc.clear();
  EXPECT_NE(g_asked, 100U);
  char* const first = Get(alloc, 0);  // needs a block to point into
  EXPECT_EQ(g_asked, 100U);
  EXPECT_EQ(Get(alloc, 40), first);
  EXPECT_EQ(Get(alloc, 40), first + 40);
  const long before = g_news;
  char* const second = Get(alloc, 40);
  EXPECT_EQ(g_news, before + 1);
  Get(alloc, 81);  // more than any block holds: the block being filled stays
  EXPECT_EQ(g_asked, 81U + 16U);
  EXPECT_EQ(Get(alloc, 1), second + 40);
  char* const third = Get(alloc, 80);
  EXPECT_EQ(g_asked, 100U);
  EXPECT_EQ(Get(alloc, 0), third + 80);
  EXPECT_EQ(g_news, before + 3);
}

std::vector<char*> Fill(ZBR_CSimpleAlloc& alloc, const std::vector<unsigned int>& sizes) {
  std::vector<char*> buffers(sizes.size());
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    buffers[i] = Get(alloc, sizes[i]);
    std::memset(buffers[i], static_cast<int>(i % 100), sizes[i]);
  }
  for (std::size_t i = 0; i < sizes.size(); ++i) {  // nothing has written over it
    EXPECT_EQ(std::count(buffers[i], buffers[i] + sizes[i], static_cast<char>(i % 100)), sizes[i]) << i;
  }
  return buffers;
}

TEST(Allocator, FillingAgainGivesTheSameAddressesAndAllocatesNothing) {
  constexpr unsigned int kCapacity = 1000;
  std::mt19937 random(1);
  std::vector<unsigned int> sizes(3000);
  for (unsigned int& size : sizes) size = static_cast<unsigned int>(random() % (random() % 10 == 0 ? 1200 : 60));
  const auto isSingle = [](unsigned int size) { return size > kCapacity; };
  const auto singles = std::count_if(sizes.begin(), sizes.end(), isSingle);
  const long live = g_live;
  {
    ZBR_CSimpleAlloc alloc(kCapacity + 20);
    std::vector<char*> first = Fill(alloc, sizes);
    for (int round = 0; round < 3; ++round) {
      alloc.clear();
      const long news = g_news;
      const std::vector<char*> again = Fill(alloc, sizes);
      EXPECT_EQ(g_news - news, singles + 1);  // and the vector
      for (std::size_t i = 0; i < sizes.size(); ++i) EXPECT_TRUE(isSingle(sizes[i]) || again[i] == first[i]) << i;
    }
    first = std::vector<char*>();
    alloc.clear();
    EXPECT_LT(g_live - live, 300);  // the blocks
  }
  EXPECT_EQ(g_live, live);
}

TEST(Allocator, HandlesShareBlocksWhichAreFreedOnce) {
  const long live = g_live;
  {
    ZBR_CSimpleAlloc b(500);
    char* first = nullptr;
    {
      ZBR_CSimpleAlloc a(100);
      first = Get(a, 40);
      Get(a, 1000);
      Get(b, 10);
      const long before = g_live;
      b = a;
      EXPECT_LT(g_live, before);  // what b had
      EXPECT_EQ(Get(b, 40), first + 40);
      ZBR_CSimpleAlloc& same = a;
      a = same;
      EXPECT_NE(Get(a, 1), first + 80);  // b has filled the block
      b.clear();
      EXPECT_EQ(Get(a, 40), first);
    }
    EXPECT_EQ(Get(b, 40), first + 40);
    std::memset(first, 1, 80);
  }
  EXPECT_EQ(g_live, live);
}

TEST(Allocator, BlocksThatHoldNothing) {
  for (const unsigned int blockSize : {0U, 19U, 20U, kLargest + 21U, std::numeric_limits<unsigned int>::max()}) {
    ZBR_CSimpleAlloc alloc(blockSize);
    for (const unsigned int size : {1U, 100U}) {
      std::memset(Get(alloc, size), 1, size);
      EXPECT_EQ(g_asked, size + 16U) << blockSize;
    }
    EXPECT_NE(Get(alloc, 0), nullptr);
    const long live = g_live;
    alloc.clear();
    EXPECT_LE(g_live, live - 2);
  }
  ZBR_CSimpleAlloc ofOneByte(21);
  *Get(ofOneByte, 1) = 'a';
  *Get(ofOneByte, 1) = 'b';
  EXPECT_EQ(g_asked, 21U);
}

TEST(Allocator, TooLargeRequestsThrow) {
  ZBR_CSimpleAlloc alloc(100);
  char* const first = Get(alloc, 10);
  EXPECT_THROW(alloc.GetBuffer(kLargest), std::bad_alloc);  // the heap's, which was asked for all of it
  EXPECT_EQ(g_asked, std::size_t{kLargest} + 16U);
  for (const unsigned int size : {kLargest + 1U, std::numeric_limits<unsigned int>::max()}) {
    g_asked = 0;
    EXPECT_THROW(alloc.GetBuffer(size), std::bad_alloc);
    EXPECT_LT(g_asked, 1000U);
  }
  EXPECT_EQ(Get(alloc, 10), first + 10);
  ZBR_CSimpleAlloc huge(kLargest + 20U);
  for (int k = 0; k < 2; ++k) {
    EXPECT_THROW(huge.GetBuffer(1), std::bad_alloc);
    EXPECT_EQ(g_asked, std::size_t{kLargest} + 20U);
    huge.clear();
  }
}

}  // namespace
