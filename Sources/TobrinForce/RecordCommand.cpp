#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "Commands.h"
#include "Desktop/SessionKeys.h"
#include "Force/ForceRecorder.h"
#include "Motion/FindMotionSource.h"
#include "System/Interruption.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* help = R"(
Writes TRACE.csv (header time_ns,x,y,z, in g) and KEYS.csv (header time_ns,code) until the time is
over or Ctrl-C is pressed. Of each key only its group is kept: 0 stands for every letter and
digit, 49 for the space bar, 36 for Return and Enter, 51 for deleting, 56 for modifiers. What was
typed cannot be read back.

While it records, both files are named *.part. 'tobrin-force replay' plays them.
)";

/// A file that gets its name once it is complete.
class PartFile {
 public:
  PartFile(fs::path file, std::string_view header)
      : file_(std::move(file)), part_(file_.string() + ".part"), stream_(part_, std::ios::binary) {
    stream_ << header << '\n';
    check();
  }
  std::ostream& stream() { return stream_; }
  void check() {
    if (!stream_.flush())
      throw std::runtime_error("can't write " + part_.string() + ": " +
                               std::generic_category().message(errno));
  }
  void complete() {
    check();
    stream_.close();
    fs::rename(part_, file_);
  }

 private:
  fs::path file_;
  fs::path part_;
  std::ofstream stream_;
};

struct Counts {
  std::size_t samples = 0;
  std::size_t keys = 0;
};

void append(const ForceRecorder::Recorded& recorded, PartFile& trace, PartFile& keys,
            Counts& counts) {
  for (const MotionTrace::Sample& sample : recorded.samples)
    writeMotionSample(trace.stream(), sample);
  for (const KeyTrace::KeyDown& key : recorded.keys)
    keys.stream() << key.time << ',' << key.code << '\n';
  counts.samples += recorded.samples.size();
  counts.keys += recorded.keys.size();
  trace.check();
  keys.check();
}

void record(const fs::path& traceFile, const fs::path& keysFile, double seconds,
            const ForceStreams& streams) {
  auto source = findMotionSource();
  if (!source) throw std::runtime_error("this machine has no motion sensor");
  ForceRecorder recorder(
      std::move(source),
      [](KeyMonitor::Handler handler) {
        return std::make_unique<KeyMonitor>(makeKeySource(), std::move(handler));
      },
      [] { prepareTimelyThread(ForceSensor::threadName); });
  if (!recorder.start()) throw std::runtime_error(recorder.problem());
  PartFile trace(traceFile, MotionTrace::header);
  PartFile keys(keysFile, KeyTrace::header);
  streams.err << "Recording " << recorder.description() << "; Ctrl-C ends it.\n";
  watchForInterruption();
  Counts counts;
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!isInterrupted() && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    append(recorder.take(), trace, keys, counts);
  }
  recorder.stop();
  append(recorder.take(), trace, keys, counts);
  trace.complete();
  keys.complete();
  streams.err << counts.samples << " samples, " << counts.keys << " keys\n";
}

}  // namespace

void addRecordCommand(CLI::App& app, const ForceStreams& streams) {
  struct Options {
    std::string trace;
    std::string keys;
    double seconds = 60;
  };
  const auto options = std::make_shared<Options>();  // shared with the command's callback
  CLI::App* command = app.add_subcommand("record", "Record the motion sensor while keys are typed");
  command->footer(help);
  command->add_option("TRACE", options->trace, "Where the motion trace goes")->required();
  command->add_option("KEYS", options->keys, "Where the key-downs go")->required();
  command->add_option("--seconds", options->seconds, "For how long")
      ->capture_default_str()
      ->check(CLI::Range(0.1, 86400.0));
  command->callback(
      [options, streams] { record(options->trace, options->keys, options->seconds, streams); });
}

}  // namespace tobrin
