/// The thread of a Qt event loop as a serial queue: the main thread, for all that is shown.
/// Thread: any.
#pragma once

#include <QObject>
#include <string>

#include "Base/SerialQueue.h"

namespace tobrin {

class QtQueue final : public SerialQueue {
 public:
  /// Posts to the thread it is created on. Tasks left when it goes are dropped.
  explicit QtQueue(std::string name);

  void async(Task task) override;
  void sync(const Task& task) override;
  void after(Duration delay, Task task) override;
  [[nodiscard]] bool isCurrent() const override;
  [[nodiscard]] std::string_view name() const override { return name_; }
  [[nodiscard]] uint64_t now() const override;

 private:
  std::string name_;  // fixed after construction
  QObject context_;   // lives on the queue's thread
};

}  // namespace tobrin
