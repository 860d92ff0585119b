/// Words that strangers wrote, in one line: what would break it or turn the direction of the texts
/// beside it is left out.
#pragma once

#include <QString>
#include <optional>
#include <string>

namespace tobrin {

[[nodiscard]] QString strangersText(const std::optional<std::string>& utf8);

}  // namespace tobrin
