/// A mutex that clang's thread-safety analysis can follow, and the marks that go with it. Declare
/// what a lock guards with TOBRIN_GUARDED_BY, and what must hold it with TOBRIN_REQUIRES.
/// Thread: any.
#pragma once

#include <mutex>

#if defined(__clang__)
#define TOBRIN_THREAD_MARK(mark) __attribute__((mark))
#else
#define TOBRIN_THREAD_MARK(mark)
#endif

#define TOBRIN_GUARDED_BY(lock) TOBRIN_THREAD_MARK(guarded_by(lock))
#define TOBRIN_REQUIRES(lock) TOBRIN_THREAD_MARK(requires_capability(lock))
#define TOBRIN_EXCLUDES(lock) TOBRIN_THREAD_MARK(locks_excluded(lock))

namespace tobrin {

class TOBRIN_THREAD_MARK(capability("mutex")) Mutex {
 public:
  void lock() TOBRIN_THREAD_MARK(acquire_capability()) { mutex_.lock(); }
  void unlock() TOBRIN_THREAD_MARK(release_capability()) { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

/// Holds a `Mutex` for a scope.
class TOBRIN_THREAD_MARK(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) TOBRIN_THREAD_MARK(acquire_capability(mutex)) : mutex_(mutex) {
    mutex_.lock();
  }
  ~MutexLock() TOBRIN_THREAD_MARK(release_capability()) { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace tobrin
