#include "Building/RecordingConversion.h"

namespace tobrin {

Conversion convertRecording(const std::filesystem::path& recording,
                            const std::filesystem::path& wav, const ProcessRunner& programs) {
  constexpr int programNotFound = 127;  // of env
  const int status = programs.run(
      "/usr/bin/env", {"ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-i", recording.string(),
                       "-ar", "48000", "-c:a", "pcm_f32le", wav.string()});
  if (status == 0) return Conversion::done;
  return status == programNotFound ? Conversion::noConverter : Conversion::failed;
}

}  // namespace tobrin
