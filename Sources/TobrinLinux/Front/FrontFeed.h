/// One way to learn which application is in front. A connection to whatever tells it, from its
/// construction on. Thread: the watcher's, all of it.
#pragma once

#include "Engine/FrontWindow.h"

namespace tobrin {

class FrontFeed {
 public:
  virtual ~FrontFeed() = default;

  /// To be polled for reading; -1 where nothing can be learned this way.
  [[nodiscard]] virtual int descriptor() const = 0;

  /// Takes what has come in and sends what is to go out; false once the connection is lost.
  virtual bool process() = 0;

  /// What is known after `process`.
  [[nodiscard]] virtual Front front() const = 0;
};

}  // namespace tobrin
