/// Reads small CSV files: one fixed header line, then lines of numbers and words. Malformed input
/// throws `TraceError`, which names the file and the line. Lines may end in CR LF; empty lines at
/// the end are allowed. Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tobrin {

/// A trace that cannot be used; the text reads "FILE:LINE: REASON" or "FILE: REASON".
class TraceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TraceCsv {
 public:
  /// `text` and `header` must outlive the reader; `name` stands in for the file in errors.
  TraceCsv(std::string_view text, std::string name, std::string_view header);

  /// Goes to the next line; false after the last.
  bool next();

  /// A field of the current line as a whole number up to `largest`.
  [[nodiscard]] uint64_t whole(std::size_t field, uint64_t largest = UINT64_MAX) const;

  /// The same between two limits, which may be negative.
  [[nodiscard]] int64_t wholeBetween(std::size_t field, int64_t least, int64_t most) const;

  /// A field of the current line as it stands.
  [[nodiscard]] std::string_view text(std::size_t field) const { return fields_[field]; }

  /// A field of the current line as a finite number.
  [[nodiscard]] double number(std::size_t field) const;

  /// Throws with the current line in front.
  [[noreturn]] void fail(const std::string& reason) const;

  /// The whole file; throws where it cannot be read.
  static std::string load(const std::filesystem::path& file);

 private:
  bool takeLine(std::string_view& line);
  void split(std::string_view line);

  std::string_view rest_;
  std::string name_;
  std::string_view header_;
  std::size_t lineNumber_ = 0;
  std::vector<std::string_view> columns_;
  std::vector<std::string_view> fields_;
};

}  // namespace tobrin
