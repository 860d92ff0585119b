/// The pack that the engine plays: the selected one, or for a time one that is tried out.
/// Thread: main.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

#include "Base/SerialQueue.h"
#include "Engine/Conductor.h"
#include "Packs/LoadedPack.h"
#include "Packs/PackManifest.h"

namespace tobrin {

class PlayedPack final {
 public:
  /// What it needs; all of it outlives this object.
  struct Services {
    SerialQueue& main;
    SerialQueue& loader;  ///< where packs are decoded
    std::function<std::shared_ptr<const LoadedPack>(const PackInfo&)> loadPack;  ///< throws
    Conductor& conductor;
  };

  explicit PlayedPack(Services services) : services_(std::move(services)) {}

  /// The user's choice; null: none. Ends a trial.
  void select(std::shared_ptr<const LoadedPack> pack, bool audition);
  /// Plays from the pack in that folder once it is loaded, and auditions it.
  void tryOut(const std::filesystem::path& folder);
  /// Plays from the user's choice again.
  void endTrial();
  [[nodiscard]] bool isTrying() const { return isTrying_; }

 private:
  void playTrial(uint64_t trial, std::shared_ptr<const LoadedPack> pack);

  const Services services_;
  std::shared_ptr<const LoadedPack> selected_;
  bool isTrying_ = false;
  uint64_t trials_ = 0;  // a pack that loads after its trial is dropped
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // posted tasks watch it
};

}  // namespace tobrin
