#include "Model/Comforts.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace tobrin {

namespace {

using Json = nlohmann::json;

constexpr std::size_t mostInList = 200;

void read(const Json& document, const char* key, bool& value) {
  const auto found = document.find(key);
  if (found != document.end() && found->is_boolean()) value = found->get<bool>();
}

/// Takes what `item` makes of each element; nothing is left out.
template <typename Item, typename Make>
void readList(const Json& document, const char* key, std::vector<Item>& value, Make item) {
  const auto found = document.find(key);
  if (found == document.end() || !found->is_array()) return;
  value.clear();
  for (const Json& element : *found) {
    std::optional<Item> made = item(element);
    if (made && value.size() < mostInList) value.push_back(*std::move(made));
  }
}

std::optional<std::string> textOf(const Json& element) {
  if (!element.is_string()) return std::nullopt;
  return element.get<std::string>();
}

}  // namespace

Comforts Comforts::fromJson(std::string_view text) {
  Comforts comforts;
  const Json document = Json::parse(text, nullptr, false);
  if (!document.is_object()) return comforts;
  read(document, "maskWhileRecorded", comforts.maskWhileRecorded);
  read(document, "quietWhileLocked", comforts.quietWhileLocked);
  read(document, "keepsWideKeyAccess", comforts.keepsWideKeyAccess);
  readList(document, "heldBackKeyboards", comforts.heldBackKeyboards, textOf);
  return comforts;
}

std::string Comforts::toJson() const {
  return Json{{"maskWhileRecorded", maskWhileRecorded},
              {"quietWhileLocked", quietWhileLocked},
              {"keepsWideKeyAccess", keepsWideKeyAccess},
              {"heldBackKeyboards", heldBackKeyboards}}
      .dump();
}

}  // namespace tobrin
