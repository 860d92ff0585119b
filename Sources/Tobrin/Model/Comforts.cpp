#include "Model/Comforts.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "Engine/VoiceBoost.h"

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

/// Nothing where it is not a number from `least` to `most`.
std::optional<float> numberOf(const Json& document, const char* key, double least, double most) {
  const auto found = document.find(key);
  if (found == document.end() || !found->is_number()) return std::nullopt;
  const auto number = found->get<double>();
  if (!(number >= least && number <= most)) return std::nullopt;
  return static_cast<float>(number);
}

std::optional<Loudness> loudnessOf(const Json& device) {
  constexpr double loudestMaster = 4;  // of the mixer
  if (!device.is_object()) return std::nullopt;
  const auto volume = numberOf(device, "volume", 0, loudestMaster);
  if (!volume) return std::nullopt;
  return Loudness{
      .volume = *volume,
      .boost = numberOf(device, "boost", 1, static_cast<double>(VoiceBoost::most)).value_or(1)};
}

/// To four places: a slider's step is larger.
double rounded(float value) {
  return std::round(static_cast<double>(value) * 10000) / 10000;
}

Json asJson(const std::map<std::string, Loudness>& loudness) {
  Json devices = Json::object();
  for (const auto& [id, device] : loudness)
    devices[id] = {{"volume", rounded(device.volume)}, {"boost", rounded(device.boost)}};
  return devices;
}

OutputMemory readOutputs(const Json& document) {
  OutputMemory outputs;
  read(document, "output", outputs.chosen);
  read(document, "outputName", outputs.chosenName);
  const auto devices = document.find("outputLoudness");
  if (devices == document.end() || !devices->is_object()) return outputs;
  for (const auto& [id, device] : devices->items())
    if (const auto loudness = loudnessOf(device)) outputs.loudness[id] = *loudness;
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
  Json document = {{"maskWhileRecorded", maskWhileRecorded},
                   {"quietWhileLocked", quietWhileLocked},
                   {"keepsWideKeyAccess", keepsWideKeyAccess},
                   {"quietInFullScreen", quiet.inFullScreen},
                   {"quietApps", jsonOf(quiet.apps)},
                   {"mouseSounds", mouseSounds},
                   {"wheelSounds", wheelSounds},
                   {"output", outputs.chosen},
                   {"outputName", outputs.chosenName},
                   {"outputLoudness", asJson(outputs.loudness)}};
  // Later versions may know more names: only a list of the user's own is kept.
  if (heldBackKeyboards != HeldBackKeyboards::usual())
    document["heldBackKeyboards"] = heldBackKeyboards;
  // Devices and applications bring names of their own.
  return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace tobrin
