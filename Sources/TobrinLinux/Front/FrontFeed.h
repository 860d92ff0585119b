/// One way to learn which application is in front. A connection to whatever tells it, from its
/// construction on. Thread: the watcher's, all of it.
#pragma once

#include <functional>

#include "Engine/FrontWindow.h"

namespace tobrin {

class FrontFeed {
 public:
  virtual ~FrontFeed() = default;

  /// To be polled for reading; -1 where nothing can be learned this way.
  [[nodiscard]] virtual int descriptor() const = 0;

  using Report = std::function<void(const Front&)>;

  /// Takes what has come in, sends what is to go out, and reports what is in front, even if that
  /// has not changed; false once the connection is lost.
  virtual bool process(const Report& report) = 0;
};

}  // namespace tobrin
