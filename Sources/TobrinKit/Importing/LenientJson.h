/// Reads JSON as people write it by hand: with comments, commas behind the last entry, a byte-order
/// mark, line ends inside texts, and letters in an old encoding. For sources that read packs of
/// others; our own formats stay strict. Thread: any.
#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace tobrin {

/// Throws `JsonError` as `readJson` does, with its limits.
[[nodiscard]] nlohmann::json readLenientJson(std::string_view text);

}  // namespace tobrin
