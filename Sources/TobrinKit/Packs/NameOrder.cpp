#include "Packs/NameOrder.h"

#include <unicode/ucol.h>

#include <algorithm>

namespace tobrin {
namespace {

constexpr std::size_t longestCompared = 4096;  // bytes; keeps lengths within the library's ints

/// The language part of a POSIX name, as the library knows it; empty for its root rules.
std::string languageOf(const std::string& locale) {
  const std::string language = locale.substr(0, locale.find_first_of(".@"));
  return language == "C" || language == "POSIX" ? "" : language;
}

}  // namespace

struct NameOrder::Rules {
  explicit Rules(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    collator = ucol_open(languageOf(locale).c_str(), &status);
    if (collator != nullptr) ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    isValid = collator != nullptr && U_SUCCESS(status);
  }
  ~Rules() {
    if (collator != nullptr) ucol_close(collator);
  }
  Rules(const Rules&) = delete;
  Rules& operator=(const Rules&) = delete;

  UCollator* collator = nullptr;
  bool isValid = false;
};

NameOrder::NameOrder(const std::string& locale) : rules_(std::make_unique<Rules>(locale)) {
  if (!rules_->isValid) rules_.reset();
}

NameOrder::~NameOrder() = default;

bool NameOrder::isBefore(std::string_view a, std::string_view b) const {
  if (!rules_) return a < b;
  a = a.substr(0, longestCompared);
  b = b.substr(0, longestCompared);
  UErrorCode status = U_ZERO_ERROR;
  return ucol_strcollUTF8(rules_->collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                          static_cast<int32_t>(b.size()), &status) == UCOL_LESS;
}

}  // namespace tobrin
