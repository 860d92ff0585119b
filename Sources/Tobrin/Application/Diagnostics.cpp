#include "Application/Diagnostics.h"

#include <filesystem>
#include <iostream>
#include <thread>

#include "Desktop/LinuxWords.h"
#include "Desktop/SessionKeys.h"
#include "Desktop/SessionSound.h"
#include "Diagnostics/MicWatch.h"
#include "Diagnostics/Probe.h"
#include "Diagnostics/SelfTest.h"
#include "Engine/Conductor.h"
#include "Motion/FindMotionSource.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackLoader.h"
#include "System/ProcessName.h"
#include "Threads/AsioQueue.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {
namespace {

std::unique_ptr<KeyMonitor> listen(KeyMonitor::Handler handler) {
  return std::make_unique<KeyMonitor>(makeKeySource(), std::move(handler),
                                      KeyMonitorOptions{.onThreadStart = prepareTimelyThread});
}

/// Nothing where the machine has no sensor.
std::unique_ptr<ForceSensor> findSensor() {
  auto source = findMotionSource();
  if (source == nullptr) return nullptr;
  return std::make_unique<ForceSensor>(std::move(source),
                                       [] { prepareTimelyThread(ForceSensor::threadName); });
}

}  // namespace

int runProbe(double seconds) {
  std::error_code gone;  // where the folder is gone, only writing into it fails
  return probe::Probe({findSensor(), listen, linuxWords}, std::cout,
                      std::filesystem::current_path(gone))
      .run(seconds);
}

int runMicWatch(double seconds) {
  AsioQueue queue(MicMonitor::queueName);
  AsioQueue main("app.tobrin.main");
  MicMonitor monitor(queue, main, makeMicSource(makePipeWireLoop()));
  auto surroundings = MicWatch::realTime(linuxWords);
  surroundings.processName = processName;
  return MicWatch(monitor, main, std::cout, std::move(surroundings)).run(seconds);
}

int runSelfTest() {
  AsioQueue queue(Conductor::queueName);
  SelfTest::Parts parts{
      .discoverPacks = [] { return discoverPacks(); },
      .loadPack = [](const PackInfo& info) { return loadPack(info, AudioOutput::sampleRate); },
      .conductorQueue = queue,
      .audioDevice = makeAudioDevice(makePipeWireLoop()),
      .sensor = findSensor(),
      .listen = listen,
      .typer = makeKeyTyper(),
      .sleep = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); },
      .words = linuxWords,
  };
  return SelfTest(std::move(parts), std::cout).run();
}

}  // namespace tobrin
