/// Runs independent pieces of work on several threads; the one way to do so. Thread: any.
#pragma once

#include <cstddef>
#include <functional>

namespace tobrin {

/// Calls `work(0)` to `work(count - 1)`, each once, on up to `threads` threads, this one included;
/// 0 means one per core. After a failure no further piece starts; if several fail, the exception of
/// the lowest number is passed on.
void parallelFor(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& work);

}  // namespace tobrin
