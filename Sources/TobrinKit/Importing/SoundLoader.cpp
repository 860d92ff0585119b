#include "Importing/SoundLoader.h"

#include <fstream>

#include "Base/PackError.h"
#include "Building/RecordingConversion.h"
#include "Importing/ImportError.h"
#include "Packs/FrameAllowance.h"
#include "Packs/LoadedPack.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t mostFrames = LoadedPack::memoryBudget / bytesPerFrame;
constexpr auto mostSeconds =
    static_cast<int>(mostFrames / static_cast<uint64_t>(SoundLoader::rate));

/// MP4, WebM and bare AAC. The converter is asked for nothing else: some formats name further files
/// to be read.
bool needsConverter(const fs::path& path) {
  char start[8] = {};
  std::ifstream(path, std::ios::binary).read(start, sizeof start);
  const std::string_view bytes(start, sizeof start);
  return bytes.substr(4) == "ftyp" || bytes.starts_with("\x1A\x45\xDF\xA3") ||
         bytes.starts_with("\xFF\xF1") || bytes.starts_with("\xFF\xF9");
}

}  // namespace

SoundLoader::SoundLoader(const ProcessRunner& programs, ImportNotes& notes)
    : programs_(programs), notes_(notes) {}

const SampleBuffer* SoundLoader::load(const SourceFiles::File& file) {
  if (file_ == &file) return sound_.get();
  sound_.reset();  // two sprites at once would take twice the memory
  file_ = &file;
  sound_ = decode(file);
  return sound_.get();
}

std::unique_ptr<SampleBuffer> SoundLoader::decode(const SourceFiles::File& file) {
  try {
    return needsConverter(file.path) ? convert(file) : decodeFile(file.path);
  } catch (const AllowanceExceeded&) {
    throw ImportError(ImportError::Kind::tooLarge,
                      file.name + " is longer than " + std::to_string(mostSeconds) + " seconds");
  } catch (const PackError&) {
    notes_.leftOut("files that cannot be read as sound", file.name);
    return nullptr;
  }
}

std::unique_ptr<SampleBuffer> SoundLoader::decodeFile(const fs::path& path) {
  FrameAllowance allowance(mostFrames);
  return decoder_.decode(path, allowance);
}

std::unique_ptr<SampleBuffer> SoundLoader::convert(const SourceFiles::File& file) {
  const fs::path wav = folder_.path() / "converted.wav";
  // A second more than is taken, so that a file that is too long is noticed.
  switch (convertRecording(file.path, wav, programs_, mostSeconds + 1)) {
    case Conversion::done:
      return decodeFile(wav);
    case Conversion::noConverter:
      notes_.leftOut("MP4, WebM and AAC sounds, which need ffmpeg", file.name);
      return nullptr;
    case Conversion::failed:
      break;
  }
  throw PackError::decode(file.path, conversionFailed);
}

}  // namespace tobrin
