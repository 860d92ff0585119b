/// Names that are compared without regard to case. ASCII only: names in files and of programs must
/// not depend on the user's locale. Thread: any.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

/// The text with its ASCII letters in lower case.
[[nodiscard]] std::string lowerCase(std::string_view text);

}  // namespace tobrin
