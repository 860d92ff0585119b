// The voice mixer beside a plain loop of the same algorithm and beside OpenAL Soft.
#include <memory>
#include <random>
#include <vector>

#include "OpenAlMixer.h"
#include "ScalarMixer.h"
#include "Support/Interleaved.h"
#include "Support/Report.h"
#include "TobrinMixer.h"

namespace tobrin {
namespace {

constexpr uint32_t blockFrames = 256;
constexpr uint32_t lifeBlocks = 40;  // blocks a voice sounds before all start again

using MixerHandle = std::unique_ptr<TBMixer, decltype(&tb_mixer_destroy)>;

/// Noise that voices play stretches of.
std::vector<float> noise(std::size_t frames) {
  std::mt19937 generator(11);
  std::uniform_real_distribution<float> level(-0.02F, 0.02F);
  std::vector<float> samples(frames);
  for (float& sample : samples)
    sample = level(generator);
  return samples;
}

/// Start commands of voices that each end within block `lifeBlocks`. Layers lie `apart` frames from
/// each other in the noise, going round where it ends, and all alike in their cache lines.
std::vector<TBCommand> voicesOf(const std::vector<float>& sound, uint32_t voices, uint32_t layers,
                                std::size_t apart) {
  std::mt19937 generator(5);
  std::uniform_real_distribution<float> detune(0.97F, 1.03F);
  std::vector<TBCommand> commands(voices);
  std::size_t offset = 0;
  for (uint32_t v = 0; v < voices; ++v) {
    TBCommand& command = commands[v];
    command.type = TB_COMMAND_START;
    command.tag = v + 1;
    command.rate = detune(generator);
    command.pan = 0.5F - static_cast<float>(v % 8) / 8;
    const auto frames = static_cast<uint32_t>((lifeBlocks - 0.5F) * blockFrames * command.rate);
    for (uint32_t n = 0; n < layers; ++n) {
      const auto place = [&] {
        offset = (offset + apart) % ((sound.size() - frames) / 16 * 16);
        return sound.data() + offset;
      };
      command.layers[n] = {place(), place(), frames};
      command.weights[n] = 0.2F + 0.1F * static_cast<float>(n);
    }
  }
  return commands;
}

/// One block a call; starts the voices again when they have ended.
template <typename Start, typename Render>
auto blocks(const std::vector<TBCommand>& voices, Start start, Render render) {
  return [&voices, start, render, left = std::vector<float>(blockFrames),
          right = std::vector<float>(blockFrames), block = lifeBlocks]() mutable {
    if (block++ == lifeBlocks) {
      for (const TBCommand& voice : voices)
        start(voice);
      block = 1;
    }
    render(left.data(), right.data());
  };
}

Contestant tobrinBlocks(TBMixer* mixer, const std::vector<TBCommand>& voices) {
  return contestant("tobrin", blocks(
                                  voices,
                                  [mixer](const TBCommand& voice) {
                                    static_cast<void>(tb_mixer_push(mixer, &voice));
                                  },
                                  [mixer](float* left, float* right) {
                                    tb_mixer_render(mixer, left, right, blockFrames);
                                  }));
}

Contestant scalarBlocks(ScalarMixer& mixer, const std::vector<TBCommand>& voices) {
  return contestant(
      "scalar", blocks(
                    voices, [&](const TBCommand& voice) { mixer.start(voice); },
                    [&](float* left, float* right) { mixer.render(left, right, blockFrames); }));
}

Contestant openAlBlocks(OpenAlMixer& mixer) {
  return contestant("OpenAL Soft",
                    [&mixer, samples = std::vector<float>(std::size_t{2} * blockFrames)]() mutable {
                      mixer.render(samples.data(), blockFrames);
                    });
}

MixerHandle makeMixer() {
  return {tb_mixer_create(48000, 4), &tb_mixer_destroy};
}

/// Samples of this many frames and their readers fit the second-level cache.
constexpr std::size_t cachedFrames = 60'000;

void crowdedBlock(Report& report) {
  const std::vector<float> sound = noise(cachedFrames);
  const std::vector<TBCommand> voices = voicesOf(sound, 32, 4, 1008);
  const MixerHandle mixer = makeMixer();
  ScalarMixer scalar;
  OpenAlMixer openAl(voices);
  const auto times = timeInterleaved(
      {tobrinBlocks(mixer.get(), voices), scalarBlocks(scalar, voices), openAlBlocks(openAl)});
  const char* name = "mixer, 32 voices x 4 layers, 256 frames";
  report.add(Figure::faster(name, times[0], "scalar", times[1], 12));
  report.add(Figure::faster(name, times[0], "OpenAL Soft", times[2], 20));
}

void fewVoices(Report& report) {
  const std::vector<float> sound = noise(cachedFrames);
  const std::vector<TBCommand> voices = voicesOf(sound, 8, 2, 1008);
  const MixerHandle mixer = makeMixer();
  ScalarMixer scalar;
  const auto times =
      timeInterleaved({tobrinBlocks(mixer.get(), voices), scalarBlocks(scalar, voices)});
  report.add(
      Figure::faster("mixer, 8 voices x 2 layers, 256 frames", times[0], "scalar", times[1], 15));
}

void samplesOutOfCache(Report& report) {
  const std::vector<float> sound = noise(32'000'000);
  const std::vector<TBCommand> voices = voicesOf(sound, 32, 4, 124'000);
  const MixerHandle mixer = makeMixer();
  ScalarMixer scalar;
  const auto times =
      timeInterleaved({tobrinBlocks(mixer.get(), voices), scalarBlocks(scalar, voices)});
  report.add(Figure::faster("mixer, 32 voices x 4 layers, samples out of cache", times[0], "scalar",
                            times[1], 3));
}

void noVoices(Report& report) {
  const MixerHandle mixer = makeMixer();
  const std::vector<TBCommand> none;
  const Timing time = timeInterleaved({tobrinBlocks(mixer.get(), none)})[0];
  report.add(
      Figure::under("mixer, no voices, 256 frames", time.median * 1e9, "ns", 50, time.spread));
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  tobrin::crowdedBlock(report);
  tobrin::fewVoices(report);
  tobrin::samplesOutOfCache(report);
  tobrin::noVoices(report);
  return 0;
}
