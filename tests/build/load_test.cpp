// The library loaded at run time instead of linked, as a plug-in's host would do: storage of a thread that ran before the library
// came must be found as well as that of threads started later, and no thread may see the tolerance of another.
#include <gtest/gtest.h>

#include <barrier>
#include <cstddef>
#include <latch>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

#ifdef _WIN32
void* Open(const char* file) {
  return LoadLibraryA(file);
}

void* Find(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

bool Close(void* library) {
  return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}
#else
void* Open(const char* file) {
  return dlopen(file, RTLD_NOW | RTLD_LOCAL);
}

void* Find(void* library, const char* name) {
  return dlsym(library, name);
}

bool Close(void* library) {
  return dlclose(library) == 0;
}
#endif

// The functions used here, by their mangled names: zbrSetEps(double) and zbr_EpsE(double).
struct Library {
  void* handle = nullptr;
  void (*setEps)(double) = nullptr;
  bool (*isZero)(double) = nullptr;

  void Load() {
    handle = Open(ZBR_LIBRARY_FILE);
    ASSERT_NE(handle, nullptr) << ZBR_LIBRARY_FILE;
    setEps = reinterpret_cast<void (*)(double)>(Find(handle, "_Z9zbrSetEpsd"));
    isZero = reinterpret_cast<bool (*)(double)>(Find(handle, "_Z8zbr_EpsEd"));
    ASSERT_TRUE(setEps && isZero);
  }
};

bool ToleranceIs(const Library& library, double eps) {
  return library.isZero(eps) && !library.isZero(eps * 1.001);
}

TEST(LoadedAtRunTime, EachThreadHasItsOwnTolerance) {
  constexpr int kThreads = 8;
  Library library;
  std::vector<int> agreed(kThreads, 0);
  std::latch loaded(1);
  std::barrier<> allSet(kThreads);
  // Every thread sets its tolerance and reads it again after all others have set theirs.
  const auto run = [&](int i) {
    loaded.wait();
    if (library.isZero == nullptr) return;
    const bool startsWithDefault = ToleranceIs(library, 1e-5);
    const double eps = 0.5 / (i + 1);
    library.setEps(eps);
    allSet.arrive_and_wait();
    agreed[static_cast<std::size_t>(i)] = startsWithDefault && ToleranceIs(library, eps);
  };
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      if (i == kThreads / 2) {  // half of them run before the library is there
        library.Load();
        loaded.count_down();
      }
      threads.emplace_back(run, i);
    }
  }
  ASSERT_FALSE(HasFatalFailure());
  EXPECT_EQ(agreed, std::vector<int>(kThreads, 1));
  EXPECT_TRUE(ToleranceIs(library, 1e-5));
  EXPECT_TRUE(Close(library.handle));
}

}  // namespace
