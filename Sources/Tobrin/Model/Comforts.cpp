#include "Model/Comforts.h"

#include <cmath>
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

void read(const Json& document, const char* key, std::string& value) {
  const auto found = document.find(key);
  if (found != document.end() && found->is_string()) value = found->get<std::string>();
}

/// Nothing where it is no volume.
std::optional<float> asVolume(const Json& value) {
  constexpr double most = 4;  // the mixer's limit
  if (!value.is_number()) return std::nullopt;
  const auto number = value.get<double>();
  if (!(number >= 0 && number <= most)) return std::nullopt;
  return static_cast<float>(number);
}

/// To four places: a slider's step is larger.
Json volumesAsJson(const std::map<std::string, float>& volumes) {
  Json object = Json::object();
  for (const auto& [id, volume] : volumes)
    object[id] = std::round(static_cast<double>(volume) * 10000) / 10000;
  return object;
}

OutputMemory readOutputs(const Json& document) {
  OutputMemory outputs;
  read(document, "output", outputs.chosen);
  read(document, "outputName", outputs.chosenName);
  const auto volumes = document.find("outputVolumes");
  if (volumes == document.end() || !volumes->is_object()) return outputs;
  for (const auto& [id, value] : volumes->items())
    if (const auto volume = asVolume(value)) outputs.volumes[id] = *volume;
  return outputs;
}

std::optional<QuietApp> appOf(const Json& element) {
  if (!element.is_object()) return std::nullopt;
  const auto text = [&](const char* key) {
    const auto found = element.find(key);
    return found == element.end() ? std::nullopt : textOf(*found);
  };
  const std::string id = text("id").value_or("");
  if (id.empty()) return std::nullopt;
  return QuietApp{.id = id, .name = text("name").value_or(id)};
}

Json jsonOf(const std::vector<QuietApp>& apps) {
  Json list = Json::array();
  for (const QuietApp& app : apps)
    list.push_back({{"id", app.id}, {"name", app.name}});
  return list;
}

}  // namespace

Comforts Comforts::fromJson(std::string_view text) {
  Comforts comforts;
  const Json document = Json::parse(text, nullptr, false);
  if (!document.is_object()) return comforts;
  read(document, "maskWhileRecorded", comforts.maskWhileRecorded);
  read(document, "quietWhileLocked", comforts.quietWhileLocked);
  read(document, "keepsWideKeyAccess", comforts.keepsWideKeyAccess);
  read(document, "quietInFullScreen", comforts.quiet.inFullScreen);
  readList(document, "quietApps", comforts.quiet.apps, appOf);
  read(document, "mouseSounds", comforts.mouseSounds);
  read(document, "wheelSounds", comforts.wheelSounds);
  readList(document, "heldBackKeyboards", comforts.heldBackKeyboards, textOf);
  comforts.outputs = readOutputs(document);
  return comforts;
}

std::string Comforts::toJson() const {
  const Json document = {{"maskWhileRecorded", maskWhileRecorded},
                         {"quietWhileLocked", quietWhileLocked},
                         {"keepsWideKeyAccess", keepsWideKeyAccess},
                         {"quietInFullScreen", quiet.inFullScreen},
                         {"quietApps", jsonOf(quiet.apps)},
                         {"mouseSounds", mouseSounds},
                         {"wheelSounds", wheelSounds},
                         {"heldBackKeyboards", heldBackKeyboards},
                         {"output", outputs.chosen},
                         {"outputName", outputs.chosenName},
                         {"outputVolumes", volumesAsJson(outputs.volumes)}};
  // Devices and applications bring names of their own.
  return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace tobrin
