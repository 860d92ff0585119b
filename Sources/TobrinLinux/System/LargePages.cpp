#include "System/LargePages.h"

#include <sys/mman.h>

#include <memory>

namespace tobrin {

void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr std::size_t pageBytes = std::size_t{2} << 20;
  if (std::align(pageBytes, pageBytes, memory, bytes) == nullptr) return;
  // A hint: whether the system takes it changes nothing but the time.
  (void)::madvise(memory, bytes / pageBytes * pageBytes, MADV_HUGEPAGE);
#endif
}

}  // namespace tobrin
