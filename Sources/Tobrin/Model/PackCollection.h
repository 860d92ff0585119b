/// All that is done with packs: finds and chooses them, plays the chosen one, adds what the user
/// brings, and removes packs until that is undone. Thread: main.
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>

#include "Base/SerialQueue.h"
#include "Engine/Conductor.h"
#include "Model/PackSelection.h"
#include "Model/PackShelf.h"
#include "Model/PlayedPack.h"
#include "Packs/LoadedPack.h"
#include "Packs/PackLibrary.h"

namespace tobrin {

class PackCollection final : public QObject {
  Q_OBJECT

 public:
  /// What it works with; queues and conductor outlive this object.
  struct Services {
    SerialQueue& main;
    SerialQueue& loader;  ///< where packs are decoded
    SerialQueue& adding;  ///< where packs are read that the user adds
    Conductor& conductor;
    std::function<FoundPacks()> findPacks;
    std::function<std::shared_ptr<const LoadedPack>(const PackInfo&)> loadPack;  ///< throws
    PackShelf::Add addPack;
    PackShelf::Discard discardPack;
    /// Keeps the choice for the next start.
    std::function<void(const std::string& id)> keepChoice;
    bool auditions = true;  ///< a pack that is chosen is heard at once
  };

  PackCollection(const Services& services, const std::string& selectedID);

  [[nodiscard]] PackSelection& selection() { return selection_; }
  [[nodiscard]] const PackSelection& selection() const { return selection_; }
  /// The packs that the user adds and removes.
  [[nodiscard]] PackShelf& shelf() { return shelf_; }
  [[nodiscard]] PlayedPack& played() { return played_; }
  [[nodiscard]] const PlayedPack& played() const { return played_; }

  /// Finds the packs again, and loads the chosen one if it has changed.
  void look();
  /// Moves one of the user's own packs to the trash; the one after it takes its place.
  void remove(const std::string& id);
  /// Brings the pack back that was removed last, and the choice of before.
  void undoRemoval();

 signals:
  void selectedChanged();  ///< another is chosen, or the chosen one is loaded
  void added();            ///< all that the user brought are there, and the last of them is chosen

 private:
  void choose(const std::string& addedID);

  PlayedPack played_;
  PackSelection selection_;
  PackShelf shelf_;
  std::string selectedBeforeRemoval_;
};

}  // namespace tobrin
