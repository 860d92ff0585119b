#include "Motion/Waiting.h"

#include <poll.h>

#include <array>

namespace tobrin {

bool waitForDevice(int device, int timeoutMs, const WakeEvent& interrupt) {
  std::array<pollfd, 2> watched = {pollfd{interrupt.fd(), POLLIN, 0}, pollfd{device, POLLIN, 0}};
  const int ready = ::poll(watched.data(), watched.size(), timeoutMs);
  return ready > 0 && watched[0].revents == 0 && watched[1].revents != 0;
}

bool isRaised(const WakeEvent& event) {
  pollfd watched{event.fd(), POLLIN, 0};
  return ::poll(&watched, 1, 0) > 0;
}

}  // namespace tobrin
