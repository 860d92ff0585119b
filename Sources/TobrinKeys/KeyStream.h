/// Brings the keys to one program: reads the keyboards while its user's session is in front and
/// lets go of them when it is not. Never waits for the program and reads nothing that it sends.
/// Thread: main.
#pragma once

#include <sys/types.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Evdev/KeyRecord.h"
#include "EventLoop.h"
#include "OpenKeyboard.h"
#include "Seats.h"

namespace tobrin {

class KeyStream final {
 public:
  struct Notices {
    std::function<void()> onEnd;    ///< the program is gone or does not read; destroy the stream
    std::function<void()> onDoubt;  ///< `follow` is due: the console or a keyboard has gone
  };

  /// Writes to `socket`. `loop` and `seats` are borrowed.
  KeyStream(sd_event* loop, const Seats& seats, uid_t user, FileDescriptor socket, Notices notices);
  KeyStream(const KeyStream&) = delete;
  KeyStream& operator=(const KeyStream&) = delete;

  [[nodiscard]] uid_t user() const { return user_; }
  [[nodiscard]] bool isThrough(int socket) const { return socket_.get() == socket; }

  /// Takes up the keyboards of the place, or lets go of all. False where a keyboard there is not
  /// ready yet.
  bool follow(const Place& place);

  /// Lets go of all and tells why.
  void stop(KeyRecord::Kind why);

  void tell(KeyRecord::Kind what) { send(std::array{KeyRecord{.kind = what}}); }

 private:
  struct Listening {
    std::unique_ptr<OpenKeyboard> keyboard;
    EventSource source;
  };

  void takeUp(const std::string& node);
  void letGoOfAllBut(const std::vector<std::string>& nodes);
  void takeKeys(int fd);
  void send(std::span<const KeyRecord> records);
  static int onKeys(sd_event_source* source, int fd, uint32_t events, void* self);
  static int onHangUp(sd_event_source* source, int fd, uint32_t events, void* self);

  sd_event* const loop_;
  const Seats& seats_;
  const uid_t user_;
  const FileDescriptor socket_;
  const Notices notices_;
  EventSource hangUp_;
  Place place_;
  std::optional<KeyRecord::Kind> told_;  // whether keys are delivered, as last said
  std::vector<Listening> keyboards_;
  uint32_t nextNumber_ = 0;
  std::vector<KeyRecord> records_;  // kept for its memory alone
};

}  // namespace tobrin
