#include "System/ChildOutput.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cassert>
#include <csignal>
#include <utility>

#include "System/Spawn.h"

namespace tobrin {
namespace {

/// Whether the writer has closed its end by the deadline.
bool readAll(int input, std::chrono::steady_clock::time_point deadline, const WakeEvent& stop,
             std::string& text) {
  std::array<char, 16384> piece;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    std::array<pollfd, 2> waits = {{{input, POLLIN, 0}, {stop.fd(), POLLIN, 0}}};
    if (left.count() <= 0 || poll(waits.data(), waits.size(), static_cast<int>(left.count())) == 0)
      return false;
    if (waits[1].revents != 0) return false;
    if (waits[0].revents == 0) continue;  // a signal ended the wait
    const ssize_t length = retried([&] { return read(input, piece.data(), piece.size()); });
    if (length <= 0) return length == 0;
    text.append(piece.data(), static_cast<std::size_t>(length));
  }
}

}  // namespace

std::optional<std::string> childOutput(const std::vector<std::string>& command,
                                       std::chrono::steady_clock::time_point deadline,
                                       const WakeEvent& stop) {
  assert(!command.empty());
  std::optional<Pipe> pipe = makePipe();
  if (!pipe) return std::nullopt;
  const Spawned started =
      spawn(command, {.output = pipe->writing.get(), .errors = SpawnOptions::nowhere});
  pipe->writing.reset();  // so that the child's end ends the output
  if (started.error != 0) return std::nullopt;
  std::string text;
  const bool whole = readAll(pipe->reading.get(), deadline, stop, text);
  pipe->reading.reset();
  if (!whole) kill(started.child, SIGKILL);
  return waitForEnd(started.child) == 0 && whole ? std::optional(std::move(text)) : std::nullopt;
}

}  // namespace tobrin
