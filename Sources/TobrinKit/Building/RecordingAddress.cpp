#include "Building/RecordingAddress.h"

#include <charconv>
#include <string>

namespace tobrin {
namespace {

constexpr std::string_view fileScheme = "file:";
constexpr std::string_view thisMachine = "localhost";

/// With each "%20" and its like as the byte it stands for. A percent sign alone stays one.
std::string unescaped(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    unsigned byte = 0;
    const bool isEscape = text.front() == '%' && text.size() > 2 &&
                          std::from_chars(&text[1], &text[1] + 2, byte, 16).ptr == &text[1] + 2;
    result += isEscape ? static_cast<char>(byte) : text.front();
    text.remove_prefix(isEscape ? 3 : 1);
  }
  return result;
}

}  // namespace

std::optional<std::filesystem::path> localFile(std::string_view address) {
  if (!address.starts_with(fileScheme)) {
    const bool isPath = !address.empty() && address.find("://") == std::string_view::npos;
    return isPath ? std::optional<std::filesystem::path>(address) : std::nullopt;
  }
  address.remove_prefix(fileScheme.size());
  if (address.starts_with("//")) {
    address.remove_prefix(2);
    if (address.starts_with(thisMachine)) address.remove_prefix(thisMachine.size());
  }
  return unescaped(address);
}

}  // namespace tobrin
