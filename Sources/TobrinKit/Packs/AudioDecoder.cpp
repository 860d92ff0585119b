#include "Packs/AudioDecoder.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <system_error>

#include "Base/PackError.h"
#include "Base/RegularFile.h"
#include "Packs/FrameStore.h"
#include "Packs/Resampler.h"

namespace tobrin {
namespace {

constexpr std::size_t stepSamples = 8192;  // decoded at once, over all channels: stays in cache
constexpr int lowestRate = 1000;           // below, a few bytes would become minutes of sound
constexpr int highestRate = 1'536'000;
constexpr uint64_t credibleFramesPerByte = 16;  // of compressed speech; more is grown on demand

struct Closer {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, Closer>;

// The library keeps the reason of a refusal in one place for all files, and clears it at each
// opening.
std::shared_mutex openings;

SoundFile opened(const RegularFile& file, SF_INFO& info) {
  // A descriptor for the library alone: it closes the one of a file that it refuses even if asked
  // not to, and a second close could hit what another thread has opened since.
  return SoundFile(sf_open_fd(file.duplicate(), SFM_READ, &info, SF_TRUE));
}

SoundFile openedAlone(const std::filesystem::path& path, SF_INFO& info) {
  const RegularFile file(path);  // from its start again
  const std::unique_lock alone(openings);
  info = {};
  SoundFile sound = opened(file, info);
  if (!sound) throw std::runtime_error(sf_strerror(nullptr));
  return sound;
}

SoundFile openSound(const RegularFile& file, const std::filesystem::path& path, SF_INFO& info) {
  SoundFile sound;
  {
    const std::shared_lock besideOthers(openings);
    sound = opened(file, info);
  }
  if (!sound) sound = openedAlone(path, info);
  if (info.channels < 1 || info.samplerate < lowestRate || info.samplerate > highestRate)
    throw std::runtime_error("unsupported format");
  return sound;
}

/// Planar frames of the first two channels; `right` is untouched for mono.
void deinterleave(const float* interleaved, std::size_t frames, std::size_t channels, float* left,
                  float* right) {
  for (std::size_t i = 0; i < frames; ++i)
    left[i] = soundOrZero(interleaved[i * channels]);
  if (channels < 2) return;
  for (std::size_t i = 0; i < frames; ++i)
    right[i] = soundOrZero(interleaved[i * channels + 1]);
}

}  // namespace

/// One file on its way through the decoder and, where the rates differ, the converter.
class AudioDecoder::Run final {
 public:
  Run(AudioDecoder& owner, const std::filesystem::path& path, FrameAllowance& allowance)
      : owner_(owner),
        file_(path),
        sound_(openSound(file_, path, info_)),
        channels_(static_cast<std::size_t>(info_.channels)),
        ratio_(owner.sampleRate_ / info_.samplerate),
        store_(channels_ >= 2, allowance),
        resampler_(owner.resampler(info_.samplerate, channels_ >= 2)) {}

  std::unique_ptr<SampleBuffer> decode() {
    announce();
    const std::size_t stepFrames = std::max<std::size_t>(stepSamples / channels_, 1);
    owner_.interleaved_.resize(stepFrames * channels_);
    owner_.left_.resize(stepFrames);
    owner_.right_.resize(stepFrames);
    while (const std::size_t frames = read(stepFrames))
      pass(frames);
    if (resampler_) resampler_->finish(converted());
    return std::make_unique<SampleBuffer>(store_.finish(), owner_.sampleRate_);
  }

 private:
  /// Announces the length that the header claims, so that a file too long is refused unread. One
  /// frame less than computed: the converter's own rounding has the last word.
  void announce() {
    if (info_.frames <= 0 || info_.frames == SF_COUNT_MAX) return;
    const double frames = std::floor(static_cast<double>(info_.frames) * ratio_);
    if (frames < 1) return;
    if (frames > 0x1p62) throw AllowanceExceeded();
    store_.expect(static_cast<uint64_t>(frames) - (resampler_ ? 1 : 0),
                  file_.size() * credibleFramesPerByte);
  }

  /// Frames decoded, 0 at the end.
  std::size_t read(std::size_t frames) {
    const sf_count_t count =
        sf_readf_float(sound_.get(), owner_.interleaved_.data(), static_cast<sf_count_t>(frames));
    if (sf_error(sound_.get()) != SF_ERR_NO_ERROR)
      throw std::runtime_error(sf_strerror(sound_.get()));
    return static_cast<std::size_t>(std::max<sf_count_t>(count, 0));
  }

  void pass(std::size_t frames) {
    float* const left = owner_.left_.data();
    float* const right = channels_ >= 2 ? owner_.right_.data() : nullptr;
    deinterleave(owner_.interleaved_.data(), frames, channels_, left, right);
    if (resampler_)
      resampler_->process(left, right, frames, converted());
    else
      store_.append(left, right, frames);
  }

  Resampler::Sink converted() {
    return [this](const float* left, const float* right, std::size_t frames) {
      store_.append(left, right, frames);
    };
  }

  AudioDecoder& owner_;
  RegularFile file_;
  SF_INFO info_{};
  SoundFile sound_;
  std::size_t channels_;
  double ratio_;
  FrameStore store_;
  Resampler* resampler_;  // null where the file has the right rate
};

AudioDecoder::AudioDecoder(double sampleRate) : sampleRate_(sampleRate) {}

AudioDecoder::~AudioDecoder() = default;

Resampler* AudioDecoder::resampler(int fileRate, bool stereo) {
  if (fileRate == sampleRate_) return nullptr;  // whole rates are exact in both types
  if (!resampler_ || !resampler_->converts(fileRate, stereo))
    resampler_ = std::make_unique<Resampler>(fileRate, sampleRate_, stereo);
  return resampler_.get();
}

std::unique_ptr<SampleBuffer> AudioDecoder::decode(const std::filesystem::path& file,
                                                   FrameAllowance& allowance) {
  const auto failed = [&](const char* reason) {
    resampler_.reset();  // it holds half a sound
    return PackError::decode(file, reason);
  };
  try {
    auto sound = Run(*this, file, allowance).decode();
    if (resampler_ && !resampler_->mayGoOn()) resampler_.reset();
    return sound;
  } catch (const AllowanceExceeded&) {
    resampler_.reset();
    throw;
  } catch (const std::bad_alloc&) {
    throw failed("could not allocate buffer");
  } catch (const std::length_error&) {
    throw failed("could not allocate buffer");
  } catch (const std::runtime_error& error) {
    throw failed(error.what());
  }
}

}  // namespace tobrin
