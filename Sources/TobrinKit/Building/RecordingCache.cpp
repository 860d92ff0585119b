#include <fstream>
#include <string>

#include "Building/Download.h"
#include "Building/RecordedPackBuilder.h"
#include "Packs/PackError.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr int programNotFound = 127;  // of env

/// Exists while a conversion runs: a file beside it that was left by an interrupted one is partial.
class ConversionMark {
 public:
  explicit ConversionMark(fs::path file) : file_(std::move(file)) {
    std::ofstream(file_).put('\n');
  }
  ~ConversionMark() {
    std::error_code ignored;
    fs::remove(file_, ignored);
  }
  ConversionMark(const ConversionMark&) = delete;
  ConversionMark& operator=(const ConversionMark&) = delete;

 private:
  fs::path file_;
};

void convert(const fs::path& preview, const fs::path& wav, const fs::path& markFile,
             const ProcessRunner& programs) {
  const ConversionMark mark(markFile);
  const int status = programs.run(
      "/usr/bin/env", {"ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-i", preview.string(),
                       "-ar", "48000", "-c:a", "pcm_f32le", wav.string()});
  if (status == 0) return;
  std::error_code ignored;
  fs::remove(wav, ignored);
  // Fetched again next time, unless it is the converter that is missing.
  if (status != programNotFound) fs::remove(preview, ignored);
  throw PackError::decode(preview, "ffmpeg failed (is ffmpeg installed?)");
}

}  // namespace

fs::path RecordedPackBuilder::fetch(const PackRecipe::Source& source, const fs::path& cache,
                                    const ProcessRunner& programs) {
  const std::string number = std::to_string(source.freesoundID);
  fs::path wav = cache / (number + ".wav");
  const fs::path mark = cache / (number + ".converting");
  if (fs::exists(wav) && !fs::exists(mark)) return wav;
  fs::create_directories(cache);
  const fs::path preview = cache / (number + ".ogg");
  if (!fs::exists(preview)) Download::fetch(source.previewURL, preview);
  convert(preview, wav, mark, programs);
  return wav;
}

std::unique_ptr<SampleBuffer> RecordedPackBuilder::load(const PackRecipe::Source& source,
                                                        const fs::path& cache,
                                                        const ProcessRunner& programs) {
  return SampleBuffer::load(fetch(source, cache, programs), rate);
}

}  // namespace tobrin
