// How long a key event takes to its command in the mixer's ring: the whole conductor on its real
// queue, with the force of a sensor that sends 1000 reports a second. Times are taken before the
// event is handed over and by a task right behind it, so they are upper bounds.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "Base/MachTime.h"
#include "Engine/Conductor.h"
#include "Force/MotionReport.h"
#include "Support/PacedDevice.h"
#include "Support/Report.h"
#include "Support/TestPack.h"
#include "Threads/AsioQueue.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

constexpr int keys = 600;
constexpr double microsecondsATick = 1e-3;

/// A small impact every millisecond.
class SteadySource final : public MotionSource {
 public:
  bool open() override { return true; }
  void run(const Sink& sink) override {
    for (int i = 0; !interrupted_; ++i) {
      sink(encodeMotionReport({0, 0, 1 + 0.01 * (i % 7)}), machNow());
      std::this_thread::sleep_for(1ms);
    }
  }
  void close() override {}
  void interrupt() override { interrupted_ = true; }
  [[nodiscard]] std::string problem() const override { return {}; }
  [[nodiscard]] std::string description() const override { return "steady"; }

 private:
  std::atomic<bool> interrupted_ = false;
};

/// Keeps every core busy while it lives.
class BusyCores final {
 public:
  BusyCores() {
    for (unsigned i = 0; i < 2 * std::thread::hardware_concurrency(); ++i)
      threads_.emplace_back([this] {
        while (!ending_.load(std::memory_order_relaxed)) {
        }
      });
  }
  ~BusyCores() {
    ending_ = true;
    for (std::thread& thread : threads_)
      thread.join();
  }

 private:
  std::atomic<bool> ending_ = false;
  std::vector<std::thread> threads_;
};

/// Microseconds from each post to the task behind it, in rising order.
std::vector<double> timesThrough(AsioQueue& queue, const std::function<void(uint16_t)>& post) {
  std::vector<double> times;
  for (int i = 0; i < keys; ++i) {
    std::this_thread::sleep_for(5ms);
    std::promise<uint64_t> handled;
    const uint64_t posted = machNow();
    post(static_cast<uint16_t>(i % 48));
    queue.async([&handled] { handled.set_value(machNow()); });
    times.push_back(static_cast<double>(handled.get_future().get() - posted) * microsecondsATick);
  }
  std::sort(times.begin(), times.end());
  return times;
}

double percentile(const std::vector<double>& sorted, double part) {
  return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

/// A percentile of the events' times, which may be twice that of bare hand-overs between the same
/// threads.
Figure beside(std::string name, const std::vector<double>& events, const std::vector<double>& bare,
              double part) {
  const double measured = percentile(events, part);
  const double peer = percentile(bare, part);
  return {.name = std::move(name),
          .measured = measured,
          .unit = "us",
          .peer = "bare hand-over",
          .peerValue = peer,
          .ratio = measured / peer,
          .goal = Figure::Goal::atMost,
          .goalRatio = 2,
          .spread = 0};
}

void measure(Report& report, const std::string& name, double limit) {
  AsioQueue queue(Conductor::queueName, requestRealtimeScheduling);
  Conductor conductor(
      queue, std::make_unique<AudioOutput>(std::make_unique<PacedDevice>()),
      std::make_unique<ForceSensor>(std::make_unique<SteadySource>(), requestRealtimeScheduling));
  conductor.setPack(testing::TestPack::simple());
  conductor.apply({}, true);
  std::thread([&] {
    requestRealtimeScheduling();
    const auto bare = timesThrough(queue, [](uint16_t) {});
    const auto events = timesThrough(queue, [&conductor](uint16_t code) {
      conductor.handle({code, KeyAction::down, machNow()});
    });
    report.add(
        Figure::under("key to ring, 99 of 100, " + name, percentile(events, 0.99), "us", limit, 0));
    // The machine's own wake-ups: what no program can be faster than.
    report.add(beside("key to ring, 99 of 100, " + name, events, bare, 0.99));
    report.add(beside("key to ring, median, " + name, events, bare, 0.5));
  }).join();
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  tobrin::measure(report, "idle", 100);
  const tobrin::BusyCores busy;
  tobrin::measure(report, "every core busy", 1000);
}
