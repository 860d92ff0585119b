#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <thread>

#include "Base/ExchangeFolders.h"
#include "Base/PrintableText.h"
#include "Building/PackFolder.h"
#include "Commands.h"
#include "Desktop/SessionKeys.h"
#include "Desktop/SessionSound.h"
#include "Importing/PackIdentity.h"
#include "Input/KeyMonitor.h"
#include "JsonOutput.h"
#include "Packs/WAVWriter.h"
#include "Progress.h"
#include "Recording/KeyTimes.h"
#include "Recording/KeyboardRecorder.h"
#include "Recording/KeyedPackBuilder.h"
#include "Recording/KeyedTakes.h"
#include "System/Interruption.h"
#include "Threads/ThreadPreparation.h"
#include "Warnings.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto pollInterval = std::chrono::milliseconds(50);
constexpr double longestRecording = 600;  // s

struct Options {
  std::string into;
  std::string name = "My Keyboard";
  std::string source;
  double seconds = longestRecording;
  std::string keep;
  bool json = false;
};

std::string_view adviceOf(LiveVerdict verdict) {
  switch (verdict) {
    case LiveVerdict::waiting:
      return "go on typing";
    case LiveVerdict::nothingHeard:
      return "the microphone does not hear the keys";
    case LiveVerdict::tooQuiet:
      return "too quiet: bring the microphone nearer";
    case LiveVerdict::tooLoud:
      return "too loud: turn the microphone down";
    case LiveVerdict::tooNoisy:
      return "too noisy here";
    case LiveVerdict::good:
      return "good";
  }
  return "";
}

std::string listed(const std::vector<SoundCapture::Input>& inputs) {
  std::string text;
  for (const auto& input : inputs)
    text += (text.empty() ? "" : ", ") + input.name + " (" + input.description + ")";
  return text.empty() ? "there is none" : "there are " + text;
}

/// Without this, a name that no microphone has would only show after a wait for it.
void checkSource(const std::vector<SoundCapture::Input>& inputs, const Options& options,
                 std::ostream& err) {
  const auto isMeant = [&](const SoundCapture::Input& input) {
    return options.source.empty() ? input.isDefault : input.name == options.source;
  };
  const auto found = std::find_if(inputs.begin(), inputs.end(), isMeant);
  if (found == inputs.end() && !options.source.empty())
    throw std::runtime_error("no microphone " + options.source + "; " + listed(inputs));
  if (found != inputs.end() && found->isProcessed)
    warn(err, found->description + " filters its sound, which changes that of keys");
}

/// What a person who types may want to know, in one line.
std::string summary(const LiveState& state) {
  std::string text;
  for (const KeyGroup group : allKeyGroups) {
    std::size_t takes = 0;
    for (const std::size_t count : state.takes[index(group)])
      takes += count;
    text += std::string(rawValue(group)) + ' ' + std::to_string(takes) + ", ";
  }
  return text + std::string(adviceOf(state.verdict));
}

/// Records until the time is over or Ctrl-C.
KeyedRecording record(KeyboardRecorder& recorder, KeyMonitor& keys, const Options& options,
                      std::ostream& err) {
  checkSource(recorder.inputs(), options, err);
  if (!keys.start()) throw std::runtime_error("can't hear the keys: " + keys.problem());
  if (!recorder.start(options.source)) throw std::runtime_error(recorder.problem());
  watchForInterruption();
  err << "Recording from " << printable(recorder.description())
      << ". Type: letters softly, as usual and hard; the space bar, Return, Backspace, Shift.\n"
         "Ctrl-C ends it. Type nothing secret: the sound of keys can give it away."
      << std::endl;
  const auto end = Clock::now() + std::chrono::duration<double>(options.seconds);
  {
    Progress progress(err, "good takes");
    std::string problem;
    while (!isInterrupted() && Clock::now() < end) {
      std::this_thread::sleep_for(pollInterval);
      recorder.collect();
      progress.show(summary(recorder.takes().state()));
      if (std::string news = recorder.problem(); news != problem) {
        problem = std::move(news);
        if (!problem.empty()) warn(err, problem + "; waiting for it");
      }
    }
  }
  keys.stop();
  recorder.stop();
  return recorder.takes().recording();
}

