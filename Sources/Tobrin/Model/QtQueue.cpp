#include "Model/QtQueue.h"

#include <QThread>
#include <QTimer>
#include <cassert>

#include "Base/MachTime.h"

namespace tobrin {

QtQueue::QtQueue(std::string name) : name_(std::move(name)) {}

void QtQueue::async(Task task) {
  QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
}

void QtQueue::sync(const Task& task) {
  assert(!isCurrent());
  QMetaObject::invokeMethod(&context_, task, Qt::BlockingQueuedConnection);
}

void QtQueue::after(Duration delay, Task task) {
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(delay);
  // Timers belong to the thread that makes them.
  async([this, wait, run = std::move(task)] {
    QTimer::singleShot(wait, Qt::PreciseTimer, &context_, run);
  });
}

bool QtQueue::isCurrent() const {
  return context_.thread() == QThread::currentThread();
}

uint64_t QtQueue::now() const {
  return machNow();
}

}  // namespace tobrin
