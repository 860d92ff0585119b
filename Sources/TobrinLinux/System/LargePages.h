/// A hint to the system for memory that is about to be filled whole. Thread: any.
#pragma once

#include <cstddef>

namespace tobrin {

/// Asks for large pages below `bytes` of memory that nothing has touched yet: taking tens of
/// megabytes page by page costs as much as rendering into them. Without effect on small blocks and
/// where the system has no such pages.
void preferLargePages(void* memory, std::size_t bytes);

}  // namespace tobrin