fs::path keysFileOf(const fs::path& sound) {
  return fs::path(sound).replace_extension(".keys.csv");
}

void keep(const KeyedRecording& recording, const fs::path& file) {
  writeWAV(recording.samples, std::nullopt, std::lround(recording.rate), file);
  saveKeyTimes(recording.keys, keysFileOf(file));
}

nlohmann::ordered_json asJson(const KeyedTakes& takes, const std::string& id,
                              const Options& options, double lufs) {
  auto groups = nlohmann::ordered_json::object();
  for (const auto& [group, tiers] : takes.down)
    for (const auto& [tier, some] : tiers)
      groups[std::string(rawValue(group))][std::string(name(tier))] = some.size();
  std::size_t releases = 0;
  for (const auto& [group, some] : takes.up)
    releases += some.size();
  return {{"id", id},
          {"name", options.name},
          {"path", options.into},
          {"keys", takes.sounds.size()},
          {"down", std::move(groups)},
          {"up", releases},
          {"delay", takes.fit.delay},
          {"drift", takes.fit.drift},
          {"lufs", lufs}};
}

void makePack(const KeyedRecording& recording, const Options& options,
              const CommandStreams& streams) {
  const KeyedTakes takes = findKeyedTakes(recording);
  streams.err << takes.report << std::endl;
  const std::string id = importedId(options.name);
  const KeyedPackText text{.id = id,
                           .name = options.name,
                           .kind = "Recorded",
                           .summary = "Recorded from one's own keyboard",
                           .author = "",
                           .license = ""};
  const double lufs = buildKeyedPack(takes, text, options.into, exchangeFolders);
  if (options.json)
    printJson(asJson(takes, id, options, lufs), streams.out);
  else
    streams.out << printable(options.name + " (" + id + ") in " + options.into) << '\n';
}

void run(const Options& options, const CommandStreams& streams) {
  // Somebody is about to type for minutes: whether the pack can be written is tried before.
  (void)PackFolder(options.into);
  KeyboardRecorder recorder(makeSoundCapture());
  KeyMonitorOptions listening;
  listening.onThreadStart = prepareTimelyThread;
  KeyMonitor keys(
      makeKeySource(), [&](const KeyEvent& event) { recorder.addKey(event); },
      std::move(listening));
  const KeyedRecording recording = record(recorder, keys, options, streams.err);
  std::exception_ptr notKept;
  try {
    if (!options.keep.empty()) keep(recording, options.keep);
  } catch (...) {
    notKept = std::current_exception();  // the pack is there anyway
  }
  makePack(recording, options, streams);
  if (notKept) std::rethrow_exception(notKept);
}

constexpr const char* footer = R"(
Records a keyboard through a microphone while you type on it, and makes a pack of its sounds. The
program hears which key is pressed when, so that nothing need be cut by hand: two minutes are
enough. Of keys only their group and a number in order of first use is kept, never which one it was.

--keep writes the sound and, beside FILE.wav, FILE.keys.csv; 'slice --keys' shows what was found.
Let Tobrin itself be silent meanwhile, or use headphones.

Examples:
  tobrin-packs record --into ~/.local/share/Tobrin/Packs/mine --name "My Keyboard"
  tobrin-packs record --into mine --seconds 120 --keep mine.wav --json
)";

}  // namespace

void addRecordCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command = app.add_subcommand("record", "Make a pack of your own keyboard");
  command->add_option("--into", options->into, "The pack's folder, replaced whole")->required();
  command->add_option("--name", options->name, "What the pack is called")->capture_default_str();
  command->add_option("--source", options->source, "The microphone's name at the sound server");
  command->add_option("--seconds", options->seconds, "For how long at most")
      ->check(CLI::Range(1.0, longestRecording))
      ->capture_default_str();
  command->add_option("--keep", options->keep, "WAV file that gets the recording too");
  command->add_flag("--json", options->json, "One JSON document on standard output");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
