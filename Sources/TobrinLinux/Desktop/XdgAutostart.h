/// The login item as desktops know it: an entry in the user's autostart folder. Thread: main.
#pragma once

#include <filesystem>
#include <string>

#include "Engine/DesktopServices.h"

namespace tobrin {

class XdgAutostart final : public LoginItem {
 public:
  /// `configFolder` is the user's settings folder, `program` what the session is to start.
  XdgAutostart(const std::filesystem::path& configFolder, std::filesystem::path program);

  /// An entry exists, is not hidden and starts a program that is there.
  [[nodiscard]] bool isEnabled() const override;
  std::string setEnabled(bool on) override;

 private:
  std::filesystem::path entry_;
  std::filesystem::path program_;
};

}  // namespace tobrin
