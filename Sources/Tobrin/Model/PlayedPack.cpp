#include "Model/PlayedPack.h"

#include <exception>
#include <string>
#include <utility>

#include "Base/Log.h"

namespace tobrin {

void PlayedPack::select(std::shared_ptr<const LoadedPack> pack, bool audition) {
  selected_ = std::move(pack);
  isTrying_ = false;
  services_.conductor.setPack(selected_);
  if (audition) services_.conductor.audition();
}

void PlayedPack::tryOut(const std::filesystem::path& folder) {
  isTrying_ = true;
  services_.loader.async([this, folder, trial = ++trials_, load = services_.loadPack,
                          &main = services_.main, alive = std::weak_ptr(alive_)] {
    try {
      main.async([this, trial, pack = load(PackInfo::read(folder, false)), alive] {
        if (!alive.expired()) playTrial(trial, pack);
      });
    } catch (const std::exception& error) {
      logLine(std::string("the pack to try can't be loaded: ") + error.what());
    }
  });
}

void PlayedPack::endTrial() {
  if (std::exchange(isTrying_, false)) services_.conductor.setPack(selected_);
}

void PlayedPack::playTrial(uint64_t trial, std::shared_ptr<const LoadedPack> pack) {
  if (!isTrying_ || trial != trials_) return;
  services_.conductor.setPack(std::move(pack));
  services_.conductor.audition();
}

}  // namespace tobrin
