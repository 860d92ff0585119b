/// Reads the fields of one JSON object with errors that name the key. For the sources that parse
/// recipes; keeps the JSON library out of every other header. Thread: any.
#pragma once

#include <cassert>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "Base/ReadJson.h"
#include "Base/RecipeError.h"

namespace tobrin {

class JsonFields final {
 public:
  /// `place` leads to the object, for messages: "" for the document, "sources[2]." for an entry.
  JsonFields(const nlohmann::json& object, std::string place)
      : object_(object), place_(std::move(place)) {
    if (!object.is_object()) fail("", "must be an object");
  }

  /// Null counts as absent.
  [[nodiscard]] const nlohmann::json* find(const char* key) const {
    const auto found = object_.find(key);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
  }

  [[nodiscard]] const nlohmann::json& require(const char* key) const {
    const auto* value = find(key);
    if (value == nullptr) fail(key, "is missing");
    return *value;
  }

  [[nodiscard]] std::string text(const char* key) const {
    const auto& value = require(key);
    if (!value.is_string()) fail(key, "must be a text");
    return value.get<std::string>();
  }

  [[nodiscard]] int64_t integer(const char* key, const nlohmann::json& value, int64_t least,
                                int64_t most) const {
    assert(least <= most);
    const bool fits = value.is_number_unsigned()
                          ? value.get<uint64_t>() <= static_cast<uint64_t>(INT64_MAX)
                          : value.is_number_integer();
    if (!fits) fail(key, "must be a whole number");
    const auto number = value.get<int64_t>();
    if (number < least || number > most) {
      fail(key, "must lie between " + std::to_string(least) + " and " + std::to_string(most));
    }
    return number;
  }

  [[nodiscard]] double number(const char* key, const nlohmann::json& value, double least,
                              double most) const {
    assert(least <= most);
    if (!value.is_number()) fail(key, "must be a number");
    const auto number = value.get<double>();
    if (!std::isfinite(number) || number < least || number > most) {
      fail(key, "must lie between " + nlohmann::json(least).dump() + " and " +
                    nlohmann::json(most).dump());
    }
    return number;
  }

  [[nodiscard]] const std::string& place() const { return place_; }

  [[noreturn]] void fail(const std::string& key, const std::string& what) const {
    const std::string where = place_ + key;
    throw RecipeError(where.empty() ? "the document " + what : "\"" + where + "\" " + what);
  }

 private:
  const nlohmann::json& object_;
  std::string place_;
};

/// As `readJson`, but throws `RecipeError`.
inline nlohmann::json parsedJson(std::string_view text) {
  try {
    return readJson(text);
  } catch (const JsonError& error) {
    throw RecipeError(error.what());
  }
}

}  // namespace tobrin
