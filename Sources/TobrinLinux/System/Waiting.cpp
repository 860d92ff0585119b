#include "System/Waiting.h"

#include <poll.h>

#include <array>
#include <cassert>

namespace tobrin {

void waitForAny(std::initializer_list<int> files, int timeoutMs) {
  std::array<pollfd, 4> watched{};
  assert(files.size() <= watched.size());
  nfds_t count = 0;
  for (const int file : files)
    watched[count++] = {file, POLLIN, 0};
  ::poll(watched.data(), count, timeoutMs);  // the caller itself checks what ended it
}

bool isRaised(const WakeEvent& event) {
  pollfd watched{event.fd(), POLLIN, 0};
  return ::poll(&watched, 1, 0) > 0;
}

}  // namespace tobrin
