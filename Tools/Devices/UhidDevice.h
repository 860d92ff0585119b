/// A HID device that exists only for the kernel, made through /dev/uhid. Its reports come from the
/// test; a thread of the object answers the drivers' requests. Needs root. Thread: any.
#pragma once

#include <fcntl.h>
#include <linux/uhid.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Base/MachTime.h"

namespace tobrin::testing {

class UhidDevice final {
 public:
  using Bytes = std::vector<uint8_t>;

  struct Behaviour {
    /// One input report for the moment `time`.
    std::function<Bytes(uint64_t time)> input;
    /// The state of the device, as a feature report; and a new state set by a driver.
    std::function<Bytes()> feature = [] { return Bytes(); };
    std::function<void(const Bytes&)> setFeature = [](const Bytes&) {};
    /// Reports a second at this moment, 0 while the device is switched off.
    std::function<double(bool opened)> rate;
  };

  static bool isPossible() { return access("/dev/uhid", W_OK) == 0; }

  UhidDevice(const std::string& name, const Bytes& descriptor, Behaviour behaviour)
      : behaviour_(std::move(behaviour)), fd_(open("/dev/uhid", O_RDWR | O_CLOEXEC)) {
    if (fd_ < 0) throw std::runtime_error("no /dev/uhid");
    uhid_event event{};
    event.type = UHID_CREATE2;
    name.copy(reinterpret_cast<char*>(event.u.create2.name), sizeof event.u.create2.name - 1);
    event.u.create2.rd_size = static_cast<uint16_t>(descriptor.size());
    event.u.create2.bus = 3;  // USB
    event.u.create2.vendor = 0x1209;
    event.u.create2.product = 0x0001;
    std::copy(descriptor.begin(), descriptor.end(), event.u.create2.rd_data);
    send(event, sizeof event);
    answering_ = std::thread([this] { answer(); });
    reporting_ = std::thread([this] { report(); });
  }

  ~UhidDevice() {
    reportingEnds_ = true;
    reporting_.join();
    uhid_event event{};
    event.type = UHID_DESTROY;
    send(event, sizeof event);
    answeringEnds_ = true;
    answering_.join();
    close(fd_);
  }
  UhidDevice(const UhidDevice&) = delete;
  UhidDevice& operator=(const UhidDevice&) = delete;

 private:
  void send(const uhid_event& event, std::size_t bytes) const {
    [[maybe_unused]] const ssize_t written = write(fd_, &event, bytes);
  }

  static void askForRealTime() {
    const sched_param priority{.sched_priority = 50};
    pthread_setschedparam(pthread_self(), SCHED_FIFO, &priority);
  }

  void answer() {
    askForRealTime();
    while (!answeringEnds_) {
      pollfd watched{fd_, POLLIN, 0};
      uhid_event event{};
      if (poll(&watched, 1, 20) <= 0 || read(fd_, &event, sizeof event) <= 0) continue;
      if (event.type == UHID_OPEN) opened_ = true;
      if (event.type == UHID_CLOSE) opened_ = false;
      if (event.type == UHID_GET_REPORT) answerGet(event);
      if (event.type == UHID_SET_REPORT) answerSet(event);
    }
  }

  void answerGet(const uhid_event& request) const {
    const Bytes bytes = request.u.get_report.rtype == UHID_INPUT_REPORT
                            ? behaviour_.input(machNow())
                            : behaviour_.feature();
    uhid_event reply{};
    reply.type = UHID_GET_REPORT_REPLY;
    reply.u.get_report_reply.id = request.u.get_report.id;
    reply.u.get_report_reply.size = static_cast<uint16_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), reply.u.get_report_reply.data);
    send(reply, sizeof reply);
  }

  void answerSet(const uhid_event& request) const {
    const uint8_t* data = request.u.set_report.data;
    behaviour_.setFeature(Bytes(data, data + request.u.set_report.size));
    uhid_event reply{};
    reply.type = UHID_SET_REPORT_REPLY;
    reply.u.set_report_reply.id = request.u.set_report.id;
    send(reply, sizeof reply);
  }

  void report() {
    askForRealTime();
    uint64_t next = machNow();
    while (!reportingEnds_) {
      const double hz = behaviour_.rate(opened_);
      next = hz > 0 ? next + static_cast<uint64_t>(1e9 / hz) : machNow() + 2'000'000;
      const timespec due{static_cast<time_t>(next / 1'000'000'000),
                         static_cast<long>(next % 1'000'000'000)};
      clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, nullptr);
      if (hz <= 0) continue;
      const Bytes bytes = behaviour_.input(next);
      uhid_event event{};
      event.type = UHID_INPUT2;
      event.u.input2.size = static_cast<uint16_t>(bytes.size());
      std::copy(bytes.begin(), bytes.end(), event.u.input2.data);
      send(event, sizeof event);
    }
  }

  Behaviour behaviour_;
  int fd_;
  std::atomic<bool> opened_ = false;
  std::atomic<bool> answeringEnds_ = false;
  std::atomic<bool> reportingEnds_ = false;
  std::thread answering_;
  std::thread reporting_;
};

}  // namespace tobrin::testing
