/// System calls that a signal interrupted are made again. Thread: any.
#pragma once

#include <cerrno>

namespace tobrin {

template <typename Call>
auto retried(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

}  // namespace tobrin
