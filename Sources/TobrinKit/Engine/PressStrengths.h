/// How hard each key that is down was struck, as measured, which scales its release.
/// Thread: conductor.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace tobrin {

class PressStrengths final {
 public:
  /// A key went down and started the voice `tag`; its strength is not known yet.
  void press(uint16_t code, uint32_t tag) { held_.insert_or_assign(code, Press{tag, {}}); }

  /// The strength of the press that started `tag`. Ignored where the key was released in the
  /// meantime: the strength must not stay for a later press of it.
  void measure(uint16_t code, uint32_t tag, float relative) {
    const auto found = held_.find(code);
    if (found != held_.end() && found->second.tag == tag) found->second.relative = relative;
  }

  /// The key went up; its strength, where one was measured in time.
  std::optional<float> release(uint16_t code) {
    const auto press = held_.extract(code);
    return press ? press.mapped().relative : std::nullopt;
  }

  void clear() { held_.clear(); }

 private:
  struct Press {
    uint32_t tag;
    std::optional<float> relative;
  };

  std::unordered_map<uint16_t, Press> held_;
};

}  // namespace tobrin
