#include "Packs/PackManifest.h"

#include <charconv>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "Base/PackError.h"
#include "Base/ReadJson.h"
#include "Base/RegularFile.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;

constexpr uint64_t maxManifestBytes = 4u << 20;  // a starter pack's manifest has 3 KiB

constexpr const char* knownKeys[] = {"formatVersion", "id",      "name",   "kind",    "summary",
                                     "author",        "license", "groups", "keyTakes"};

[[noreturn]] void fail(const std::string& text) {
  throw std::runtime_error(text);
}

/// Watches the parser: refuses names written twice where one of the two would be lost silently.
/// Names that the format does not know are free (some authors repeat "comment").
class ParseGuard {
 public:
  bool operator()(int depth, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) names_.emplace_back();
    if (event == Json::parse_event_t::object_end) names_.pop_back();
    if (event == Json::parse_event_t::key) note(depth, parsed.get_ref<const std::string&>());
    return true;
  }

 private:
  void note(int depth, const std::string& name) {
    if (depth == 1) inTakes_ = name == "groups" || name == "keyTakes";
    const bool known = depth > 1 ? inTakes_
                                 : std::find(std::begin(knownKeys), std::end(knownKeys), name) !=
                                       std::end(knownKeys);
    if (known && !names_.back().insert(name).second) fail("\"" + name + "\" stands there twice");
  }

  std::vector<std::set<std::string>> names_;  // of the open objects, outermost first
  bool inTakes_ = false;
};

const Json& required(const Json& object, std::string_view path, const char* key) {
  const auto found = object.find(key);
  if (found == object.end()) fail("\"" + std::string(path) + key + "\" is missing");
  return *found;
}

std::string stringValue(const Json& value, const std::string& path) {
  if (!value.is_string()) fail("\"" + path + "\" is not a string");
  return value.get<std::string>();
}

std::optional<std::string> optionalString(const Json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return std::nullopt;
  return stringValue(*found, key);
}

int64_t integerValue(const Json& value, const std::string& path) {
  const bool fits =
      value.is_number_integer() &&
      (!value.is_number_unsigned() || value.get<uint64_t>() <= static_cast<uint64_t>(INT64_MAX));
  if (!fits) fail("\"" + path + "\" is not an integer");
  return value.get<int64_t>();
}

std::vector<std::string> pathList(const Json& value, const std::string& path) {
  if (!value.is_array()) fail("\"" + path + "\" is not a list");
  std::vector<std::string> paths;
  paths.reserve(value.size());
  for (const Json& entry : value)
    paths.push_back(stringValue(entry, path));
  return paths;
}

const Json& objectValue(const Json& value, std::string_view path) {
  if (!value.is_object()) fail("\"" + std::string(path) + "\" is not an object");
  return value;
}

PackManifest::Group groupValue(const Json& value, const std::string& path) {
  const Json& object = objectValue(value, path);
  PackManifest::Group group;
  const std::string downPath = path + ".down";
  const Json& down = objectValue(required(object, path + ".", "down"), downPath);
  for (const auto& [tierName, paths] : down.items())
    group.down[tierName] = pathList(paths, std::string(downPath).append(".").append(tierName));
  if (const auto up = object.find("up"); up != object.end() && !up->is_null())
    group.up = pathList(*up, path + ".up");
  return group;
}

std::optional<std::vector<uint32_t>> variantList(const Json& object, const char* key,
                                                 const std::string& place) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return std::nullopt;
  const std::string path = place + "." + key;
  if (!found->is_array()) fail("\"" + path + "\" is not a list");
  std::vector<uint32_t> variants;
  for (const Json& entry : *found) {
    const int64_t variant = integerValue(entry, path);
    if (variant < 0 || variant > UINT32_MAX) fail("\"" + path + "\" holds no place in a list");
    variants.push_back(static_cast<uint32_t>(variant));
  }
  return variants;
}

std::map<uint16_t, PackManifest::Key> keyTakes(const Json& document) {
  std::map<uint16_t, PackManifest::Key> keys;
  const auto found = document.find("keyTakes");
  if (found == document.end() || found->is_null()) return keys;
  for (const auto& [name, value] : objectValue(*found, "keyTakes").items()) {
    const std::string path = "keyTakes." + name;
    uint16_t code = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), code);
    if (error != std::errc() || end != name.data() + name.size())
      fail("\"" + path + "\" is not named by a key code");
    const Json& object = objectValue(value, path);
    keys[code] = {variantList(object, "down", path), variantList(object, "up", path)};
  }
  return keys;
}

Json keyJson(const PackManifest::Key& key) {
  Json object = Json::object();
  if (key.down) object["down"] = *key.down;
  if (key.up) object["up"] = *key.up;
  return object;
}

Json groupJson(const PackManifest::Group& group) {
  Json object = {{"down", group.down}};
  if (group.up) object["up"] = *group.up;
  return object;
}

}  // namespace

PackManifest PackManifest::fromJson(std::string_view text) {
  const Json document = readJson(text, ParseGuard());
  if (!document.is_object()) fail("not a JSON object");
  PackManifest manifest;
  manifest.formatVersion = integerValue(required(document, "", "formatVersion"), "formatVersion");
  manifest.id = stringValue(required(document, "", "id"), "id");
  manifest.name = stringValue(required(document, "", "name"), "name");
  manifest.kind = stringValue(required(document, "", "kind"), "kind");
  manifest.summary = optionalString(document, "summary");
  manifest.author = optionalString(document, "author");
  manifest.license = optionalString(document, "license");
  for (const auto& [groupName, value] :
       objectValue(required(document, "", "groups"), "groups").items())
    manifest.groups[groupName] = groupValue(value, "groups." + groupName);
  manifest.keyTakes = tobrin::keyTakes(document);
  return manifest;
}

std::string PackManifest::toJson() const {
  Json document = {{"formatVersion", formatVersion},
                   {"id", id},
                   {"name", name},
                   {"kind", kind},
                   {"groups", Json::object()}};
  if (summary) document["summary"] = *summary;
  if (author) document["author"] = *author;
  if (license) document["license"] = *license;
  for (const auto& [groupName, group] : groups)
    document["groups"][groupName] = groupJson(group);
  for (const auto& [code, key] : keyTakes)
    document["keyTakes"][std::to_string(code)] = keyJson(key);
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

PackManifest PackManifest::read(const std::filesystem::path& directory) {
  std::string text;
  try {
    text = RegularFile(directory / PackManifest::fileName).readText(maxManifestBytes);
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::file_too_large) fail("the file is too large");
    throw PackError::missingManifest(directory);
  }
  return PackManifest::fromJson(text);
}

PackInfo PackInfo::read(const std::filesystem::path& directory, bool isBundled) {
  try {
    PackManifest manifest = PackManifest::read(directory);
    return {std::move(manifest.id),
            std::move(manifest.name),
            std::move(manifest.kind),
            std::move(manifest.summary),
            directory,
            isBundled};
  } catch (const PackError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw PackError::invalidManifest(directory / PackManifest::fileName, error.what());
  }
}

}  // namespace tobrin
