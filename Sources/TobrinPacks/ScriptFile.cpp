#include "ScriptFile.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "Base/ReadJson.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;

[[noreturn]] void fail(const std::string& text) {
  throw std::runtime_error(text);
}

const Json& member(const Json& entry, const char* key) {
  const auto found = entry.find(key);
  if (found == entry.end()) fail(std::string("\"") + key + "\" is missing");
  return *found;
}

double number(const Json& entry, const char* key, double high) {
  const Json& value = member(entry, key);
  const double result = value.is_number() ? value.get<double>() : -1;
  if (!(result >= 0 && result <= high))
    fail(std::string("\"") + key + "\" is not a number from 0 to " +
         std::to_string(std::lround(high)));
  return result;
}

ScriptedKey parseKey(const Json& entry) {
  if (!entry.is_object()) fail("is not an object");
  ScriptedKey key;
  key.time = number(entry, "time", longestScript);
  if (!member(entry, "code").is_number_integer()) fail("\"code\" is not an integer");
  key.code = static_cast<uint16_t>(number(entry, "code", UINT16_MAX));
  const Json& action = member(entry, "action");
  if (action != "down" && action != "up") fail("\"action\" is neither \"down\" nor \"up\"");
  key.action = action == "down" ? KeyAction::down : KeyAction::up;
  key.position = static_cast<float>(number(entry, "position", 3));
  return key;
}

}  // namespace

std::vector<ScriptedKey> parseScript(std::string_view json) {
  const Json document = readJson(json);
  if (!document.is_array()) fail("not a list of keys");
  std::vector<ScriptedKey> script;
  script.reserve(document.size());
  for (const Json& entry : document) {
    try {
      script.push_back(parseKey(entry));
    } catch (const std::runtime_error& error) {
      fail("entry " + std::to_string(script.size() + 1) + ": " + error.what());
    }
  }
  return script;
}

}  // namespace tobrin
