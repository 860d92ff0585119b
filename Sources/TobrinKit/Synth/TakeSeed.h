/// Seeds of synthesized takes: a hash of what identifies them, so that every take can be made again
/// alone. Thread: any.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace tobrin {

/// The 64-bit FNV-1a hash of the parts joined with "|".
constexpr uint64_t takeSeed(std::initializer_list<std::string_view> parts) {
  uint64_t hash = 0xcbf29ce484222325u;
  const auto add = [&hash](char byte) {
    hash = (hash ^ static_cast<uint8_t>(byte)) * 0x100000001b3u;
  };
  bool first = true;
  for (const std::string_view part : parts) {
    if (!first) add('|');
    first = false;
    for (const char byte : part)
      add(byte);
  }
  return hash;
}

}  // namespace tobrin
