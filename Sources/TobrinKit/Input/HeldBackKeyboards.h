/// Ignores keys that no finger pressed: programs that type for their user, such as text expanders,
/// make keyboards of their own, which are known by name. The keyboards of key remappers have other
/// names and are heard.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Base/Mutex.h"
#include "Input/KeySource.h"

namespace tobrin {

class HeldBackKeyboards final {
 public:
  using Names = std::vector<std::string>;

  /// The keyboards of the most common programs. XTEST is not among them: text expanders type
  /// through that keyboard of an X server, but so do people who work from another machine.
  static const Names& usual();

  /// A keyboard is held back if its name holds one of `names`, in small or capital letters.
  /// Thread: any.
  void set(Names names);

  /// Whether to ignore a press or release. A release is treated as its press was, even if `set` was
  /// called since. Thread: key.
  [[nodiscard]] bool holdsBack(const KeySource::Event& event);

 private:
  [[nodiscard]] bool isListed(std::string_view keyboard) const;

  mutable Mutex mutex_;
  Names names_ TOBRIN_GUARDED_BY(mutex_);  // in small letters

  std::set<std::pair<std::string, uint16_t>> held_;  // keyboard and key; key thread
};

}  // namespace tobrin
