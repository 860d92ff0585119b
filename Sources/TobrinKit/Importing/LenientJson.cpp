#include "Importing/LenientJson.h"

#include <string>

#include "Base/ReadJson.h"

namespace tobrin {
namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Copies a text and leaves out what plain JSON does not have.
class JsonCleaner {
 public:
  explicit JsonCleaner(std::string_view text) : text_(text) {}

  std::string cleaned() && {
    while (at_ < text_.size()) {
      if (text_[at_] == '"')
        copyString();
      else if (text_.substr(at_, 2) == "//")
        skipTo("\n", 0);
      else if (text_.substr(at_, 2) == "/*")
        skipTo("*/", 2);
      else
        copyMark(text_[at_++]);
    }
    return std::move(out_);
  }

 private:
  void copyString() {
    out_ += text_[at_++];
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      copyInString(c);
      if (c == '\\' && at_ < text_.size()) out_ += text_[at_++];
      if (c == '"') return;
    }
  }

  void copyInString(char c) {
    if (static_cast<unsigned char>(c) >= 0x20)
      out_ += c;
    else
      out_ += ' ';  // a tab or a line end that JSON wants written otherwise
  }

  /// A closing bracket takes back the comma before it.
  void copyMark(char c) {
    if (c == ']' || c == '}') {
      const auto last = out_.find_last_not_of(blanks);
      if (last != std::string::npos && out_[last] == ',') out_.resize(last);
    }
    out_ += c;
  }

  void skipTo(std::string_view end, std::size_t endSize) {
    const auto found = text_.find(end, at_ + 2);
    at_ = found == std::string_view::npos ? text_.size() : found + endSize;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::string out_;
};

/// Each byte beyond ASCII as the letter that it is in the old encoding of Western Europe.
std::string fromLatin1(std::string_view text) {
  std::string utf8;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | byte >> 6);
      utf8 += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return utf8;
}

}  // namespace

nlohmann::json readLenientJson(std::string_view text) {
  const std::string plain = JsonCleaner(text).cleaned();
  try {
    return readJson(plain);
  } catch (const JsonError&) {
    // Either broken, which the second try says too, or not in UTF-8.
    return readJson(fromLatin1(plain));
  }
}

}  // namespace tobrin
