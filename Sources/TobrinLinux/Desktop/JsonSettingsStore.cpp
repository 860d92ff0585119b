#include "Desktop/JsonSettingsStore.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "Building/AtomicFile.h"
#include "Engine/Log.h"
#include "Files/FlushToDisk.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;

constexpr std::uintmax_t largestFile = 1 << 20;  // far beyond any choices a user can make

std::optional<std::string> contents(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
  if (std::filesystem::file_size(file, error) > largestFile) return std::string();
  std::ifstream stream(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::filesystem::path asideOf(std::filesystem::path file) {
  return file += ".broken";
}

}  // namespace

JsonSettingsStore::JsonSettingsStore(std::filesystem::path file) : file_(std::move(file)) {
  const auto text = contents(file_);
  if (!text) return;
  const Json document = Json::parse(*text, nullptr, /*allow_exceptions=*/false);
  if (!document.is_object()) {
    copyAside();
    Log::line("settings file " + file_.string() + " is broken; kept as " + asideOf(file_).string());
    return;
  }
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
    Log::line("settings can't be saved: " + std::string(error.what()));
    return false;
  }
}

void JsonSettingsStore::keepAside(std::string_view key) {
  if (values_.contains(key)) copyAside();
}

void JsonSettingsStore::copyAside() const {
  std::error_code error;
  std::filesystem::copy_file(file_, asideOf(file_),
                             std::filesystem::copy_options::overwrite_existing, error);
  if (error) Log::line("can't keep " + asideOf(file_).string() + ": " + error.message());
}

void JsonSettingsStore::save() const {
  Json document = Json::object();
  for (const auto& [key, json] : values_)
    document[key] = Json::parse(json);
  std::filesystem::create_directories(file_.parent_path());
  writeFileAtomically(file_, document.dump(2) + "\n", flushToDisk);
}

}  // namespace tobrin
