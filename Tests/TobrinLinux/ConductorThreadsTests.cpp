#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "Engine/Conductor.h"
#include "Engine/MachTime.h"
#include "Force/MotionReport.h"
#include "Support/HandDrivenDevice.h"
#include "Support/ScriptedMotionSource.h"
#include "Support/TestPack.h"
#include "Threads/AsioQueue.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

/// Key, main, sensor and render threads at once; the thread sanitizer watches.
TEST(Conductor, TakesKeysSettingsAndPacksFromManyThreads) {
  auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  testing::ScriptedMotionSource::Controls motion;
  std::atomic<bool> ending = false;
  AsioQueue queue(Conductor::queueName);
  auto conductor = std::make_unique<Conductor>(
      queue, std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device)),
      std::make_unique<ForceSensor>(std::make_unique<testing::ScriptedMotionSource>(motion)));
  conductor->setPack(testing::TestPack::simple());
  conductor->apply({}, true);
  queue.sync([] {});

  std::thread render([&] {
    while (!ending)
      device->render(256);
  });
  std::thread sensor([&] {
    while (!ending) {
      motion.send({0, 0, 1.1}, MachTime::now());
      std::this_thread::sleep_for(1ms);
    }
  });
  std::thread keys([&] {
    for (uint16_t i = 0; i < 200; ++i) {
      conductor->handle({i, KeyAction::down, MachTime::now()});
      conductor->handle({i, KeyAction::up, MachTime::now()});
      std::this_thread::sleep_for(1ms);
    }
  });
  for (int i = 0; i < 20; ++i) {
    conductor->setPack(testing::TestPack::simple());
    conductor->apply({.volume = 0.1f * static_cast<float>(i)}, true);
    conductor->resetCalibration();
    EXPECT_TRUE(conductor->forceSensingAvailable());
  }
  keys.join();
  queue.sync([] {});
  const AudioOutput& audio = conductor->audio();
  const uint64_t rendered = audio.renderedFrames();
  while (audio.renderedFrames() < rendered + 1024)
    std::this_thread::yield();  // until the last commands are taken
  EXPECT_EQ(audio.startedVoices() + audio.droppedCommands(), 400u);
  ending = true;
  render.join();
  sensor.join();
  conductor->audition();
  conductor.reset();  // while the phrase still waits on the queue
  EXPECT_FALSE(device->running);
  EXPECT_EQ(motion.opened, motion.closed);
}

}  // namespace
}  // namespace tobrin
