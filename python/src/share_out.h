// Work on many regions, shared out among threads: the result does not depend on how many.
#pragma once

#include "python/src/calls.h"
#include "python/src/regions.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace zbr::python {

// Regions that one thread takes at a time: so few that the last ones do not keep others waiting, so many that taking them is free.
inline constexpr std::size_t kShare = 256;

// Calls work(begin, end, part) for stretches of 0 to count, on several threads, each adding a region to its part for every number;
// returns the parts one behind the other. Throws what the work throws, and Stopped when the monitor says so.
template <class Work>
RegionList ShareOut(std::size_t count, unsigned threads, Monitor& monitor, const Work& work) {
  const std::size_t shares = (count + kShare - 1) / kShare;
  std::vector<RegionList> parts(shares);
  std::atomic<std::size_t> next{0}, done{0};
  std::mutex mutex;
  std::exception_ptr error;
  const auto run = [&] {
    try {
      for (std::size_t i = next++; i < shares; i = next++) {
        monitor.TellOrThrow(static_cast<double>(done) / static_cast<double>(shares));
        work(i * kShare, std::min(count, (i + 1) * kShare), parts[i]);
        ++done;
      }
    } catch (...) {
      next = shares;
      const std::lock_guard<std::mutex> hold(mutex);
      if (!error) error = std::current_exception();
    }
  };
  std::vector<std::thread> others;
  const std::size_t used = std::min<std::size_t>(threads, shares);
  others.reserve(used);  // so that nothing but the system can refuse a thread
  for (std::size_t k = 1; k < used; ++k) {
    try {
      others.emplace_back(run);
    } catch (const std::system_error&) {  // the system has no more: fewer do as well
      break;
    }
  }
  run();
  for (std::thread& other : others) other.join();
  if (error) std::rethrow_exception(error);
  RegionList all;
  std::size_t points = 0;
  for (const RegionList& part : parts) points += part.points.size();
  all.points.reserve(points);
  for (RegionList& part : parts) {
    all.Add(part);
    part = RegionList();
  }
  return all;
}

}  // namespace zbr::python
