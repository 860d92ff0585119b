#include "Base/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace tobrin {
namespace {

/// The pieces in order, handed out to the thread that asks next.
class Pieces final {
 public:
  Pieces(std::size_t count, const std::function<void(std::size_t)>& work)
      : work_(work), errors_(count) {}

  void run() {
    // Relaxed: results and errors are read after the join.
    for (;;) {
      if (failed_.load(std::memory_order_relaxed)) return;
      const std::size_t piece = next_.fetch_add(1, std::memory_order_relaxed);
      if (piece >= errors_.size()) return;
      try {
        work_(piece);
      } catch (...) {
        errors_[piece] = std::current_exception();
        failed_.store(true, std::memory_order_relaxed);
      }
    }
  }

  void rethrowFirst() const {
    for (const auto& error : errors_)
      if (error) std::rethrow_exception(error);
  }

 private:
  const std::function<void(std::size_t)>& work_;
  std::vector<std::exception_ptr> errors_;  // one entry a piece, written by the thread that ran it
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> failed_{false};
};

}  // namespace

void parallelFor(std::size_t count, unsigned threads,
                 const std::function<void(std::size_t)>& work) {
  assert(work);
  if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
  Pieces pieces(count, work);
  {
    std::vector<std::jthread> others;
    try {
      while (others.size() + 1 < std::min<std::size_t>(threads, count))
        others.emplace_back([&pieces] { pieces.run(); });
    } catch (const std::system_error&) {
      // No more threads available: fewer do the same work.
    }
    pieces.run();
  }
  pieces.rethrowFirst();
}

}  // namespace tobrin
