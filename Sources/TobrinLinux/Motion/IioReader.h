/// One way of taking samples out of an IIO device. Its destructor puts back what `start` changed.
/// Thread: sensor.
#pragma once

#include <string>

#include "Force/MotionSource.h"

namespace tobrin {

class DeviceWatch;
class WakeEvent;

class IioReader {
 public:
  enum class End {
    interrupted,
    gone,    ///< the device was removed
    silent,  ///< the device sends nothing
    taken,   ///< by another program
  };

  /// Why a device cannot be read.
  struct Refusal {
    std::string words;
    bool inUse = false;  ///< by another program, which must not be disturbed
  };

  virtual ~IioReader() = default;

  /// Switches the stream on, which may take some ten milliseconds; false leaves a refusal.
  [[nodiscard]] virtual bool start(Refusal& refusal) = 0;

  /// Hands samples on until something ends it. `watch` has the news of IIO devices.
  [[nodiscard]] virtual End stream(const MotionSource::Sink& sink, const WakeEvent& interrupt,
                                   DeviceWatch& watch) = 0;

  /// How samples arrive, for people.
  [[nodiscard]] virtual std::string description() const = 0;
};

}  // namespace tobrin
