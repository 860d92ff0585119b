/// The sounds of a foreign pack as our takes: sorted into groups, each once, and which of them each
/// key plays. Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "Base/KeyEvent.h"
#include "Building/RecordingSlicer.h"
#include "Importing/ForeignPack.h"
#include "Importing/ImportNotes.h"
#include "Importing/SoundLoader.h"

namespace tobrin {

struct TakeSet {
  /// Entries of `presses` or `releases`; their order is the order of a group's variants.
  using List = std::vector<std::size_t>;

  struct Group {
    List down;
    List up;
  };

  /// What one key plays, as variants of its group: places in the group's lists.
  struct Key {
    List down;
    List up;
  };

  std::vector<RecordedTake> presses;
  std::vector<RecordedTake> releases;
  std::map<KeyGroup, Group> groups;  ///< those that have a press
  std::map<uint16_t, Key> keys;      ///< by key code; those that the pack says something about
};

/// Decodes, cuts and sorts the sounds of a pack. `progress` is called with the part that is done, 0
/// to 1. Throws `ImportError` where no press is left, or the sounds take more memory than a pack
/// may.
TakeSet collectTakes(ForeignPack pack, SoundLoader& loader, ImportNotes& notes,
                     const std::function<void(double)>& progress);

}  // namespace tobrin
