#include "Building/RecordingConversion.h"

namespace tobrin {

Conversion convertRecording(const std::filesystem::path& recording,
                            const std::filesystem::path& wav, const ProcessRunner& programs,
                            std::optional<int> mostSeconds) {
  constexpr int programNotFound = 127;  // of env
  std::vector<std::string> arguments = {"ffmpeg", "-nostdin", "-loglevel",       "error",
                                        "-y",     "-i",       recording.string()};
  if (mostSeconds) arguments.insert(arguments.end(), {"-t", std::to_string(*mostSeconds)});
  arguments.insert(arguments.end(), {"-ar", "48000", "-c:a", "pcm_f32le", wav.string()});
  const int status = programs.run("/usr/bin/env", arguments);
  if (status == 0) return Conversion::done;
  return status == programNotFound ? Conversion::noConverter : Conversion::failed;
}

}  // namespace tobrin
