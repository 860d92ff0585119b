/// Names the calling thread and asks for its real-time scheduling.
#pragma once

#include <string_view>

namespace tobrin {

void prepareTimelyThread(std::string_view name);

}  // namespace tobrin
