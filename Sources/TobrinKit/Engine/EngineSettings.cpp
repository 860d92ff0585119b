#include "Engine/EngineSettings.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "Base/ReadJson.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;

[[noreturn]] void fail(const std::string& text) {
  throw std::runtime_error(text);
}

void decode(const Json& json, const std::string& path, bool& value) {
  if (!json.is_boolean()) fail("\"" + path + "\" is neither true nor false");
  value = json.get<bool>();
}

void decode(const Json& json, const std::string& path, float& value) {
  if (!json.is_number()) fail("\"" + path + "\" is not a number");
  const double number = json.get<double>();
  constexpr auto most = static_cast<double>(std::numeric_limits<float>::max());
  if (!(std::abs(number) <= most)) fail("\"" + path + "\" is out of range");
  value = static_cast<float>(number);
}

void decode(const Json& json, const std::string& path, Tier& value) {
  if (!json.is_number_integer()) fail("\"" + path + "\" is not an integer");
  const bool beyond = json.is_number_unsigned() && json.get<uint64_t>() >= tierCount;
  const std::optional<Tier> found = beyond ? std::nullopt : tier(json.get<int64_t>());
  if (!found) fail("\"" + path + "\" is not a tier (0 to 3)");
  value = *found;
}

void decode(const Json& json, const std::string& path, uint32_t& value) {
  // Numbers without a sign are held as unsigned, so the others are negative or fractions.
  if (!json.is_number_unsigned() || json.get<uint64_t>() > std::numeric_limits<uint32_t>::max())
    fail("\"" + path + "\" is not an integer from 0 to 4294967295");
  value = json.get<uint32_t>();
}

void decode(const Json& json, const std::string& path, Hotkey& value) {
  if (!json.is_object()) fail("\"" + path + "\" is not an object");
  const auto required = [&](const char* key, uint32_t& field) {
    const auto found = json.find(key);
    if (found == json.end()) fail("\"" + path + "." + key + "\" is missing");
    decode(*found, path + "." + key, field);
  };
  required("keyCode", value.keyCode);
  required("modifiers", value.modifiers.rawValue);
}

/// Keeps the default where the field is missing or null.
template <typename Value>
void decodeIfPresent(const Json& document, const char* key, Value& value) {
  const auto found = document.find(key);
  if (found != document.end() && !found->is_null()) decode(*found, key, value);
}

/// The shortest decimal that reads back as the same float: 0.7, not 0.699999988079071. JSON has no
/// word for infinities and NaN; they become null and read as the default.
Json shortest(float value) {
  if (!std::isfinite(value)) return nullptr;
  char digits[32];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
  double result = 0;
  std::from_chars(std::begin(digits), end, result);
  return result;
}

}  // namespace

EngineSettings EngineSettings::fromJson(std::string_view text) {
  const Json document = readJson(text);
  if (!document.is_object()) fail("not a JSON object");
  EngineSettings settings;
  decodeIfPresent(document, "enabled", settings.enabled);
  decodeIfPresent(document, "volume", settings.volume);
  decodeIfPresent(document, "forceSensing", settings.forceSensing);
  decodeIfPresent(document, "sensitivity", settings.sensitivity);
  decodeIfPresent(document, "fixedTier", settings.fixedTier);
  decodeIfPresent(document, "blendTiers", settings.blendTiers);
  decodeIfPresent(document, "releaseSounds", settings.releaseSounds);
  decodeIfPresent(document, "spatial", settings.spatial);
  decodeIfPresent(document, "quietDuringCalls", settings.quietDuringCalls);
  decodeIfPresent(document, "shortcutEnabled", settings.shortcutEnabled);
  decodeIfPresent(document, "shortcut", settings.shortcut);
  return settings;
}

std::string EngineSettings::toJson() const {
  const nlohmann::ordered_json document = {
      {"enabled", enabled},
      {"volume", shortest(volume)},
      {"forceSensing", forceSensing},
      {"sensitivity", shortest(sensitivity)},
      {"fixedTier", index(fixedTier)},
      {"blendTiers", blendTiers},
      {"releaseSounds", releaseSounds},
      {"spatial", shortest(spatial)},
      {"quietDuringCalls", quietDuringCalls},
      {"shortcutEnabled", shortcutEnabled},
      {"shortcut", {{"keyCode", shortcut.keyCode}, {"modifiers", shortcut.modifiers.rawValue}}}};
  return document.dump();
}

}  // namespace tobrin
