#include "Confinement/Confinement.h"

#include <linux/netlink.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>
#include <string>
#include <system_error>

#include "Base/Log.h"

namespace tobrin {
namespace {

using Filter = std::unique_ptr<void, decltype(&seccomp_release)>;

/// Adds the rules that refuse; returns zero, or a negative errno.
int addRules(scmp_filter_ctx filter) {
  const uint32_t refuse = SCMP_ACT_ERRNO(EACCES);
  const int socketCall = SCMP_SYS(socket);
  int status = 0;
  for (unsigned family = 0; family < AF_NETLINK; ++family) {
    if (family == AF_UNIX) continue;
    status |= seccomp_rule_add(filter, refuse, socketCall, 1, SCMP_A0(SCMP_CMP_EQ, family));
  }
  // As 64 bits, so that nothing hides above the half that the kernel looks at.
  status |= seccomp_rule_add(filter, refuse, socketCall, 1, SCMP_A0(SCMP_CMP_GT, AF_NETLINK));
  status |= seccomp_rule_add(filter, refuse, socketCall, 2, SCMP_A0(SCMP_CMP_EQ, AF_NETLINK),
                             SCMP_A2(SCMP_CMP_NE, NETLINK_KOBJECT_UEVENT));
  status |= seccomp_rule_add(filter, refuse, SCMP_SYS(io_uring_setup), 0);
  return status == 0 ? seccomp_attr_set(filter, SCMP_FLTATR_CTL_TSYNC, 1) : -EINVAL;
}

void report(const char* what, int error) {
  if (error != 0) logLine(std::string(what) + ": " + std::generic_category().message(error));
}

}  // namespace

void keepNoCore() {
  // One byte, not none: the kernel still hands a core to a handler where the limit is zero.
  const rlimit least{.rlim_cur = 1, .rlim_max = 1};
  rlimit now{};
  if (getrlimit(RLIMIT_CORE, &now) == 0 && now.rlim_max < least.rlim_max) return;
  report("can't switch core files off", setrlimit(RLIMIT_CORE, &least) == 0 ? 0 : errno);
}

void takeNoPrivileges() {
  report("can't give up new privileges", prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 ? 0 : errno);
}

void refuseNetwork() {
  const Filter filter(seccomp_init(SCMP_ACT_ALLOW), &seccomp_release);
  int status = filter ? addRules(filter.get()) : -ENOMEM;
  if (status == 0) status = seccomp_load(filter.get());
  report("can't refuse network sockets", -status);
}

}  // namespace tobrin
