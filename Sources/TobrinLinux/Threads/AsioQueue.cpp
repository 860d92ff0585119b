#include "Threads/AsioQueue.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <cassert>
#include <future>
#include <thread>

#include "Base/MachTime.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {

struct AsioQueue::Loop {
  asio::io_context context{1};  // one thread runs it
  asio::executor_work_guard<asio::io_context::executor_type> work = asio::make_work_guard(context);
  std::thread thread;
};

AsioQueue::AsioQueue(std::string name, std::function<void()> onThreadStart)
    : name_(std::move(name)), loop_(std::make_unique<Loop>()) {
  loop_->thread = std::thread([this, onStart = std::move(onThreadStart)] {
    nameThisThread(name_);
    if (onStart) onStart();
    loop_->context.run();
  });
}

AsioQueue::~AsioQueue() {
  // Stopping from a posted task lets everything posted earlier run first.
  asio::post(loop_->context, [this] { loop_->context.stop(); });
  loop_->thread.join();
}

void AsioQueue::async(Task task) {
  asio::post(loop_->context, std::move(task));
}

void AsioQueue::sync(const Task& task) {
  assert(!isCurrent());
  std::promise<void> done;
  asio::post(loop_->context, [&] {
    task();
    done.set_value();
  });
  done.get_future().wait();
}

void AsioQueue::after(Duration delay, Task task) {
  auto timer = std::make_shared<asio::steady_timer>(loop_->context);
  timer->expires_after(delay);
  timer->async_wait([timer, run = std::move(task)](const asio::error_code& error) {
    if (!error) run();
  });
}

bool AsioQueue::isCurrent() const {
  return loop_->thread.get_id() == std::this_thread::get_id();
}

uint64_t AsioQueue::now() const {
  return machNow();
}

}  // namespace tobrin
