/// Names the calling thread for debuggers and thread lists.
#pragma once

#include <string_view>

namespace tobrin {

/// Cut to the 15 bytes the kernel keeps.
void nameThisThread(std::string_view name);

}  // namespace tobrin
