/// Chooses the motion source of this machine. Thread: any.
#pragma once

#include <filesystem>
#include <memory>

#include "Force/MotionSource.h"

namespace tobrin {

/// Names a recorded trace to play instead of a device.
inline constexpr const char* motionTraceVariable = "TOBRIN_MOTION_TRACE";

struct MotionPaths {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// The trace that the environment names, else a HID device that sends motion reports itself, else
/// an IIO accelerometer, else null. Opens no device: only `open` shows whether it can be read.
/// Looks into two folders.
[[nodiscard]] std::unique_ptr<MotionSource> findMotionSource(const MotionPaths& paths = {});

}  // namespace tobrin
