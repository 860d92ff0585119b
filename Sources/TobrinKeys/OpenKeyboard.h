/// One keyboard device, opened for reading. Revoked in the kernel when it is let go, so that nobody
/// could read on through a copy of the descriptor. Thread: main.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyFilter.h"

namespace tobrin {

class OpenKeyboard final {
 public:
  /// Nothing where the device cannot be opened or is no keyboard. `number` names it in records.
  static std::unique_ptr<OpenKeyboard> open(const std::string& node, uint32_t number);
  ~OpenKeyboard();
  OpenKeyboard(const OpenKeyboard&) = delete;
  OpenKeyboard& operator=(const OpenKeyboard&) = delete;

  [[nodiscard]] int fd() const { return file_.get(); }
  [[nodiscard]] const std::string& node() const { return node_; }
  [[nodiscard]] uint32_t number() const { return number_; }

  /// Appends what has come in, at most `keyRecordsAtOnce` records unless the kernel dropped events;
  /// false once the keyboard is gone.
  bool read(std::vector<KeyRecord>& told);

 private:
  OpenKeyboard(const std::string& node, uint32_t number, FileDescriptor file);

  const std::string node_;
  const uint32_t number_;
  const FileDescriptor file_;
  KeyFilter filter_;
};

}  // namespace tobrin
