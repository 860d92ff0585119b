#include "Importing/TakeSet.h"

#include <algorithm>
#include <set>

#include "Importing/ImportError.h"
#include "Importing/SoundCutting.h"
#include "Input/KeyLayout.h"
#include "Packs/FrameAllowance.h"
#include "Packs/LoadedPack.h"

namespace tobrin {
namespace {

using Take = RecordedTake;

constexpr uint16_t endOfCodes = 128;  // beyond, no key has a place on the keyboard

/// Takes releases that only go on with their press into it: the press keeps its sound whole, and
/// the release would be heard twice.
void joinReleases(ForeignPack& pack, SoundLoader& loader, ImportNotes& notes) {
  std::size_t joined = 0;
  for (auto& [code, key] : pack.keys) {
    if (key.down.size() != 1 || key.up.size() != 1) continue;
    auto& [file, part] = key.down[0];
    const SoundRef& up = key.up[0];
    if (up.file != file || !part || !up.part) continue;
    const SampleBuffer* const sound = loader.load(*file);
    if (sound == nullptr || !belongsToPress(*sound, *part, *up.part)) continue;
    part->lengthMs = std::max(part->endMs(), up.part->endMs()) - part->startMs;
    key.up.clear();
    ++joined;
  }
  if (joined > 0)
    notes.guessed(std::to_string(joined) + " release sounds are the end of their press sound");
}

/// Takes of one kind, each once, by the parts that they were cut from.
class TakePool final {
 public:
  /// Cuts all parts, file after file.
  TakePool(const std::set<SoundRef>& parts, SoundLoader& loader, ImportNotes& notes,
           const std::function<void()>& step) {
    for (const SoundRef& part : parts) {
      if (const SampleBuffer* const sound = loader.load(*part.file))
        if (auto take = cutSound(*sound, part, notes)) add(part, std::move(*take));
      step();
    }
  }

  /// Entries of `takes` for parts, without those that could not be cut.
  [[nodiscard]] TakeSet::List entries(const std::vector<SoundRef>& parts) const {
    TakeSet::List list;
    for (const SoundRef& part : parts)
      if (const auto found = entryOf_.find(part); found != entryOf_.end())
        list.push_back(found->second);
    return list;
  }

  std::vector<Take> takes;

 private:
  void add(const SoundRef& part, Take take) {
    const auto same = std::ranges::find_if(takes, [&](const Take& other) {
      return other.level == take.level && other.left == take.left && other.right == take.right;
    });
    entryOf_[part] = static_cast<std::size_t>(same - takes.begin());
    if (same != takes.end()) return;
    frames_ += take.left.size();
    if (frames_ * bytesPerFrame > LoadedPack::memoryBudget)
      throw ImportError(ImportError::Kind::tooLarge, "the sounds are longer than a pack may hold");
    takes.push_back(std::move(take));
  }

  std::map<SoundRef, std::size_t> entryOf_;
  uint64_t frames_ = 0;
};

template <typename Visit>
void forEachKey(const ForeignPack& pack, Visit visit) {
  visit(pack.others);
  for (const auto& [code, key] : pack.keys)
    visit(key);
}

/// The place of each entry in a group's list, which grows by those that are new to it.
TakeSet::List placesIn(TakeSet::List& list, const TakeSet::List& entries) {
  TakeSet::List places;
  for (const std::size_t entry : entries) {
    const auto found = std::ranges::find(list, entry);
    places.push_back(static_cast<std::size_t>(found - list.begin()));
    if (found == list.end()) list.push_back(entry);
  }
  return places;
}

/// Gives keys their takes.
class Sorting final {
 public:
  Sorting(const ForeignPack& pack, const TakePool& presses, const TakePool& releases)
      : pack_(pack), presses_(presses), releases_(releases) {}

  void fill(TakeSet& set) const {
    for (const auto& [code, key] : pack_.keys)
      add(set, code, key);
    if (pack_.others.down.empty()) return;
    for (uint16_t code = 0; code < endOfCodes; ++code)
      if (keyColumn(code) && !pack_.keys.contains(code)) add(set, code, pack_.others);
  }

 private:
  void add(TakeSet& set, uint16_t code, const KeySounds& sounds) const {
    const auto down = presses_.entries(sounds.down);
    // A key whose sounds cannot be used plays as one that the pack does not know; one without any
    // is silent.
    if (down.empty() && !sounds.down.empty()) return;
    TakeSet::Key& key = set.keys[code];
    if (down.empty()) return;
    TakeSet::Group& group = set.groups[keyGroupOf(code)];
    key.down = placesIn(group.down, down);
    key.up = placesIn(group.up, releases_.entries(sounds.up));
  }

  const ForeignPack& pack_;
  const TakePool& presses_;
  const TakePool& releases_;
};

}  // namespace

TakeSet collectTakes(ForeignPack pack, SoundLoader& loader, ImportNotes& notes,
                     const std::function<void(double)>& progress) {
  joinReleases(pack, loader, notes);
  std::set<SoundRef> down;
  std::set<SoundRef> up;
  forEachKey(pack, [&](const KeySounds& key) {
    down.insert(key.down.begin(), key.down.end());
    up.insert(key.up.begin(), key.up.end());
  });
  std::size_t done = 0;
  const auto step = [&] {
    progress(static_cast<double>(++done) / static_cast<double>(down.size() + up.size()));
  };
  TakePool presses(down, loader, notes, step);
  TakePool releases(up, loader, notes, step);
  TakeSet set;
  Sorting(pack, presses, releases).fill(set);
  set.presses = std::move(presses.takes);
  set.releases = std::move(releases.takes);
  if (set.groups.empty())
    throw ImportError(ImportError::Kind::noSounds, "none of the pack's sounds can be used");
  return set;
}

}  // namespace tobrin
