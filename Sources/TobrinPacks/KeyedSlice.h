/// What `slice --keys` shows: the sounds of a recording by the keys that were typed. Thread: any.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "Building/RecordingCache.h"
#include "Recording/KeyedTakes.h"

namespace tobrin {

struct KeyedSlice {
  KeyedRecording recording;  ///< mono
  KeyedTakes takes;
};

/// Reads the keys from `keysFile` and finds their sounds in the recording. Throws `TraceError` that
/// names the file and the line at fault.
[[nodiscard]] KeyedSlice sliceByKeys(const RecordingPart& recording, double rate,
                                     const std::string& keysFile, const SlicerOptions& options);

/// The same as the slicer would have it: hits in order of time, without the keys that are not
/// heard.
[[nodiscard]] SlicedRecording asSliced(const KeyedSlice& slice);

/// The fit of clocks, and every key with what became of its sound.
[[nodiscard]] nlohmann::ordered_json fitAsJson(const ClockFit& fit);
[[nodiscard]] nlohmann::ordered_json keysAsJson(const KeyedSlice& slice);

}  // namespace tobrin
