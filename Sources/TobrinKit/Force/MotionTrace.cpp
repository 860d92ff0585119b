#include "Force/MotionTrace.h"

#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <ostream>

#include "Force/TraceCsv.h"

namespace tobrin {
namespace {

void writeNumber(std::ostream& out, double number) {
  std::array<char, 32> text{};
  constexpr int decimals = 6;  // a millionth of a g; the reports resolve 15 of them
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number,
                                          std::chars_format::fixed, decimals);
  if (error == std::errc()) out.write(text.data(), end - text.data());
}

double axis(const TraceCsv& lines, std::size_t field) {
  constexpr double most = 32768;  // g; what a report can say
  const double number = lines.number(field);
  if (std::abs(number) > most) lines.fail("more than 32768 g");
  return number;
}

}  // namespace

MotionTrace MotionTrace::load(const std::filesystem::path& file) {
  return parse(TraceCsv::load(file), file.string());
}

MotionTrace MotionTrace::parse(std::string_view text, const std::string& name) {
  TraceCsv lines(text, name, header);
  MotionTrace trace;
  while (lines.next()) {
    const Sample sample{lines.whole(0, INT64_MAX),
                        {axis(lines, 1), axis(lines, 2), axis(lines, 3)}};
    if (!trace.samples.empty() && sample.time < trace.samples.back().time)
      lines.fail("the time goes back, from " + std::to_string(trace.samples.back().time) + " to " +
                 std::to_string(sample.time));
    trace.samples.push_back(sample);
  }
  if (trace.samples.empty() || trace.samples.front().time == trace.samples.back().time)
    throw TraceError(name + ": a trace needs at least two samples at different times");
  constexpr uint64_t shortestInterval = 10'000;  // ns; no accelerometer is faster
  if (trace.period() / trace.samples.size() < shortestInterval)
    throw TraceError(name + ": more than 100000 samples a second");
  return trace;
}

uint64_t MotionTrace::period() const {
  assert(samples.size() >= 2);
  const uint64_t length = samples.back().time - samples.front().time;
  return length + length / (samples.size() - 1);
}

void writeMotionSample(std::ostream& out, const MotionTrace::Sample& sample) {
  out << sample.time;
  for (const double axis : {sample.acceleration.x, sample.acceleration.y, sample.acceleration.z}) {
    out << ',';
    writeNumber(out, axis);
  }
  out << '\n';
}

}  // namespace tobrin
