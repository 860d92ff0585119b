#include "Packs/SampleBuffer.h"

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "Support/AudioFiles.h"
#include "Support/Failure.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using testing::TempFolder;
using testing::wav16;
using testing::wavFloat;

std::string failure(const std::filesystem::path& file, uint64_t maxBytes = UINT64_MAX) {
  return testing::failureOf([&] { (void)SampleBuffer::load(file, 48000, maxBytes); });
}

TEST(SampleBuffer, KeepsTheSamplesOfTheFirstTwoChannels) {
  const TempFolder folder;
  for (const uint16_t channels : std::initializer_list<uint16_t>{1, 2, 3, 1000}) {
    std::vector<float> samples(channels * std::size_t{50});
    std::iota(samples.begin(), samples.end(), 0.0f);
    const auto file = folder.write("a.wav", wavFloat({.channels = channels}, samples));
    const auto sound = SampleBuffer::load(file, 48000);
    ASSERT_EQ(sound->frames(), 50u) << channels;
    EXPECT_EQ(sound->isMono(), channels == 1);
    const std::size_t last = std::size_t{49} * channels;
    EXPECT_EQ(sound->left()[49], samples[last]) << channels;
    EXPECT_EQ(sound->right()[49], samples[last + (channels > 1 ? 1 : 0)]) << channels;
  }
}

TEST(SampleBuffer, ConvertsRatesWithoutDelayOrLoss) {
  constexpr std::size_t frames = 44100;
  const auto sine = [](double rate, std::size_t i) {
    return 0.5 * std::sin(2 * std::numbers::pi * 997 * static_cast<double>(i) / rate);
  };
  std::vector<float> samples;
  for (std::size_t i = 0; i < frames; ++i) {
    samples.push_back(static_cast<float>(sine(44100, i)));
    samples.push_back(-samples.back());
  }
  const TempFolder folder;
  const auto file = folder.write("a.wav", wavFloat({.channels = 2, .rate = 44100}, samples));
  const auto sound = SampleBuffer::load(file, 48000);
  ASSERT_EQ(sound->frames(), 48000u);
  for (std::size_t i = 2000; i < 46000; ++i) {
    ASSERT_NEAR(sound->left()[i], sine(48000, i), 1e-5) << i;
    ASSERT_NEAR(sound->right()[i], -sound->left()[i], 1e-6) << i;
  }
}

TEST(SampleBuffer, MakesEverySampleFinite) {
  using Limits = std::numeric_limits<float>;
  const TempFolder folder;
  for (const uint32_t rate : {48000u, 32000u}) {
    std::vector<float> samples(1000, Limits::max());
    samples[0] = Limits::quiet_NaN();
    samples[4] = Limits::lowest();
    samples[5] = Limits::infinity();
    samples[6] = 1e-40F;
    const auto file = folder.write("a.wav", wavFloat({.rate = rate}, samples));
    const auto sound = SampleBuffer::load(file, 48000);
    for (std::size_t i = 0; i < sound->frames(); ++i)
      ASSERT_TRUE(std::isfinite(sound->left()[i])) << rate << " " << i;
    EXPECT_TRUE(std::isfinite(sound->peak()));
    EXPECT_FALSE(rate == 48000 && sound->left()[6] != 0) << "subnormal";
  }
}

TEST(SampleBuffer, SurvivesHeadersThatLie) {
  const TempFolder folder;
  const std::vector<int16_t> samples(100, 16384);
  // A file cut short plays what is there.
  auto file = folder.write("cut.wav", wav16({.dataBytes = 0xFFFFFF00}, samples));
  EXPECT_EQ(SampleBuffer::load(file, 48000)->frames(), 100u);
  const auto empty =
      SampleBuffer::load(folder.write("empty.wav", wav16({.rate = 44100}, {})), 48000);
  EXPECT_EQ(empty->frames(), 0u);
  EXPECT_EQ(empty->peak(), 0);

  for (const testing::WavHeader& header : {testing::WavHeader{.channels = 0},
                                           {.channels = 65535},
                                           {.rate = 0},
                                           {.rate = 1},
                                           {.rate = 0x7FFFFFFF}}) {
    file = folder.write("x.wav", wav16(header, samples));
    EXPECT_TRUE(failure(file).starts_with("Can't read x.wav: ")) << header.rate << failure(file);
  }
}

TEST(SampleBuffer, RefusesWhatIsNoSoundFileAtOnce) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo((folder.path() / "fifo.wav").c_str(), 0600), 0);
  for (const std::filesystem::path& file :
       {folder.path(), folder.path() / "fifo.wav", std::filesystem::path("/dev/zero"),
        folder.write("a.wav", ""), folder.write("b.wav", std::string(5000, 'x')),
        folder.write("c.flac", "fLaC")})
    EXPECT_TRUE(failure(file).starts_with("Can't read ")) << file;
}

/// Writes a compressed file of silence with libsndfile.
std::filesystem::path compressed(const TempFolder& folder, const char* name, int format,
                                 sf_count_t frames) {
  const auto file = folder.path() / name;
  SF_INFO info{0, 48000, 1, format, 0, 0};
  SNDFILE* const out = sf_open(file.c_str(), SFM_WRITE, &info);
  const std::vector<float> silence(static_cast<std::size_t>(frames));
  EXPECT_EQ(sf_writef_float(out, silence.data(), frames), frames);
  sf_close(out);
  return file;
}

TEST(SampleBuffer, HoldsTheLimitAgainstFalseLengths) {
  const TempFolder folder;
  const auto slow = folder.write("b.wav", wav16({.rate = 24000}, std::vector<int16_t>(500)));
  for (const auto& [file, frames] :
       {std::pair{slow, 1000u},
        {compressed(folder, "a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 48000), 48000u},
        {compressed(folder, "a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 48000), 48000u}}) {
    EXPECT_EQ(failure(file, frames * 8), "(none)") << file;
    EXPECT_NE(failure(file, frames * 8 - 1).find("too long"), std::string::npos) << file;
  }

  // The 36-bit frame count of a FLAC file ends at byte 26: once far too high, once unknown.
  const auto flac = folder.path() / "a.flac";
  const auto patch = [&](const std::string& count) {
    std::fstream stream(flac, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(22);
    stream << count;
  };
  patch("\x7F\xFF\xFF\xFF");
  EXPECT_NE(failure(flac, uint64_t{1} << 24).find("too long"), std::string::npos);
  patch(std::string(4, '\0'));
  EXPECT_NE(failure(flac, 47999 * 8).find("too long"), std::string::npos);
}

}  // namespace
}  // namespace tobrin
