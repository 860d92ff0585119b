#include "Model/PackSelection.h"

#include <algorithm>
#include <utility>

#include "Base/Log.h"

namespace tobrin {
namespace {

/// When the pack's description was written, which is whenever its content changes. The earliest
/// time where that cannot be read.
std::filesystem::file_time_type stampOf(const PackInfo& pack) {
  std::error_code ignored;
  return std::filesystem::last_write_time(pack.directory / PackManifest::fileName, ignored);
}

}  // namespace

PackSelection::PackSelection(Services services, std::string selectedID)
    : services_(std::move(services)), selectedID_(std::move(selectedID)) {}

void PackSelection::start() {
  refresh();
  if (!packOfLoad_) load(false);  // else another was chosen, which is played
}

const PackInfo* PackSelection::withID(const std::string& id) const {
  const auto found = std::find_if(found_.packs.begin(), found_.packs.end(),
                                  [&](const PackInfo& pack) { return pack.id == id; });
  return found == found_.packs.end() ? nullptr : &*found;
}

void PackSelection::select(const std::string& id) {
  if (id == selectedID_) return loadWhereMissing(true);
  selectedID_ = id;
  services_.keepChoice(id);
  emit selectedChanged();
  load(true);
}

void PackSelection::refresh(std::size_t instead) {
  FoundPacks found = services_.findPacks();
  if (found != found_) {
    found_ = std::move(found);
    emit packsChanged();
  }
  if (selected() == nullptr && !found_.packs.empty())
    select(found_.packs[std::min(instead, found_.packs.size() - 1)].id);
}

void PackSelection::loadWhereMissing(bool audition) {
  const PackInfo* const pack = selected();
  if (pack == nullptr) return;
  if (packOfLoad_ != *pack || stampOfLoad_ != stampOf(*pack)) load(audition);
}

void PackSelection::load(bool audition) {
  const uint64_t number = ++loadNumber_;
  const PackInfo* const pack = selected();
  packOfLoad_ = pack != nullptr ? std::optional(*pack) : std::nullopt;
  if (pack == nullptr) {
    take(nullptr, false);
    setError(packs().empty() ? std::optional<std::string>("No sound packs found.") : std::nullopt);
    return;
  }
  stampOfLoad_ = stampOf(*pack);
  services_.loader.async([this, alive = std::weak_ptr(alive_), info = *pack, number, audition,
                          loadPack = services_.loadPack, &main = services_.main] {
    std::shared_ptr<const LoadedPack> loadedPack;
    std::string problem;
    try {
      loadedPack = loadPack(info);
    } catch (const std::exception& error) {
      problem = info.name + " couldn't load: " + error.what();
    }
    main.async([this, alive, number, audition, loadedPack, problem] {
      if (alive.expired() || number != loadNumber_) return;
      if (loadedPack == nullptr) packOfLoad_.reset();
      take(loadedPack, audition && loadedPack != nullptr);
      setError(loadedPack != nullptr ? std::nullopt : std::optional(problem));
    });
  });
}

void PackSelection::take(std::shared_ptr<const LoadedPack> pack, bool audition) {
  manifest_ = pack != nullptr ? std::optional(pack->manifest()) : std::nullopt;
  services_.play(std::move(pack), audition);
  emit loaded();
}

void PackSelection::setError(std::optional<std::string> text) {
  if (text == error_) return;
  error_ = std::move(text);
  if (error_) logLine(*error_);
  emit errorChanged();
}

}  // namespace tobrin
