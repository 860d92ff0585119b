// On the render path, from the output's callback down, nothing may allocate, lock, enter the kernel
// or touch memory that is not there. Each test renders in a child, which the guard ends otherwise.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "Base/MachTime.h"
#include "Engine/Conductor.h"
#include "RealTimeGuard.h"
#include "Support/HandDrivenDevice.h"
#include "Support/InChild.h"
#include "Support/TestPack.h"
#include "Threads/AsioQueue.h"
#include "TobrinMixer/MixerFixture.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::inChild;

/// Drives every path of the renderer: starts, ramps, releases, taking over, mono, limiting.
int exercise(TBMixer* mixer, const std::vector<float>& sound, Block& block) {
  testing::forbidEverything();
  for (uint32_t round = 0; round < 200; ++round) {
    TBCommand command = startOf(sound, round + 1, 0.5F);
    command.rate = round % 3 == 0 ? 1.7F : 1.01F;
    if (round % 2 == 0) command.layers[1] = {sound.data(), sound.data() + 9, 700};
    static_cast<void>(tb_mixer_push(mixer, &command));
    command =
        commandOf(round % 50 == 49 ? TB_COMMAND_RELEASE_ALL : TB_COMMAND_SET_WEIGHTS, round, 1);
    static_cast<void>(tb_mixer_push(mixer, &command));
    tb_mixer_set_master(mixer, round % 7 == 0 ? 0.5F : 1);
    const uint32_t frames = round % 5 == 0 ? 1000 : 64 + round;
    tb_mixer_render(mixer, block.left.data(), round % 4 == 0 ? nullptr : block.right.data(),
                    frames);
  }
  return 0;
}

/// A render thread under guard, its page faults counted, beside a thousand keys a second, a pack
/// every 20 ms and volumes without pause. Zero is success.
int engineUnderLoad() {
  const auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  AsioQueue queue(Conductor::queueName);
  Conductor conductor(
      queue, std::make_unique<AudioOutput>(std::make_unique<testing::HandDrivenDevice>(device)),
      nullptr);
  conductor.setPack(testing::TestPack::simple(4800));
  conductor.apply({}, true);
  queue.sync([] {});
  std::atomic<pid_t> renderThread = 0;
  std::thread([&] {
    std::vector<float> left(256);
    std::vector<float> right(256);
    renderThread = gettid();
    testing::forbidEverything();
    for (;;)
      device->callbacks.render(device->callbacks.context, left.data(), right.data(), 256);
  }).detach();
  while (renderThread == 0)
    std::this_thread::yield();

  const auto disturb = [&](uint16_t presses) {
    for (uint16_t i = 0; i < presses; ++i) {
      conductor.handle({i, KeyAction::down, machNow()});
      conductor.handle({i, KeyAction::up, machNow()});
      if (i % 20 == 0) conductor.setPack(testing::TestPack::simple(4800));
      conductor.apply({.volume = 0.001F * static_cast<float>(i)}, true);
      std::this_thread::sleep_for(1ms);
    }
  };
  disturb(200);  // the code itself is in memory by now
  const long before = testing::pageFaults(renderThread);
  const uint64_t sounds = conductor.audio().startedVoices();
  disturb(1500);
  if (before < 0 || testing::pageFaults(renderThread) != before) return 2;
  queue.sync([] {});
  return conductor.audio().startedVoices() < sounds + 2500 ? 3 : 0;
}

class RealTime : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!testing::canForbidEverything) GTEST_SKIP() << "a sanitizer does all that is forbidden";
  }
};

TEST_F(RealTime, RenderAndPushKeepToThemselves) {
  const std::vector<float> sound(2000, 0.4F);
  const MixerHandle mixer = makeMixer();
  Block block{std::vector<float>(1000), std::vector<float>(1000)};
  EXPECT_EQ(inChild([&] { return exercise(mixer.get(), sound, block); }), 0);
}

TEST_F(RealTime, TheCallbackKeepsToItselfUnderLoad) {
  EXPECT_EQ(inChild(engineUnderLoad), 0);
}

TEST_F(RealTime, TheGuardSeesEverything) {
  const auto guarded = [](auto work) {
    return inChild([&] {
      testing::forbidEverything();
      work();
      return 0;
    });
  };
  std::mutex mutex;
  EXPECT_EQ(guarded([] {}), 0);
  EXPECT_EQ(guarded([] { delete new std::vector<float>(7); }), -SIGILL);
  EXPECT_EQ(guarded([&] { const std::scoped_lock lock(mutex); }), -SIGILL);
  EXPECT_EQ(guarded([] { getppid(); }), -SIGSYS);
  const long before = testing::pageFaults(gettid());
  auto* const fresh = static_cast<char*>(
      mmap(nullptr, 1 << 16, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  fresh[0] = 1;
  EXPECT_GT(testing::pageFaults(gettid()), before);
  munmap(fresh, 1 << 16);
}

}  // namespace
}  // namespace tobrin
