#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "Consents.h"
#include "Filter.h"
#include "Support/InChild.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

TEST(Consents, LastUntilTheEndOrUntilTheyAreTakenBack) {
  const testing::TempFolder folder;
  Consents consents(folder.path());
  EXPECT_FALSE(consents.has(1));
  EXPECT_TRUE(consents.give(1, false) && consents.give(20, true));
  EXPECT_TRUE(consents.has(1) && consents.has(20));
  const Consents afterARestart(folder.path());
  EXPECT_TRUE(!afterARestart.has(1) && afterARestart.has(20));
  struct stat kept {};
  ASSERT_EQ(stat((folder.path() / "20").c_str(), &kept), 0);
  EXPECT_EQ(kept.st_mode & 0777, 0600u);
  errno = 0;
  EXPECT_TRUE(consents.takeBack(20) && consents.takeBack(1) && consents.takeBack(20));
  EXPECT_FALSE(consents.has(1) || afterARestart.has(20));

  Consents nowhere(folder.write("file", ""));
  EXPECT_FALSE(nowhere.give(1, true) || nowhere.takeBack(1) || nowhere.has(1));
}

/// The first call that is allowed or refused when it should not be; zero for none.
int firstWrongCall() {
  if (giveUpWhatIsNotNeeded() != 0) return 255;
  const long calls[] = {
#ifdef SYS_fork  // not on every processor
      SYS_fork,
      SYS_vfork,
#endif
      SYS_execve,
      SYS_execveat,
      SYS_ptrace,
      SYS_process_vm_readv,
      SYS_process_vm_writev,
      SYS_pidfd_getfd,
      SYS_mount,
      SYS_io_uring_setup,
      SYS_setns,
      SYS_unshare,
      SYS_bpf,
      SYS_perf_event_open,
      SYS_kcmp,
      SYS_init_module,
      SYS_finit_module};
  int number = 0;
  for (const long call : calls) {
    ++number;
    if (syscall(call, -1, -1, -1, -1, -1, -1) != -1 || errno != EPERM) return number;
  }
  if (socket(AF_INET, SOCK_DGRAM, 0) >= 0 || errno != EPERM) return 101;
  if (socket(AF_UNIX, SOCK_DGRAM, 0) < 0) return 102;
  if (prctl(PR_GET_DUMPABLE) != 0 || prctl(PR_GET_NO_NEW_PRIVS, 0, 0, 0, 0) != 1) return 103;
  return 0;
}

TEST(Filter, RefusesWhatTheBrokerDoesNotNeed) {
  EXPECT_EQ(testing::inChild(firstWrongCall), 0);
}

}  // namespace
}  // namespace tobrin
