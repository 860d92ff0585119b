/// Records through a PipeWire server. An input or a server that goes away is waited for, and
/// recorded again once it is back. Thread: one at a time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "PipeWire/BlockRing.h"
#include "Recording/SoundCapture.h"

struct pw_buffer;
struct pw_core;
struct pw_stream;

namespace tobrin {

class PipeWireConnection;
class PipeWireGraphWatch;
class PipeWireLoop;
class PipeWireStream;

class PipeWireCapture final : public SoundCapture {
 public:
  /// Does not connect yet. The loop may be shared with other users of the server.
  explicit PipeWireCapture(std::shared_ptr<PipeWireLoop> loop);
  ~PipeWireCapture() override;
  PipeWireCapture(const PipeWireCapture&) = delete;
  PipeWireCapture& operator=(const PipeWireCapture&) = delete;

  [[nodiscard]] std::vector<Input> inputs() override;
  bool start(const std::string& input) override;
  void stop() override;
  void take(const std::function<void(const Block&)>& receive) override;
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override;

 private:
  bool connectAndSettle();
  void connected(pw_core* core);
  void lost();
  void followInput();
  void streamChanged();
  [[nodiscard]] const Input* find(const std::string& name) const;
  static void process(void* self, pw_stream* stream, pw_buffer& block);

  const std::shared_ptr<PipeWireLoop> loop_;        // fixed after construction
  std::unique_ptr<PipeWireConnection> connection_;  // fixed after construction
  BlockRing ring_;                                  // pushed to by the data thread

  // Guarded by the loop's lock.
  std::unique_ptr<PipeWireGraphWatch> watch_;
  std::unique_ptr<PipeWireStream> stream_;
  std::vector<Input> inputs_;
  bool isStarted_ = false;
  std::string input_;  // name of the one to record from
  std::string description_;
  std::string problem_;
};

}  // namespace tobrin
