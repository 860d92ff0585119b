#include "Base/ReadJson.h"

#include <string>

namespace tobrin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t longestText = std::size_t{16} << 20;
constexpr int mostNested = 32;

/// The library's "[json.exception.NAME.NUMBER] reason", which repeats a text that it took offence
/// at in its whole length.
std::string reasonOf(const Json::exception& error) {
  constexpr std::size_t longestReason = 200;
  std::string reason = error.what();
  if (const auto start = reason.find("] "); start != std::string::npos) reason.erase(0, start + 2);
  if (reason.size() > longestReason) reason.replace(longestReason, std::string::npos, "...");
  return reason;
}

}  // namespace

Json readJson(std::string_view text, const Json::parser_callback_t& watch) {
  if (text.size() > longestText) throw JsonError("longer than 16 MiB");
  const auto guard = [&watch](int depth, Json::parse_event_t event, Json& parsed) {
    const bool opens =
        event == Json::parse_event_t::array_start || event == Json::parse_event_t::object_start;
    if (opens && depth >= mostNested) throw JsonError("nested too deeply");
    return !watch || watch(depth, event, parsed);
  };
  try {
    return Json::parse(text, guard);
  } catch (const Json::exception& error) {
    throw JsonError("not valid JSON: " + reasonOf(error));
  }
}

}  // namespace tobrin
