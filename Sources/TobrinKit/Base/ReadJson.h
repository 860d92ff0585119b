/// Parses JSON text that others wrote, within bounds: endless nesting would exhaust the stack of
/// the code that writes it again, or the memory with its indentation. For sources that parse; keeps
/// the JSON library out of every other header. Thread: any.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

namespace tobrin {

/// What is wrong with a JSON text, in a few words.
class JsonError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws `JsonError` where `text` is no JSON, is longer than 16 MiB or nests arrays and objects
/// more than 32 deep (no format of ours needs more than 4). `watch` sees the parser's events and
/// may throw.
[[nodiscard]] nlohmann::json readJson(std::string_view text,
                                      const nlohmann::json::parser_callback_t& watch = nullptr);

}  // namespace tobrin
