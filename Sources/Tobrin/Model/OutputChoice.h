/// Which device plays and how loud: the user's choice among the output devices, and for each device
/// the volume and boost that it was last given. Thread: main.
#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "Engine/SoundOutputs.h"
#include "Model/OutputMemory.h"

namespace tobrin {

class OutputChoice final : public QObject {
  Q_OBJECT

 public:
  struct Services {
    OutputMemory& memory;                             ///< outlives this object
    std::function<void()> saveMemory;                 ///< it has changed
    std::function<void(const std::string& id)> play;  ///< on this device; empty: the default one
    std::function<float()> volume;                    ///< the present one
    std::function<void(float volume)> setVolume;      ///< for the device that plays now
    std::function<void(float boost)> setBoost;        ///< likewise
  };
  struct Entry {
    std::string id{};
    std::string name{};  ///< no two have the same
    bool isPresent = true;
  };

  explicit OutputChoice(Services services);

  /// Plays on the device that was chosen in an earlier run.
  void start();
  /// The devices have changed, or another one plays.
  void outputsChanged(const SoundOutputs& outputs);
  /// The user has set another volume.
  void volumeChanged();
  /// How much louder than in their pack keys may be on the device that plays, 1 to 2.
  [[nodiscard]] float boost() const { return boost_; }
  void setBoost(float boost);
  /// Empty: the system's default.
  void choose(const std::string& id);

  /// Every device in the order of the names, and the chosen one even while it is away.
  [[nodiscard]] std::vector<Entry> entries() const;
  [[nodiscard]] const std::string& chosen() const { return services_.memory.chosen; }
  /// The device that plays or is about to; empty while it is not known.
  [[nodiscard]] Entry used() const;

 signals:
  void changed();

 private:
  void adoptLoudness();
  void keepLoudness();
  void noteName();

  const Services services_;
  SoundOutputs outputs_;
  std::string used_;  // id of the device that the present loudness belongs to
  float boost_ = 1;
  // By the user, before the first device was known: what is set is for that one.
  bool isVolumeSetBefore_ = false;
  bool isBoostSetBefore_ = false;
};

}  // namespace tobrin
