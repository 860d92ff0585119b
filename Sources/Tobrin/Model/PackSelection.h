/// The packs that there are, and the one of them that plays: finds them, keeps the choice, and
/// loads it on a queue made for that. Thread: main.
#pragma once

#include <QObject>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/SerialQueue.h"
#include "Packs/LoadedPack.h"
#include "Packs/PackLibrary.h"

namespace tobrin {

class PackSelection final : public QObject {
  Q_OBJECT

 public:
  /// What the selection needs; the queues outlive it.
  struct Services {
    SerialQueue& main;
    SerialQueue& loader;  ///< where packs are decoded
    std::function<FoundPacks()> findPacks;
    std::function<std::shared_ptr<const LoadedPack>(const PackInfo&)> loadPack;  ///< throws
    /// Keeps the choice for the next start.
    std::function<void(const std::string& id)> keepChoice;
    /// Plays from `pack` from now on; null: from none, so that no other pack sounds under its name.
    std::function<void(std::shared_ptr<const LoadedPack> pack, bool audition)> play;
  };

  PackSelection(Services services, std::string selectedID);

  [[nodiscard]] const std::vector<PackInfo>& packs() const { return found_.packs; }
  /// Folders among the user's packs that hold none, for the user to see why.
  [[nodiscard]] const std::vector<UnusableFolder>& unusable() const { return found_.unusable; }
  [[nodiscard]] const std::string& selectedID() const { return selectedID_; }
  /// Null where there is no pack of that id.
  [[nodiscard]] const PackInfo* selected() const { return withID(selectedID_); }
  [[nodiscard]] const PackInfo* withID(const std::string& id) const;
  /// The decoded pack's own description; absent while none is loaded.
  [[nodiscard]] const std::optional<PackManifest>& manifest() const { return manifest_; }
  /// Why the selected pack does not play; absent while it does.
  [[nodiscard]] const std::optional<std::string>& error() const { return error_; }

  /// Finds and loads the packs for the first time.
  void start();
  /// Chooses a pack, loads and auditions it. The pack that is chosen already is loaded again only
  /// where that has failed or it has changed.
  void select(const std::string& id);
  /// Finds the packs again. Where the chosen one is gone, the one at the place `instead` is chosen,
  /// or the last one where there are fewer.
  void refresh(std::size_t instead = 0);
  /// Loads the selected pack, unless what was found last is loaded already or on its way: for a
  /// pack that appeared late, was mended or was replaced by another of its id.
  void loadWhereMissing(bool audition);

 signals:
  void packsChanged();
  void selectedChanged();
  void loaded();  ///< `manifest` may be another
  void errorChanged();

 private:
  void load(bool audition);
  void take(std::shared_ptr<const LoadedPack> pack, bool audition);
  void setError(std::optional<std::string> text);

  const Services services_;
  FoundPacks found_;
  std::string selectedID_;
  std::optional<PackManifest> manifest_;
  std::optional<std::string> error_;

  std::optional<PackInfo> packOfLoad_;  // what is loaded or on its way; none where that failed
  std::filesystem::file_time_type stampOfLoad_{};  // of its description
  uint64_t loadNumber_ = 0;  // the newest pack load; older ones are dropped when they end
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // posted tasks watch it
};

}  // namespace tobrin
