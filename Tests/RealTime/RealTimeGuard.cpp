#include "RealTimeGuard.h"

#include <dlfcn.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <limits>
#include <string>

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// The program's own allocator and locks stand before the library's: every form of new ends here.
extern "C" {
// NOLINTBEGIN(*-reserved-identifier,cert-dcl*,*-naming): the library's names
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
// NOLINTEND(*-reserved-identifier,cert-dcl*,*-naming)
}

namespace {

thread_local bool forbidden = false;

void check() {
  if (forbidden) __builtin_trap();
}

using LockFunction = int (*)(pthread_mutex_t*);

LockFunction fromLibrary(const char* name) {
  return reinterpret_cast<LockFunction>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) {
  check();
  return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
  check();
  return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
  check();
  return __libc_realloc(memory, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  check();
  return __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  check();
  *memory = __libc_memalign(alignment, size);
  return *memory != nullptr ? 0 : ENOMEM;
}
void free(void* memory) {
  check();
  __libc_free(memory);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
  check();
  static const LockFunction lock = fromLibrary("pthread_mutex_lock");
  return lock(mutex);
}
int pthread_mutex_trylock(pthread_mutex_t* mutex) {
  check();
  static const LockFunction lock = fromLibrary("pthread_mutex_trylock");
  return lock(mutex);
}
}
#endif

namespace tobrin::testing {

void forbidEverything() {
  std::array<sock_filter, 4> program = {
      {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, 0),  // the call's number
       BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 0, 1),
       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS)}};
  const sock_fprog filter{.len = program.size(), .filter = program.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
    _exit(77);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  forbidden = true;
#endif
}

long pageFaults(pid_t thread) {
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  // After the name come state and numbers: the 10th and the 12th field are the faults, see proc(5).
  file.ignore(std::numeric_limits<std::streamsize>::max(), ')');
  std::string skipped;
  for (int field = 3; field < 10; ++field)
    file >> skipped;
  long minor = 0;
  long major = 0;
  return file >> minor >> skipped >> major ? minor + major : -1;
}

}  // namespace tobrin::testing
