/// What is odd about the files a command was given, on standard error; the command goes on.
/// Thread: main.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "Base/PrintableText.h"
#include "Building/UnknownNames.h"

namespace tobrin {

inline void warn(std::ostream& err, const std::string& text) {
  err << "tobrin-packs: warning: " << printable(text) << std::endl;
}

/// Names in a JSON file that the program does not know; `example` as for `unknownNames`. The file's
/// content has been read without a fault.
inline void warnOfUnknownNames(const std::string& file, std::string_view content,
                               std::string_view example, std::ostream& err) {
  for (const std::string& line : unknownNames(content, example))
    warn(err, std::string(file).append(": ").append(line));
}

}  // namespace tobrin
