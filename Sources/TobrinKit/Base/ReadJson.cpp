#include "Base/ReadJson.h"

#include <algorithm>
#include <string>

namespace tobrin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t longestText = std::size_t{16} << 20;
constexpr int mostNested = 32;

/// Where a parser that counts bytes from 1 gave up, as an editor shows it.
std::string placeOf(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, byte > 0 ? byte - 1 : 0);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 where there is none before
  const std::size_t column = before.size() - lineStart + 1;
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
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
  } catch (const Json::parse_error& error) {
    throw JsonError("not valid JSON from " + placeOf(text, error.byte) + " on");
  } catch (const Json::exception&) {
    throw JsonError("not valid JSON: it has a number that is too large");
  }
}

}  // namespace tobrin
