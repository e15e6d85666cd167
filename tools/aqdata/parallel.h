#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace aqdata {

/// Runs `work(i)` for every i below `count` in `jobs` threads, and passes each result to `take(i,
/// result)` in the calling thread, in order. The threads run at most 16 * `jobs` items ahead of
/// `take`, which limits the number of waiting results. An exception from `work` or `take` stops the
/// threads and reaches the caller.
template <class Work, class Take>
void inOrder(std::size_t count, int jobs, const Work& work, const Take& take) {
  using Result = decltype(work(std::size_t{0}));
  const std::size_t most = static_cast<std::size_t>(jobs) * 16;  // items ahead of `take`
  std::mutex mutex;
  std::condition_variable changed;
  std::map<std::size_t, Result> waiting;
  std::size_t next = 0;
  std::size_t taken = 0;
  std::exception_ptr failure;

  const auto run = [&] {
    for (;;) {
      std::unique_lock lock(mutex);
      changed.wait(lock, [&] { return next < taken + most || failure; });
      if (next >= count || failure) return;
      const std::size_t mine = next++;
      lock.unlock();
      try {
        Result result = work(mine);
        lock.lock();
        waiting.emplace(mine, std::move(result));
      } catch (...) {
        if (!lock.owns_lock()) lock.lock();
        failure = std::current_exception();
      }
      changed.notify_all();
    }
  };
  std::vector<std::jthread> threads;
  threads.reserve(static_cast<std::size_t>(jobs));
  try {
    for (int i = 0; i < jobs; ++i) threads.emplace_back(run);
    for (; taken < count;) {
      std::unique_lock lock(mutex);
      changed.wait(lock, [&] { return waiting.contains(taken) || failure; });
      if (failure) break;
      auto result = waiting.extract(taken);
      lock.unlock();
      take(taken, result.mapped());
      lock.lock();
      ++taken;
      changed.notify_all();
    }
  } catch (...) {
    const std::lock_guard lock(mutex);
    failure = std::current_exception();
    changed.notify_all();
  }
  threads.clear();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace aqdata
