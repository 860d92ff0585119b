// Any text as a motion trace, as a list of keys and as those of a recording; what is taken must
// survive being written.
#include <sstream>

#include "Force/KeyTrace.h"
#include "Force/MotionTrace.h"
#include "Force/TraceCsv.h"
#include "FuzzInput.h"
#include "Recording/KeyTimes.h"

using namespace tobrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string text = input.text(size);
  try {
    const MotionTrace trace = MotionTrace::parse(text, "trace");
    fuzz::require(trace.samples.size() >= 2 && trace.period() > 0);
    std::ostringstream written;
    written << MotionTrace::header << '\n';
    for (const MotionTrace::Sample& sample : trace.samples) {
      (void)encodeMotionReport(sample.acceleration);
      writeMotionSample(written, sample);
    }
    fuzz::require(MotionTrace::parse(written.str(), "again").samples.size() ==
                  trace.samples.size());
  } catch (const TraceError&) {
  }
  try {
    (void)KeyTrace::parse(text, "keys");
  } catch (const TraceError&) {
  }
  try {
    (void)parseKeyTimes(text, "times");
  } catch (const TraceError&) {
  }
  return 0;
}
