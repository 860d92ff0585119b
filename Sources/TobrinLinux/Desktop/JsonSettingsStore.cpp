#include "Desktop/JsonSettingsStore.h"

#include <system_error>

#include "Base/AtomicFile.h"
#include "Base/FlushToDisk.h"
#include "Base/Log.h"
#include "Base/ReadJson.h"
#include "Base/RegularFile.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr uint64_t largestFile = 1 << 20;  // bytes, far beyond any choices a user can make

}  // namespace

JsonSettingsStore::JsonSettingsStore(fs::path file) : file_(std::move(file)) {
  try {
    load();
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::no_such_file_or_directory) moveAside(error.what());
  } catch (const JsonError& error) {
    moveAside(error.what());
  }
}

void JsonSettingsStore::load() {
  const Json document = readJson(RegularFile(file_).readText(largestFile));
  if (!document.is_object()) throw JsonError("not a JSON object");
  for (const auto& [key, value] : document.items())
    values_[key] = value.dump();
}

std::optional<std::string> JsonSettingsStore::read(std::string_view key) const {
  const auto found = values_.find(key);
  if (found == values_.end()) return std::nullopt;
  return found->second;
}

bool JsonSettingsStore::write(std::string_view key, std::string_view json) {
  values_.insert_or_assign(std::string(key), std::string(json));
  try {
    save();
    return true;
  } catch (const std::exception& error) {
    logLine("settings can't be saved: " + std::string(error.what()));
    return false;
  }
}

void JsonSettingsStore::keepAside(std::string_view key) {
  const auto found = values_.find(key);
  if (found == values_.end()) return;
  const fs::path aside = nameAside();
  try {
    writeFileAtomically(aside, RegularFile(file_).readText(largestFile), flushToDisk);
    values_.erase(found);
    save();
    logLine("the settings as they were are kept as " + aside.string());
  } catch (const std::exception& error) {
    logLine("settings can't be kept aside: " + std::string(error.what()));
  }
}

void JsonSettingsStore::moveAside(const std::string& reason) const {
  const fs::path aside = nameAside();
  std::error_code error;
  fs::rename(file_, aside, error);
  logLine("settings file " + file_.string() + " can't be read: " + reason +
          (error ? "; nor renamed: " + error.message() : "; kept as " + aside.string()));
}

/// A name beside the file that nothing kept before has.
fs::path JsonSettingsStore::nameAside() const {
  const fs::path first = file_.string() + ".broken";
  fs::path aside = first;
  std::error_code none;
  for (int number = 2; fs::exists(fs::symlink_status(aside, none)); ++number)
    aside = (first.string() + ".").append(std::to_string(number));
  return aside;
}

void JsonSettingsStore::save() const {
  Json document = Json::object();
  for (const auto& [key, json] : values_)
    document[key] = readJson(json);
  fs::create_directories(file_.parent_path());
  writeFileAtomically(file_, document.dump(2) + "\n", flushToDisk);
}

}  // namespace tobrin
