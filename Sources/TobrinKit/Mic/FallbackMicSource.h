/// Two views of who records: the preferred one while it knows a microphone, else the other one too.
/// A sound server may run for something else, next to the one that has the microphones.
/// Thread: mic.
#pragma once

#include <functional>
#include <memory>

#include "Mic/MicSource.h"

namespace tobrin {

class FallbackMicSource final : public MicSource {
 public:
  FallbackMicSource(std::unique_ptr<MicSource> preferred, std::unique_ptr<MicSource> fallback);

  void start(std::function<void()> changed) override;
  void stop() override;
  [[nodiscard]] MicActivity read() override;

 private:
  void followFallback(bool follow);

  const std::unique_ptr<MicSource> preferred_;
  const std::unique_ptr<MicSource> fallback_;
  std::function<void()> changed_;  // null while stopped
  bool followsFallback_ = false;
};

}  // namespace tobrin
