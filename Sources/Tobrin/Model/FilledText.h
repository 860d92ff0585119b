/// Texts with places for values. Thread: any.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

/// The text with the first "%1" in it replaced, or what `place` names.
inline std::string filled(std::string text, const std::string& value,
                          std::string_view place = "%1") {
  const auto found = text.find(place);
  return found == std::string::npos ? text : text.replace(found, place.size(), value);
}

}  // namespace tobrin
