#include "Diagnostics/Probe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <fstream>
#include <iostream>
#include <system_error>
#include <thread>

#include "Base/MachTime.h"

namespace tobrin::probe {
namespace {

using std::chrono::milliseconds;

std::string timeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &local);
  return {text.data(), length};
}

// Added to the fixed texts, for the person who sets the machine up.
void tellWhy(const std::string& problem) {
  if (!problem.empty()) std::cerr << "Tobrin: " << problem << std::endl;
}

}  // namespace

Probe::Time Probe::realTime() {
  return {&machNow, [](milliseconds pause) { std::this_thread::sleep_for(pause); }};
}

Probe::Probe(Devices devices, std::ostream& out, std::filesystem::path folder, Time time)
    : devices_(std::move(devices)), out_(out), folder_(std::move(folder)), time_(std::move(time)) {}

int Probe::run(double seconds) {
  if (!startDevices()) return 1;
  out_ << "Tobrin force probe, " << static_cast<long long>(seconds)
       << " seconds.\nSwitch to any text field (Notes, a browser...) and type: some normal "
          "typing,\na few feather-light taps, and a few really hard hits."
       << std::endl;
  ForceSensor& sensor = *devices_.sensor;
  const uint64_t reportsBefore = sensor.reportsReceived();
  const uint64_t start = time_.now();
  listenFor(seconds);
  time_.sleep(milliseconds(120));  // the last impacts reach the ring
  monitor_->stop();
  const double elapsedMs = std::max(machDelta(time_.now(), start), 1.0);
  const auto reports = static_cast<double>(sensor.reportsReceived() - reportsBefore);
  const Summary summary{reports * 1000 / elapsedMs, sensor.noiseFloor()};
  sensor.stop();
  collect(UINT64_MAX);
  return finish(summary);
}

bool Probe::startDevices() {
  if (!devices_.sensor) {
    out_ << devices_.words.noSensor << std::endl;
    return false;
  }
  if (!devices_.sensor->start()) {
    out_ << "Couldn't open the motion sensor." << std::endl;
    tellWhy(devices_.sensor->problem());
    return false;
  }
  monitor_ = devices_.listen([this](const KeyEvent& event) {
    if (event.action != KeyAction::down) return;
    MutexLock lock(keysLock_);
    keys_.push_back({event.code, event.time});
  });
  if (monitor_ && monitor_->start()) return true;
  out_ << devices_.words.keyAccessForProbe << std::endl;
  if (monitor_) tellWhy(monitor_->problem());
  devices_.sensor->stop();
  return false;
}

// Traces are taken while it runs: the sensor's ring holds no more than some seconds.
void Probe::listenFor(double seconds) {
  constexpr milliseconds step{100};
  const uint64_t deadline = time_.now() + machTicks(seconds * 1000);
  for (uint64_t now = time_.now(); now < deadline; now = time_.now()) {
    const double left = machDelta(deadline, now);
    out_ << '\r' << static_cast<long long>(std::ceil(left / 1000)) << "s left, " << keyCount()
         << " keys so far " << std::flush;
    time_.sleep(std::min(step, milliseconds(static_cast<int64_t>(std::ceil(left)))));
    collect(time_.now());
  }
  out_ << '\r' << "0s left, " << keyCount() << " keys so far " << std::endl;
}

std::size_t Probe::keyCount() {
  MutexLock lock(keysLock_);
  return keys_.size();
}

// Takes the traces of all keys whose samples are complete at `until`.
void Probe::collect(uint64_t until) {
  std::vector<KeyDown> due;
  {
    MutexLock lock(keysLock_);
    for (; collected_ < keys_.size(); ++collected_) {
      const KeyDown& key = keys_[collected_];
      // Some slack for samples on their way.
      if (until != UINT64_MAX && machDelta(until, key.time) < 2 * lagMs) break;
      due.push_back(key);
    }
  }
  for (const KeyDown& key : due) {
    const uint64_t from = key.time - std::min(key.time, machTicks(leadMs));
    const auto samples = devices_.sensor->samples(from, key.time + machTicks(lagMs));
    if (auto hit = hitOf(key.code, key.time, samples)) hits_.push_back(std::move(*hit));
  }
}

int Probe::finish(const Summary& summary) {
  if (hits_.empty()) {
    out_ << "No keys recorded." << std::endl;
    return 1;
  }
  out_ << report(hits_, summary);
  const std::string stem = "probe-" + timeStamp();
  if (!save(folder_ / (stem + ".csv"), hitsCsv(hits_)) ||
      !save(folder_ / (stem + "-traces.csv"), tracesCsv(hits_)))
    return 1;
  out_ << "Saved: " << (folder_ / (stem + ".csv")).string() << " (+ -traces.csv)" << std::endl;
  return 0;
}

bool Probe::save(const std::filesystem::path& file, const std::string& text) {
  errno = 0;
  std::ofstream stream(file, std::ios::binary);
  stream << text;
  stream.close();
  if (stream) return true;
  out_ << "Couldn't write " << file.string() << ": " << std::generic_category().message(errno)
       << std::endl;
  return false;
}

}  // namespace tobrin::probe
