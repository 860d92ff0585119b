#include "Force/KeyTrace.h"

#include "Force/TraceCsv.h"

namespace tobrin {

KeyTrace KeyTrace::load(const std::filesystem::path& file) {
  return parse(TraceCsv::load(file), file.string());
}

KeyTrace KeyTrace::parse(std::string_view text, const std::string& name) {
  TraceCsv lines(text, name, header);
  KeyTrace trace;
  while (lines.next()) {
    const KeyDown key{lines.whole(0, INT64_MAX), static_cast<uint16_t>(lines.whole(1, UINT16_MAX))};
    if (!trace.keys.empty() && key.time < trace.keys.back().time)
      lines.fail("the time goes back, from " + std::to_string(trace.keys.back().time) + " to " +
                 std::to_string(key.time));
    trace.keys.push_back(key);
  }
  return trace;
}

}  // namespace tobrin
