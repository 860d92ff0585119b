// Nothing on the render path or in a push may allocate or enter the kernel.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "MixerFixture.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
extern "C" void* __libc_malloc(std::size_t size);  // NOLINT: the name is the library's
#endif

namespace {

std::atomic<bool> watching{false};
std::atomic<int> allocations{0};

void countAllocation() {
  if (watching.load(std::memory_order_relaxed)) allocations.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

// Every other form of new ends in this one or in malloc. Inlined, they would look mismatched.
[[gnu::noinline]] void* operator new(std::size_t size) {
  countAllocation();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" void* malloc(std::size_t size) {
  countAllocation();
  return __libc_malloc(size);
}
#endif

namespace tobrin {
namespace {

/// Drives every path of the renderer: starts, ramps, releases, taking over, mono, limiting.
void exercise(TBMixer* mixer, const std::vector<float>& sound, Block& block) {
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
}

TEST(RealTime, RenderAndPushAllocateNothing) {
  const std::vector<float> sound(2000, 0.4F);
  const MixerHandle mixer = makeMixer();
  Block block{std::vector<float>(1000), std::vector<float>(1000)};
  watching = true;
  exercise(mixer.get(), sound, block);
  watching = false;
  EXPECT_EQ(allocations.load(), 0);
  watching = true;
  delete new std::vector<float>(7);
  watching = false;
  EXPECT_GE(allocations.load(), 2) << "the guard sees allocations";
}

// Ends the process at any system call but its own end.
void forbidSystemCalls() {
  sock_filter program[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, 0),  // the call's number
                           BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 0, 1),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS)};
  const sock_fprog filter{.len = std::size(program), .filter = program};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
    _exit(77);
}

// Runs `work` in a child that may not enter the kernel; the child's wait status.
template <typename Work>
int statusWithoutSystemCalls(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    forbidSystemCalls();
    work();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST(RealTime, RenderAndPushMakeNoSystemCall) {
  if (sanitized) GTEST_SKIP() << "a sanitizer makes calls of its own";
  const std::vector<float> sound(2000, 0.4F);
  const MixerHandle mixer = makeMixer();
  Block block{std::vector<float>(1000), std::vector<float>(1000)};
  EXPECT_EQ(statusWithoutSystemCalls([&] { exercise(mixer.get(), sound, block); }), 0);
  const int forbidden = statusWithoutSystemCalls([] { getppid(); });
  EXPECT_TRUE(WIFSIGNALED(forbidden) && WTERMSIG(forbidden) == SIGSYS) << "the filter works";
}

}  // namespace
}  // namespace tobrin
