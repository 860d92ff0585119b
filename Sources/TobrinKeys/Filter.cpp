#include "Filter.h"

#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>

namespace tobrin {

int giveUpWhatIsNotNeeded() {
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) != 0)
    return errno;
  const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ALLOW),
                                                                 &seccomp_release);
  if (!filter) return ENOMEM;
  const uint32_t refuse = SCMP_ACT_ERRNO(EPERM);
  int status =
      seccomp_rule_add(filter.get(), refuse, SCMP_SYS(socket), 1, SCMP_A0(SCMP_CMP_NE, AF_UNIX));
  for (const int call :
       {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(ptrace),
        SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev), SCMP_SYS(pidfd_getfd),
        SCMP_SYS(io_uring_setup), SCMP_SYS(mount), SCMP_SYS(setns), SCMP_SYS(unshare),
        SCMP_SYS(bpf), SCMP_SYS(perf_event_open), SCMP_SYS(kcmp), SCMP_SYS(init_module),
        SCMP_SYS(finit_module)})
    status |= seccomp_rule_add(filter.get(), refuse, call, 0);
  return status == 0 ? -seccomp_load(filter.get()) : EINVAL;
}

}  // namespace tobrin
