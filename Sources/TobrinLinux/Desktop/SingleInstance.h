/// Keeps a second instance of the program from playing along with the first: the first holds a lock
/// for its life and answers on a socket next to it. Thread: main.
#pragma once

#include <filesystem>

#include "Base/FileDescriptor.h"

namespace tobrin {

class SingleInstance final {
 public:
  /// Tries to become the one instance of this login. `folder` holds lock and socket; an empty one
  /// means that there is no place for a lock, and every instance is the first.
  explicit SingleInstance(const std::filesystem::path& folder);
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  [[nodiscard]] bool isFirst() const { return isFirst_; }

  /// Asks the first instance to show itself; false where it does not answer.
  [[nodiscard]] bool askFirstToShow() const;

  /// The first instance's listening socket, to be watched for readability; -1 where there is none.
  [[nodiscard]] int listeningSocket() const { return socket_.get(); }

  /// Takes the calls waiting on the socket; returns whether any of them asks to be shown.
  [[nodiscard]] bool takeShowRequests();

 private:
  void listen();

  std::filesystem::path socketPath_;
  bool isFirst_ = true;
  FileDescriptor lock_;  // held by the first instance
  FileDescriptor socket_;
};

}  // namespace tobrin
