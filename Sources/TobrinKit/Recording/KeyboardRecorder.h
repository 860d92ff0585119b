/// Records the user's own keyboard: a microphone, and the keys that are typed meanwhile, each key
/// as a number and never by its code. Thread: one at a time, but for `addKey` and `addForce`.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/KeyEvent.h"
#include "Base/Mutex.h"
#include "Recording/ChannelChoice.h"
#include "Recording/GapFiller.h"
#include "Recording/KeyNumbers.h"
#include "Recording/LiveTakes.h"
#include "Recording/SoundCapture.h"

namespace tobrin {

class KeyboardRecorder final {
 public:
  explicit KeyboardRecorder(std::unique_ptr<SoundCapture> capture);
  ~KeyboardRecorder();
  KeyboardRecorder(const KeyboardRecorder&) = delete;
  KeyboardRecorder& operator=(const KeyboardRecorder&) = delete;

  [[nodiscard]] std::vector<SoundCapture::Input> inputs() { return capture_->inputs(); }

  /// Starts to record from that input, or goes on after a `stop`: what sounded and was typed in
  /// between is left out. An empty name means the default one. False leaves why in `problem`, and
  /// nothing running.
  bool start(const std::string& input);
  void stop();

  /// A key was pressed or let go; forgotten while nothing is recorded. Thread: any.
  void addKey(const KeyEvent& event);
  /// How hard the last press of that key was, as a tier position from 0 to 3. Counts where it comes
  /// within a tenth of a second. Thread: any.
  void addForce(uint16_t code, float position);

  /// Takes in what has arrived. To be called several times a second while it runs.
  void collect();

  /// What there is so far. Starts with the left channel; once some keys were heard, all of it may
  /// change to the right one.
  [[nodiscard]] const LiveTakes& takes() const { return takes_; }
  [[nodiscard]] std::size_t keyCount() const { return keyCount_; }

  /// Why nothing is recorded now, in words; empty while all is well.
  [[nodiscard]] std::string problem() const { return capture_->problem(); }
  [[nodiscard]] std::string description() const { return capture_->description(); }

 private:
  struct Waiting {
    KeyEvent event;
    std::optional<float> force;
  };

  void addBlock(const SoundCapture::Block& block);
  void addWaitingKeys(int64_t until);
  void collectKeys();
  void addSound(std::span<const float> interleaved);
  void chooseChannel();
  void addChannel(std::span<const float> interleaved);

  const std::unique_ptr<SoundCapture> capture_;  // fixed after construction
  LiveTakes takes_;
  GapFiller gaps_;
  ChannelChoice choice_;
  bool isChosen_ = false;
  std::size_t channel_ = 0;
  std::vector<float> undecided_;  // stereo, until the channel is chosen
  std::optional<KeyNumbers> numbers_;
  std::size_t keyCount_ = 0;
  bool isResuming_ = false;  // no sound has come since the last start
  int64_t leftOut_ = 0;      // ns of pauses, by which later times are earlier

  Mutex lock_;
  bool isRecording_ TOBRIN_GUARDED_BY(lock_) = false;
  std::vector<Waiting> waiting_ TOBRIN_GUARDED_BY(lock_);
};

}  // namespace tobrin
