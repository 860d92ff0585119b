/// What a motion source says about itself, kept for those who ask. Thread: any.
#pragma once

#include <string>
#include <utility>

#include "Base/Mutex.h"

namespace tobrin {

class SourceWords final {
 public:
  void setProblem(std::string problem) {
    MutexLock lock(lock_);
    problem_ = std::move(problem);
  }
  void setDescription(std::string description) {
    MutexLock lock(lock_);
    description_ = std::move(description);
  }
  [[nodiscard]] std::string problem() const {
    MutexLock lock(lock_);
    return problem_;
  }
  [[nodiscard]] std::string description() const {
    MutexLock lock(lock_);
    return description_;
  }

 private:
  mutable Mutex lock_;
  std::string problem_ TOBRIN_GUARDED_BY(lock_);
  std::string description_ TOBRIN_GUARDED_BY(lock_);
};

}  // namespace tobrin
