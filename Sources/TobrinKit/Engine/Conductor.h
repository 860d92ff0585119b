/// Turns key events into sounding voices: picks the take, measures the force, starts the voice and
/// refines its weights as the sensor shows more, plays releases, and suspends the engine when
/// nobody types. All its state belongs to the conductor's queue, which is also the one producer of
/// the mixer's ring. Its operations post to that queue, without waiting unless they say so.
/// Thread: any.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Base/KeyEvent.h"
#include "Base/SerialQueue.h"
#include "Engine/AudioOutput.h"
#include "Engine/EngineSettings.h"
#include "Engine/ForceStage.h"
#include "Force/ForceSensor.h"
#include "Packs/LoadedPack.h"

namespace tobrin {

class ConductorCore;

class Conductor final {
 public:
  static constexpr const char* queueName = "app.tobrin.conductor";
  /// Milliseconds after a key-down at which its voice gets new weights; the last ones are final.
  static constexpr std::array<double, 3> refineAtMs = {4, 10, 16};

  /// Called on the queue once per key-down.
  using ForceCallback = std::function<void(const ForceReading&)>;
  using SensorProblemCallback = std::function<void(const std::string& problem)>;

  /// The queue outlives the conductor. `sensor` may be null.
  Conductor(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
            std::unique_ptr<ForceSensor> sensor);
  /// Shuts down; when it returns, the last callback has ended. Not to be called on the queue.
  ~Conductor();
  Conductor(const Conductor&) = delete;
  Conductor& operator=(const Conductor&) = delete;

  /// For strokes handled from now on.
  void setOnForce(ForceCallback onForce);
  /// Called on the queue each time that it changes why force cannot be sensed although it is wanted
  /// and there is a sensor: a reason in words, empty while all is well. With a reason the fixed
  /// strength plays.
  void setOnSensorProblem(SensorProblemCallback onProblem);
  /// For tools that look at each stage of the measurement; for strokes handled from now on.
  void setOnForceStage(ForceStageCallback onStage);

  void handle(const KeyEvent& event);
  /// `wakeNow` starts what the settings allow at once, not only at the next key.
  void apply(const EngineSettings& settings, bool wakeNow);
  /// Whether each stroke gets the sound of another key of its group, so that a recording of the
  /// sounds does not tell which keys were pressed.
  void setMasked(bool masked);
  /// Makes strokes from now on louder than in the pack, by a factor of up to `boost`, 1 to 2: each
  /// only as far as it is not distorted.
  void setBoost(float boost);
  /// Plays on the device of this id; empty: on the default one.
  void chooseOutput(const std::string& id);
  /// Has the output report which devices there are, even if nothing was played yet.
  void findOutputs();
  /// Fades what sounds, then plays from `pack` (null: silence). The old pack is kept for at least 2
  /// s.
  void setPack(std::shared_ptr<const LoadedPack> pack);
  /// Plays a short demonstration phrase, until the next one or another pack.
  void audition();
  /// Plays one key at the usual strength; what is left of a phrase is not played.
  void demonstrateKey();
  void resetCalibration();
  /// Restarts sensor and output after the machine slept.
  void systemDidWake();
  /// Waits: stops the sensor, pauses the output, marks the engine suspended.
  void shutdown();

  [[nodiscard]] bool forceSensingAvailable() const;
  [[nodiscard]] const AudioOutput& audio() const;

 private:
  SerialQueue& queue_;
  const std::shared_ptr<ConductorCore> core_;  // shared with the tasks waiting on the queue
};

}  // namespace tobrin
