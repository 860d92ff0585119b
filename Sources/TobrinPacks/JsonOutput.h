/// JSON documents on standard output. Thread: main.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>

namespace tobrin {

/// Bytes of file names that are no UTF-8 come out as replacement characters.
inline void printJson(const nlohmann::ordered_json& document, std::ostream& out) {
  out << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace tobrin
