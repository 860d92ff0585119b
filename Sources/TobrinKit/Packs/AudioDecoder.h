/// Decodes audio files (WAV, FLAC, Ogg, MP3 and what else libsndfile reads) to planar float at one
/// sample rate. Trusts nothing that a header says: memory follows what was really decoded. The
/// files of one decoder share what takes long to set up, see `Resampler`. One thread at a time.
/// Thread: any.
#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "Packs/FrameAllowance.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {

class Resampler;

class AudioDecoder final {
 public:
  explicit AudioDecoder(double sampleRate);
  ~AudioDecoder();

  /// Decodes the first two channels of a whole file; samples that are not finite become 0. The
  /// frames of the result stay taken off the allowance. Throws `PackError` (decode) and
  /// `AllowanceExceeded`.
  std::unique_ptr<SampleBuffer> decode(const std::filesystem::path& file,
                                       FrameAllowance& allowance);

 private:
  class Run;

  Resampler* resampler(int fileRate, bool stereo);

  double sampleRate_;
  std::vector<float> interleaved_;  // scratch, kept for the next file
  std::vector<float> left_;
  std::vector<float> right_;
  std::unique_ptr<Resampler> resampler_;  // of the last file that needed one
};

}  // namespace tobrin
