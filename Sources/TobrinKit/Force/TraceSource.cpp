#include "Force/TraceSource.h"

#include <cassert>
#include <utility>

#include "Base/MachTime.h"
#include "Force/TraceCsv.h"

namespace tobrin {

TraceSource::TraceSource(MotionTrace trace, std::string name, std::shared_ptr<TraceClock> clock,
                         Times times)
    : name_(std::move(name)), clock_(std::move(clock)), times_(times), trace_(std::move(trace)) {
  assert(clock_);
}

TraceSource::TraceSource(const std::filesystem::path& file, std::shared_ptr<TraceClock> clock,
                         Times times)
    : name_(file.string()), clock_(std::move(clock)), times_(times) {
  assert(clock_);
}

bool TraceSource::open() {
  try {
    if (!trace_) trace_ = MotionTrace::load(name_);
  } catch (const TraceError& error) {
    problem_ = error.what();
    return false;
  }
  problem_.clear();
  clock_->rearm();
  opened_ = clock_->now();
  return true;
}

void TraceSource::run(const Sink& sink) {
  if (times_ == Times::present)
    repeat(sink);
  else
    playOnce(sink);
}

void TraceSource::interrupt() {
  clock_->interrupt();
}

void TraceSource::repeat(const Sink& sink) {
  // After this much delay (the machine was stopped) the trace goes on from the present instead of
  // catching up.
  const uint64_t mostBehind = machTicks(250);
  const uint64_t first = trace_->samples.front().time;
  const uint64_t period = trace_->period();
  for (uint64_t round = opened_;; round += period) {
    for (const MotionTrace::Sample& sample : trace_->samples) {
      uint64_t due = round + (sample.time - first);
      if (!clock_->sleepUntil(due)) return;
      const uint64_t present = clock_->now();
      if (present - due > mostBehind) {
        round += present - due;
        due = present;
      }
      sink(encodeMotionReport(sample.acceleration), due);
    }
  }
}

void TraceSource::playOnce(const Sink& sink) {
  for (const MotionTrace::Sample& sample : trace_->samples) {
    if (sample.time < opened_) continue;
    if (!clock_->sleepUntil(sample.time)) return;
    sink(encodeMotionReport(sample.acceleration), sample.time);
  }
  while (clock_->sleepUntil(UINT64_MAX)) {
  }
}

}  // namespace tobrin
