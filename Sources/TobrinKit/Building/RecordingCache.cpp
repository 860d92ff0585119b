#include "Building/RecordingCache.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <system_error>

#include "Base/AtomicFile.h"
#include "Base/PackError.h"
#include "Base/RecipeError.h"
#include "Base/RegularFile.h"
#include "Building/Download.h"
#include "Building/RecordedPackBuilder.h"
#include "Building/RecordingConversion.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Source = PackRecipe::Source;

constexpr uint64_t longestNote = 64u << 10;

/// What tells a recording from every other, in two lines: its address, and for a file of this
/// machine the state that it is in, since its author may record again.
struct Identity {
  std::string address;
  std::string state;  // empty where there is none to see

  explicit Identity(const Source& source) : address(source.previewURL + "\n") {
    const auto file = source.file();
    if (!file) return;
    address = fs::absolute(*file).lexically_normal().string() + "\n";
    std::error_code missing;
    const auto size = fs::file_size(*file, missing);
    const auto changed = fs::last_write_time(*file, missing).time_since_epoch().count();
    if (!missing) state = std::to_string(size) + " " + std::to_string(changed);
  }
};

/// The files that the cache has of one number.
class CacheEntry {
 public:
  CacheEntry(const fs::path& cache, const Source& source)
      : wav(named(cache, source, ".wav")),
        preview(named(cache, source, ".ogg")),
        note(named(cache, source, ".source")),
        mark(named(cache, source, ".converting")) {}

  /// Whether the files are those of that recording: recipes are free to give one number to
  /// different recordings. Files without a note were put there by hand, or are older than notes:
  /// they count as the published recording, or as a local file that is gone.
  [[nodiscard]] bool holds(const Identity& recording) const {
    if (fs::exists(mark)) return false;
    if (!fs::exists(note)) return recording.state.empty();
    try {
      const std::string noted = RegularFile(note).readText(longestNote);
      return noted.starts_with(recording.address) &&
             (recording.state.empty() || noted == recording.address + recording.state);
    } catch (const std::system_error&) {
      return false;
    }
  }

  void remove() const {
    std::error_code ignored;
    for (const fs::path* file : {&wav, &preview, &note})
      fs::remove(*file, ignored);
  }

  const fs::path wav;      // converted
  const fs::path preview;  // as fetched
  const fs::path note;     // of which recording they are
  const fs::path mark;     // exists while they change, and where that was interrupted

 private:
  static fs::path named(const fs::path& cache, const Source& source, const char* extension) {
    return cache / (std::to_string(source.freesoundID) + extension);
  }
};

/// Exists while files of the cache change: those left by an interrupted change are not whole.
class ChangeMark {
 public:
  explicit ChangeMark(fs::path file) : file_(std::move(file)) { std::ofstream(file_).put('\n'); }
  ~ChangeMark() {
    std::error_code ignored;
    fs::remove(file_, ignored);
  }
  ChangeMark(const ChangeMark&) = delete;
  ChangeMark& operator=(const ChangeMark&) = delete;

 private:
  fs::path file_;
};

void obtain(const Source& source, const fs::path& preview) {
  const auto file = source.file();
  if (!file) return download(source.previewURL, preview);
  const auto fail = [&](const std::string& why) {
    throw DownloadError("Can't read " + source.previewURL + ": " + why);
  };
  std::string content;
  try {
    content = RegularFile(*file).readText(largestDownload);
  } catch (const std::system_error& error) {
    fail(error.code().message());
  }
  if (content.empty()) fail("it is empty");
  writeFileAtomically(preview, content);
}

void convert(const Source& source, const CacheEntry& entry, const ProcessRunner& programs) {
  const Conversion outcome = convertRecording(entry.preview, entry.wav, programs);
  if (outcome == Conversion::done) return;
  std::error_code ignored;
  fs::remove(entry.wav, ignored);
  // Fetched again next time, unless it is the converter that is missing.
  if (outcome != Conversion::noConverter) entry.remove();
  throw PackError::decode(source.file().value_or(entry.preview), conversionFailed);
}

}  // namespace

fs::path fetchRecording(const Source& source, const fs::path& cache,
                        const ProcessRunner& programs) {
  const CacheEntry entry(cache, source);
  const Identity recording(source);
  const bool isKnown = entry.holds(recording);
  if (isKnown && fs::exists(entry.wav)) return entry.wav;
  fs::create_directories(cache);
  const ChangeMark mark(entry.mark);
  if (!isKnown || !fs::exists(entry.preview)) {
    obtain(source, entry.preview);
    writeFileAtomically(entry.note, recording.address + recording.state);
  }
  convert(source, entry, programs);
  return entry.wav;
}

std::unique_ptr<SampleBuffer> loadRecording(const Source& source, const fs::path& cache,
                                            const ProcessRunner& programs) {
  return SampleBuffer::load(fetchRecording(source, cache, programs), recordedPackRate);
}

RecordingPart partOf(const SampleBuffer& recording, const PackRecipe::Source& source) {
  const std::size_t frames = recording.frames();
  const auto place = [&](double seconds) {
    return std::min(static_cast<std::size_t>(seconds * recordedPackRate), frames);
  };
  const std::size_t begin = place(source.start.value_or(0));
  if (source.start && begin == frames) {
    char text[96];
    (void)std::snprintf(text, sizeof text, ": \"start\" is %.6g s, but it lasts %.6g s",
                        *source.start, recording.duration());
    throw RecipeError(source.title + text);
  }
  const std::size_t end = source.end ? std::max(place(*source.end), begin) : frames;
  return {{recording.left() + begin, end - begin}, {recording.right() + begin, end - begin}};
}

}  // namespace tobrin
