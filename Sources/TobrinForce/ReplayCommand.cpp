#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "Engine/ForceReplay.h"

namespace tobrin {
namespace {

constexpr const char* help = R"(
TRACE.csv has the header time_ns,x,y,z: a time in nanoseconds and the acceleration of each axis
in g, a line a sample. KEYS.csv has the header time_ns,code: when which key went down, on the
same clock. Both are what 'tobrin-force record' writes.

The recording runs through the engine itself, without waiting. Each key gives four lines, one a
stage: 'provisional' when it goes down, then '4', '10' and '16' milliseconds later; the last one
calibrates. The columns:
  key              number of the key-down in KEYS.csv, from 0
  code,time_ns     the key, and when
  stage            see above
  window           samples from 12 ms before the key to 14 ms after it (or to the stage)
  peak             the strongest of them, in g
  peak_time_ns     and when it was
  noise            the sensor's noise floor in g
  counted          1 where the peak is taken for the key's impact, else 0
  relative         its strength, 1 being a typical keystroke (1 where not counted)
  position         its place from 0 soft to 3 slam (the typical place where not counted)
  reference_after  the typical peak in g that the user is measured by, after this stage
  typical_after    the typical place, after this stage
)";

std::string stageName(const ForceStage& stage) {
  return stage.delayMs == 0 ? "provisional" : std::to_string(static_cast<int>(stage.delayMs));
}

std::string number(float value) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return {text.data(), end};
}

/// Its shortest decimal form, which a plain conversion to double would lengthen.
double shortest(float value) {
  return std::stod(number(value));
}

}  // namespace

void writeStagesCsv(std::ostream& out, const std::vector<ReplayedStage>& stages) {
  out << "key,code,time_ns,stage,window,peak,peak_time_ns,noise,counted,relative,position,"
         "reference_after,typical_after\n";
  for (const auto& [key, stage] : stages) {
    const ForceWindow window = stage.window.value_or(ForceWindow{});
    out << key << ',' << stage.code << ',' << stage.keyTime << ',' << stageName(stage) << ','
        << window.samples << ',' << number(window.peak) << ',' << window.peakTime << ','
        << number(stage.noise) << ',' << (stage.counted ? 1 : 0) << ',' << number(stage.relative)
        << ',' << number(stage.position) << ',' << number(stage.referenceAfter) << ','
        << number(stage.typicalAfter) << '\n';
  }
}

void writeStagesJson(std::ostream& out, const std::vector<ReplayedStage>& stages) {
  nlohmann::ordered_json lines = nlohmann::ordered_json::array();
  for (const auto& [key, stage] : stages) {
    const ForceWindow window = stage.window.value_or(ForceWindow{});
    lines.push_back({{"key", key},
                     {"code", stage.code},
                     {"time_ns", stage.keyTime},
                     {"stage", stageName(stage)},
                     {"window", window.samples},
                     {"peak", shortest(window.peak)},
                     {"peak_time_ns", window.peakTime},
                     {"noise", shortest(stage.noise)},
                     {"counted", stage.counted ? 1 : 0},
                     {"relative", shortest(stage.relative)},
                     {"position", shortest(stage.position)},
                     {"reference_after", shortest(stage.referenceAfter)},
                     {"typical_after", shortest(stage.typicalAfter)}});
  }
  out << lines.dump(1) << '\n';
}

void addReplayCommand(CLI::App& app, const ForceStreams& streams) {
  struct Options {
    std::string trace;
    std::string keys;
    float sensitivity = 1;
    bool json = false;
  };
  const auto options = std::make_shared<Options>();  // shared with the command's callback
  CLI::App* command = app.add_subcommand("replay", "What the engine makes of a recording");
  command->footer(help);
  command->add_option("TRACE", options->trace, "The motion trace")->required();
  command->add_option("KEYS", options->keys, "The key-downs")->required();
  command->add_option("--sensitivity", options->sensitivity, "As in the settings")
      ->capture_default_str()
      ->check(CLI::Range(0.0f, 100.0f));
  command->add_flag("--json", options->json, "One JSON document instead of CSV");
  command->callback([options, streams] {
    const auto stages = replayForce(MotionTrace::load(options->trace),
                                    KeyTrace::load(options->keys), options->sensitivity);
    if (options->json)
      writeStagesJson(streams.out, stages);
    else
      writeStagesCsv(streams.out, stages);
  });
}

}  // namespace tobrin
