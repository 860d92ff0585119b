/// Decodes the files of a source, one at a time: packs that are cut from one file ask for it again
/// and again. Thread: any, one at a time.
#pragma once

#include <filesystem>
#include <memory>

#include "Building/ProcessRunner.h"
#include "Importing/ImportNotes.h"
#include "Importing/SourceFiles.h"
#include "Importing/TemporaryFolder.h"
#include "Packs/AudioDecoder.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {

class SoundLoader final {
 public:
  static constexpr double rate = 48000;  ///< of everything decoded

  /// Both outlive the loader; `programs` runs the converter.
  SoundLoader(const ProcessRunner& programs, ImportNotes& notes);

  /// The decoded file, valid until the next one is asked for; null, with a note, where it cannot be
  /// read. Throws `ImportError` where it is longer than any pack.
  const SampleBuffer* load(const SourceFiles::File& file);

 private:
  std::unique_ptr<SampleBuffer> decode(const SourceFiles::File& file);
  std::unique_ptr<SampleBuffer> decodeFile(const std::filesystem::path& path);
  std::unique_ptr<SampleBuffer> convert(const SourceFiles::File& file);

  const ProcessRunner& programs_;
  ImportNotes& notes_;
  AudioDecoder decoder_{rate};
  TemporaryFolder folder_;  // for what the converter makes
  const SourceFiles::File* file_ = nullptr;
  std::unique_ptr<SampleBuffer> sound_;  // of `file_`
};

}  // namespace tobrin
