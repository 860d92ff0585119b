/// A text that strangers wrote, in one line: characters that would break it, or turn the direction
/// of the texts beside it, are left out. Thread: any.
#pragma once

#include <QString>
#include <optional>
#include <string>

namespace tobrin {

[[nodiscard]] QString strangersText(const std::optional<std::string>& utf8);

}  // namespace tobrin
