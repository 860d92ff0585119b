/// Leads through recording one's own keyboard: the choice of a microphone, what to type, listening
/// to the new pack, keeping it. Leaving at any time leaves nothing behind. Thread: main, but for
/// `addKey` and `addForce`.
#pragma once

#include <QObject>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/KeyEvent.h"
#include "Base/Mutex.h"
#include "Base/SerialQueue.h"
#include "Engine/EngineSettings.h"
#include "Recording/KeyboardRecorder.h"
#include "Recording/LiveTakes.h"
#include "Recording/SoundCapture.h"

namespace tobrin {

class TemporaryFolder;

class RecordingGuide final : public QObject {
  Q_OBJECT

 public:
  enum class Stage { away, microphone, typing, building, listening };

  /// What is typed in turn, and how many good sounds of it are enough.
  enum class Step { soft, usual, hard, space, enter, backspace, modifier };
  static constexpr std::array allSteps = {Step::soft,  Step::usual,     Step::hard,    Step::space,
                                          Step::enter, Step::backspace, Step::modifier};

  /// What the guide needs; the queues outlive it.
  struct Services {
    SerialQueue& main;
    SerialQueue& worker;                                         ///< where packs are made
    std::function<std::unique_ptr<SoundCapture>()> makeCapture;  ///< throws
    /// Whether the program's own sounds are to rest.
    std::function<void(bool)> setSilent;
    /// Lets a pack be heard in place of the selected one; an empty path brings that one back.
    std::function<void(const std::filesystem::path& packFolder)> play;
    /// Puts the pack among the user's; its folder stays until `leave`.
    std::function<void(const std::filesystem::path& packFolder)> keep;
  };

  explicit RecordingGuide(Services services);
  ~RecordingGuide() override;

  /// Lists the microphones and listens to the default one.
  void begin();
  void chooseInput(const std::string& name);
  void startTyping();
  void pause();
  void resume();
  /// Goes to the next step if the keyboard lacks keys for this one; after the last the pack is
  /// made.
  void skip();
  /// Makes the pack from what was recorded so far.
  void finish();
  /// Back from listening, to type more.
  void typeMore();
  void listen();
  void keep(const std::string& name);
  /// Packs were put among the user's: ends the guide where one of them is its own.
  void packsAdded();
  /// The pack could not be put among the user's, for that reason.
  void keepFailed(const std::string& reason);
  /// Ends the recording and forgets all of it.
  void leave();
  /// Leaves, unless the pack is being kept: that goes on without the panel.
  void panelClosed();

  /// Thread: any.
  void addKey(const KeyEvent& event);
  /// How hard a key was struck, where that is measured. Thread: any.
  void addForce(const ForceReading& reading);

  [[nodiscard]] Stage stage() const { return stage_; }
  [[nodiscard]] const std::vector<SoundCapture::Input>& inputs() const { return inputs_; }
  [[nodiscard]] const std::string& input() const { return input_; }
  [[nodiscard]] const LiveState& live() const { return live_; }
  [[nodiscard]] Step step() const { return allSteps[step_]; }
  [[nodiscard]] std::size_t have(Step step) const { return have_[static_cast<std::size_t>(step)]; }
  [[nodiscard]] static std::size_t wanted(Step step);
  [[nodiscard]] bool isPaused() const { return isPaused_; }
  /// What is in the way, in words; empty while nothing is.
  [[nodiscard]] const std::string& problem() const { return problem_; }
  /// Presses and releases of the pack's recording, and how many of them sound good.
  [[nodiscard]] std::size_t keyCount() const { return keyCount_; }
  [[nodiscard]] std::size_t goodCount() const { return goodCount_; }

 signals:
  void changed();
  void levelChanged();  ///< of `live` the level alone

 private:
  enum class Keeping { no, making, adding };

  struct Built {
    std::string problem;  // empty where the pack is there
    // Held by the task that writes there, then by the guide; the last one removes it.
    std::shared_ptr<const TemporaryFolder> folder;
    std::size_t keyCount = 0;
    std::size_t goodCount = 0;
  };

  void poll(uint64_t round);
  void takeState();
  void countTakes();
  [[nodiscard]] std::size_t goodTakesOfStep() const;
  void enterStep(std::size_t step);
  bool record();
  void stopRecording();
  void build(const std::string& name, std::function<void(const Built&)> done);
  void stopKeeping(const std::string& problem);
  void setStage(Stage stage);
  bool renewRecorder();
  void setRecorder(std::shared_ptr<KeyboardRecorder> recorder);

  const Services services_;
  Stage stage_ = Stage::away;
  std::vector<SoundCapture::Input> inputs_;
  std::string input_;
  LiveState live_;
  std::size_t step_ = 0;
  std::size_t atStepStart_ = 0;  // good takes of the step's group before it
  std::array<std::size_t, allSteps.size()> have_{};
  bool isPaused_ = false;
  Keeping keeping_ = Keeping::no;  // whether the pack is on its way to the user's
  std::string problem_;
  std::size_t keyCount_ = 0;
  std::size_t goodCount_ = 0;
  uint64_t round_ = 0;                             // tasks of an earlier one are dropped
  std::shared_ptr<const TemporaryFolder> folder_;  // has the pack that is heard or kept

  Mutex lock_;
  // Replaced under the lock, as keys come on another thread.
  std::shared_ptr<KeyboardRecorder> recorder_;
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // posted tasks watch it
};

}  // namespace tobrin
