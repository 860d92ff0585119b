#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <iomanip>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "Base/PrintableText.h"
#include "Commands.h"
#include "Engine/OfflineRenderer.h"
#include "InputFile.h"
#include "NumberRange.h"
#include "PackArgument.h"
#include "Packs/FloatWAVWriter.h"
#include "Packs/PackLoader.h"
#include "Packs/WAVWriter.h"
#include "Progress.h"
#include "ScriptFile.h"
#include "System/LargePages.h"
#include "Warnings.h"

namespace tobrin {
namespace {

constexpr int engineRate = 48000;
constexpr double fastestTyping = 400;  // words a minute; records lie near 300
constexpr const char* exampleScript = R"([{"time":0,"code":0,"action":"","position":0}])";

struct Options {
  std::string pack;
  std::optional<std::string> text;
  std::string textFile;
  std::string scriptFile;
  std::string out;
  double wpm = 85;
  uint64_t seed = 3;
  double strength = 1.0;
  double tail = 0.8;
  std::string settingsFile;
  std::string format = "s16";
};

/// Reads and parses a file; a fault in its content names the file. `example` as for
/// `unknownNames`.
template <typename Parse>
auto parseFile(const std::string& path, Parse parse, std::string_view example, std::ostream& err) {
  const std::string content = readInputFile(path);
  try {
    auto parsed = parse(content);
    warnOfUnknownNames(path, content, example, err);
    return parsed;
  } catch (const std::runtime_error& error) {
    throw std::runtime_error("Can't read " + path + ": " + error.what());
  }
}

std::vector<ScriptedKey> scriptOf(const Options& options, std::ostream& err) {
  if (!options.scriptFile.empty())
    return parseFile(options.scriptFile, parseScript, exampleScript, err);
  const std::string text = options.text ? *options.text : readInputFile(options.textFile);
  const auto strength = static_cast<float>(options.strength);
  auto script = typingScript(text, options.wpm, options.seed,
                             [strength](std::size_t, std::size_t) { return strength; });
  if (script.empty()) warn(err, "no character of the text has a key: the sound is silent");
  return script;
}

/// The sizes in a WAV file have 32 bits.
void demandRoom(const std::vector<ScriptedKey>& script, const Options& options) {
  double last = 0;
  for (const ScriptedKey& key : script)
    last = std::max(last, key.time);
  const auto bytesPerFrame = options.format == "f32" ? 8 : 4;
  const auto limit = static_cast<double>(maxFloatWAVFrames) * 8 / bytesPerFrame;
  const double seconds = last + options.tail;
  if (seconds * engineRate <= limit) return;
  throw std::runtime_error("the sound would last " + std::to_string(std::lround(seconds / 60)) +
                           " minutes, a WAV file holds " +
                           std::to_string(std::lround(limit / engineRate / 60)));
}

void write(const RenderedSound& sound, const Options& options) {
  if (options.format == "f32")
    writeFloatWAV(sound.left, sound.right, engineRate, options.out);
  else
    writeWAV(sound.left, sound.right, engineRate, options.out);
}

float peakOf(const RenderedSound& sound) {
  float peak = 0;
  for (const auto* channel : {&sound.left, &sound.right})
    for (const float sample : *channel)
      peak = std::max(peak, std::fabs(sample));
  return peak;
}

void report(const RenderedSound& sound, const Options& options, std::ostream& out) {
  const double seconds = static_cast<double>(sound.left.size()) / engineRate;
  out << std::fixed << std::setprecision(2) << printable(options.out) << ": " << seconds << " s";
  if (const float peak = peakOf(sound); peak > 0)
    out << ", peak " << std::setprecision(1) << 20 * std::log10(peak) << " dBFS";
  else
    out << ", silent";
  out << '\n';
}

void run(const Options& options, const CommandStreams& streams) {
  const std::vector<ScriptedKey> script = scriptOf(options, streams.err);
  demandRoom(script, options);
  const EngineSettings settings = options.settingsFile.empty()
                                      ? EngineSettings()
                                      : parseFile(options.settingsFile, EngineSettings::fromJson,
                                                  EngineSettings().toJson(), streams.err);
  const auto pack = loadPack(PackInfo::read(packFolder(options.pack), false), engineRate);
  RenderedSound sound;
  {
    Progress progress(streams.err, "rendering");
    sound = renderOffline(
        *pack, script, settings, options.tail, engineRate,
        [&](double fraction) { progress.show(fraction); }, preferLargePages);
  }
  write(sound, options);
  report(sound, options, streams.out);
}

constexpr const char* footer = R"(
A script is a JSON list of keys: {"time": seconds, "code": 0 to 65535, "action": "down" or "up",
"position": 0 (soft) to 3 (slam)}. Text is typed with a person's rhythm; the same seed gives the
same sound. The format f32 holds the engine's output untouched, s16 is dithered.

Examples:
  tobrin-packs render Packs/mine --text "the quick brown fox" --out fox.wav
  tobrin-packs render Packs/mine --text-file letter.txt --wpm 110 --strength 2 --out letter.wav
  tobrin-packs render Packs/mine --script keys.json --settings quiet.json --format f32 --out k.wav
)";

void addOptions(CLI::App& command, Options& options) {
  command.add_option("PACKDIR", options.pack, "The pack's folder, or its id in 'list'")->required();
  auto* const source = command.add_option_group("Source", "What is played; one of");
  source->add_option("--text", options.text, "Text to type");
  source->add_option("--text-file", options.textFile, "File of text to type, - for standard input");
  source->add_option("--script", options.scriptFile, "JSON file of key presses");
  source->require_option(1);
  command.add_option("--out", options.out, "WAV file to write, replaced when complete")->required();
  command
      .add_option("--wpm", options.wpm,
                  "Typing speed in words of five characters a minute, 1 to 400")
      ->check(numberFrom(1, fastestTyping))
      ->capture_default_str();
  command.add_option("--seed", options.seed, "Seed of the typing rhythm")
      ->check(wholeNumber())
      ->capture_default_str();
  command.add_option("--strength", options.strength, "Typing strength, 0 (soft) to 3 (slam)")
      ->check(numberFrom(0, 3))
      ->capture_default_str();
  command.add_option("--tail", options.tail, "Seconds to go on after the last key, 0 to 3600")
      ->check(numberFrom(0, 3600))
      ->capture_default_str();
  command.add_option("--settings", options.settingsFile, "JSON file of engine settings");
  command.add_option("--format", options.format, "s16 (16-bit) or f32 (float)")
      ->check(CLI::IsMember({"s16", "f32"}))
      ->capture_default_str();
}

}  // namespace

void addRenderCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command = app.add_subcommand("render", "Play typing through a pack into a WAV file");
  addOptions(*command, *options);
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
