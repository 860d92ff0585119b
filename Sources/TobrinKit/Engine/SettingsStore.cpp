#include "Engine/SettingsStore.h"

#include <nlohmann/json.hpp>

namespace tobrin {

std::optional<std::string> SettingsStore::readText(std::string_view key) const {
  const auto saved = read(key);
  if (!saved) return std::nullopt;
  const auto value = nlohmann::json::parse(*saved, nullptr, /*allow_exceptions=*/false);
  if (!value.is_string()) return std::nullopt;
  return value.get<std::string>();
}

bool SettingsStore::writeText(std::string_view key, std::string_view text) {
  using Json = nlohmann::json;
  return write(key, Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace tobrin
