#include "Engine/SettingsStore.h"

#include "Base/ReadJson.h"

namespace tobrin {

std::optional<std::string> SettingsStore::readText(std::string_view key) const {
  const auto saved = read(key);
  if (!saved) return std::nullopt;
  try {
    const auto value = readJson(*saved);
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
  } catch (const JsonError&) {
    return std::nullopt;
  }
}

bool SettingsStore::writeText(std::string_view key, std::string_view text) {
  using Json = nlohmann::json;
  return write(key, Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace tobrin
