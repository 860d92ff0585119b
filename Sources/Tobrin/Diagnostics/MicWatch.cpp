#include "Diagnostics/MicWatch.h"

#include <cmath>
#include <ostream>
#include <string_view>
#include <thread>
#include <utility>

#include "Base/PrintableText.h"

namespace tobrin {

namespace {

constexpr std::string_view yesOrNo(bool yes) {
  return yes ? "yes" : "no";
}

}  // namespace

MicWatch::Surroundings MicWatch::realTime(const PlatformWords& words) {
  Surroundings real{.words = words};
  real.sleep = [](std::chrono::duration<double> time) { std::this_thread::sleep_for(time); };
  return real;
}

MicWatch::MicWatch(MicMonitor& monitor, SerialQueue& main, std::ostream& out,
                   Surroundings surroundings)
    : monitor_(monitor), main_(main), out_(out), surroundings_(std::move(surroundings)) {}

int MicWatch::run(double seconds) {
  const MicActivity present = monitor_.current();
  printed_ = present.micInUse();
  out_ << "Watching the microphone for " << std::llround(std::trunc(seconds)) << " s "
       << surroundings_.words.soundStateOnly << ".\n  " << describe(present)
       << "\n  mic in use: " << yesOrNo(printed_) << std::endl;

  monitor_.setOnChange([this](bool inUse) { changed(inUse); });
  monitor_.start();
  surroundings_.sleep(std::chrono::duration<double>(seconds));
  monitor_.stop();
  // The answer comes after the monitor has stopped: all that it posted is in the queue now.
  static_cast<void>(monitor_.current());
  main_.sync([] {});
  return 0;
}

void MicWatch::changed(bool inUse) {
  if (std::exchange(printed_, inUse) == inUse) return;
  out_ << timeOfDay() << "  " << (inUse ? "mic in use: sounds pause" : "mic free: sounds resume")
       << "\n  " << describe(monitor_.current()) << std::endl;
}

std::string MicWatch::describe(const MicActivity& activity) const {
  constexpr std::string_view separator = " \u00b7 ";
  std::string text = "default input: " + activity.inputDeviceName.value_or("none");
  if (activity.inputDeviceHasOutput) text += " (also plays audio)";
  text += separator;
  text += "running: ";
  text += yesOrNo(activity.inputRunningSomewhere);
  text += separator;
  return printable(text + recorders(activity));
}

std::string MicWatch::recorders(const MicActivity& activity) const {
  const std::string recording = "recording: ";
  if (!activity.recordingProcesses)
    return recording + std::string(surroundings_.words.unknownRecorder);
  std::string names;
  for (const int32_t process : *activity.recordingProcesses) {
    if (!names.empty()) names += ", ";
    const std::string unnamed =
        process == 0 ? "an app that does not say who it is" : "pid " + std::to_string(process);
    names += surroundings_.processName(process).value_or(unnamed);
  }
  return recording + (names.empty() ? "nobody" : names);
}

std::string MicWatch::timeOfDay() const {
  const std::time_t now = surroundings_.now();
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  static_cast<void>(std::strftime(text, sizeof text, "%H:%M:%S", &local));
  return text;
}

}  // namespace tobrin
