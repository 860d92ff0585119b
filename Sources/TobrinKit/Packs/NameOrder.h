/// The order in which a file browser lists names: by the user's language, letter case last, runs of
/// digits by their number. Thread: any.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tobrin {

class NameOrder final {
 public:
  /// `locale` is a POSIX locale name such as "de_DE.UTF-8"; "C", "POSIX" and unknown ones give the
  /// order that suits most languages. The language's rules stay in memory as long as this object:
  /// make it, sort, drop it.
  explicit NameOrder(const std::string& locale);
  ~NameOrder();
  NameOrder(const NameOrder&) = delete;
  NameOrder& operator=(const NameOrder&) = delete;

  /// Whether the UTF-8 text `a` stands before `b`.
  [[nodiscard]] bool isBefore(std::string_view a, std::string_view b) const;

 private:
  struct Rules;
  std::unique_ptr<Rules> rules_;  // null where the rules cannot be had: order of the bytes
};

}  // namespace tobrin
