/// The stock client configuration whose data thread is scheduled in real time. Thread: any.
#pragma once

#include <pipewire/pipewire.h>

#include <string_view>

namespace tobrin {

/// For PW_KEY_CONFIG_NAME. Since version 1.4 the common configuration does this, and the other name
/// only brings a warning.
inline const char* realTimeClientConfiguration() {
  constexpr std::string_view oldVersions[] = {"0.", "1.0.", "1.1.", "1.2.", "1.3."};
  const std::string_view version = pw_get_library_version();
  for (const std::string_view old : oldVersions)
    if (version.starts_with(old)) return "client-rt.conf";
  return "client.conf";
}

}  // namespace tobrin
