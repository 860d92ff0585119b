// Loading a starter pack, as it is and at another rate, beside what the libraries alone need for
// the same files on one thread; and typing played from it into memory.
#include <sndfile.h>
#include <soxr.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Engine/OfflineRenderer.h"
#include "Engine/Voicing.h"
#include "Input/KeyLayout.h"
#include "Packs/PackLoader.h"
#include "ScalarMixer.h"
#include "Support/Interleaved.h"
#include "Support/Report.h"
#include "Synth/PackGenerator.h"
#include "System/LargePages.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr int engineRate = 48000;
constexpr int otherRate = 44100;

using SoundFile = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

struct Sound {
  SF_INFO info{};
  std::vector<float> samples;  // interleaved
};

Sound decode(const fs::path& path) {
  Sound sound;
  const SoundFile file(sf_open(path.c_str(), SFM_READ, &sound.info), sf_close);
  if (!file) throw std::runtime_error("can't read " + path.string());
  sound.samples.resize(static_cast<std::size_t>(sound.info.frames * sound.info.channels));
  sf_readf_float(file.get(), sound.samples.data(), sound.info.frames);
  return sound;
}

std::vector<fs::path> soundFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".wav") files.push_back(entry.path());
  return files;
}

/// The pack's files with the other rate in their headers and as many samples as last the same time.
fs::path withOtherRate(const fs::path& pack, const fs::path& copy) {
  fs::copy(pack, copy);
  for (const fs::path& path : soundFiles(copy)) {
    Sound sound = decode(path);
    const sf_count_t frames = sound.info.frames * otherRate / engineRate;
    SF_INFO info{};
    info.samplerate = otherRate;
    info.channels = sound.info.channels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    const SoundFile file(sf_open(path.c_str(), SFM_WRITE, &info), sf_close);
    sf_writef_float(file.get(), sound.samples.data(), frames);
  }
  return copy;
}

/// Keeps the sounds until all are there, as a pack does.
void decodeAll(const std::vector<fs::path>& files) {
  std::vector<Sound> sounds;
  sounds.reserve(files.size());
  for (const fs::path& file : files)
    sounds.push_back(decode(file));
}

/// One conversion at the quality that packs are loaded with, nothing else.
std::vector<float> convert(const Sound& sound) {
  const auto quality = soxr_quality_spec(SOXR_VHQ, 0);
  const auto frames = static_cast<std::size_t>(sound.info.frames);
  const auto channels = static_cast<unsigned>(sound.info.channels);
  const std::size_t room = frames * engineRate / otherRate + 64;
  std::vector<float> converted(room * channels);
  std::size_t made = 0;
  if (soxr_oneshot(otherRate, engineRate, channels, sound.samples.data(), frames, nullptr,
                   converted.data(), room, &made, nullptr, &quality, nullptr) != nullptr)
    throw std::runtime_error("the converter failed");
  return converted;
}

void convertAll(const std::vector<Sound>& sounds) {
  std::vector<std::vector<float>> converted;
  converted.reserve(sounds.size());
  for (const Sound& sound : sounds)
    converted.push_back(convert(sound));
}

void addLoad(Report& report, const std::string& name, const Timing& ours, const char* peer,
             const Timing& theirs, double limitMs, double times) {
  report.add(Figure::under(name, ours.median * 1e3, "ms", limitMs, ours.spread));
  report.add(Figure::faster(name, ours, peer, theirs, times));
}

void measureLoading(Report& report, const fs::path& folder) {
  const fs::path pack = generatePack(SynthProfile::starterPacks()[0], folder);
  const fs::path copy = withOtherRate(pack, folder / "other-rate");
  const std::vector<fs::path> files = soundFiles(pack);
  std::vector<Sound> sounds;
  for (const fs::path& file : soundFiles(copy))
    sounds.push_back(decode(file));

  const auto load = [](const fs::path& from) {
    return [info = PackInfo::read(from, false)] { (void)loadPack(info, engineRate); };
  };
  const auto timings = timeInterleaved({contestant("load", load(pack)),
                                        contestant("libsndfile", [&] { decodeAll(files); }),
                                        contestant("load and convert", load(copy)),
                                        contestant("soxr", [&] { convertAll(sounds); })});
  addLoad(report, "load a starter pack", timings[0], "libsndfile alone", timings[1], 6, 0.5);
  addLoad(report, "load it at 44.1 kHz", timings[2], "soxr alone", timings[3], 25, 0.75);
}

/// The same keys by the plain loop, in blocks of the same length, into memory just as fresh.
void renderByScalarLoop(const LoadedPack& pack, const std::vector<ScriptedKey>& script) {
  constexpr uint32_t blockFrames = 64;
  const EngineSettings settings;
  const auto frames = static_cast<std::size_t>(script.back().time * engineRate);
  std::vector<float> left(frames), right(frames);
  const Voicing voicing(pack, settings);
  ScalarMixer mixer;
  uint32_t tag = 0;
  auto key = script.begin();
  for (std::size_t done = 0; done + blockFrames <= left.size(); done += blockFrames) {
    for (; key != script.end() && key->time * engineRate < static_cast<double>(done + blockFrames);
         ++key) {
      const auto command = key->action == KeyAction::down
                               ? voicing.press(++tag, key->code, {key->position, 1}, {})
                               : voicing.release(++tag, key->code, 1, {});
      if (command) mixer.start(*command);
    }
    mixer.render(left.data() + done, right.data() + done, blockFrames);
  }
}

void measureTyping(Report& report, const fs::path& folder) {
  const fs::path pack = generatePack(SynthProfile::starterPacks()[0], folder);
  const auto loaded = loadPack(PackInfo::read(pack, false), engineRate);
  std::string text;
  while (text.size() < 425)  // a minute at 85 words a minute
    text += "the quick brown fox jumps over the lazy dog ";
  const auto script = typingScript(text, 85, 3, [](std::size_t, std::size_t) { return 1.0f; });
  const double seconds = script.back().time;
  const auto timings =
      timeInterleaved({contestant("render",
                                  [&] {
                                    (void)renderOffline(*loaded, script, EngineSettings(), 0,
                                                        engineRate, {}, preferLargePages);
                                  }),
                       contestant("scalar", [&] { renderByScalarLoop(*loaded, script); })});
  report.add(Figure::over("a minute of typing, offline", seconds / timings[0].median, "x real time",
                          4000, timings[0].spread));
  report.add(
      Figure::faster("a minute of typing, offline", timings[0], "scalar loop", timings[1], 4));
}

int run(int argc, char** argv) {
  const fs::path folder =
      fs::temp_directory_path() / ("tobrin-bench-packs-" + std::to_string(::getpid()));
  Report report(argc, argv);
  measureLoading(report, folder);
  measureTyping(report, folder);
  fs::remove_all(folder);
  return 0;
}

}  // namespace
}  // namespace tobrin

// NOLINTNEXTLINE(bugprone-exception-escape): what cannot be measured may end it
int main(int argc, char** argv) {
  return tobrin::run(argc, argv);
}
