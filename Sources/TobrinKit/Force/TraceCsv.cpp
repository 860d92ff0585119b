#include "Force/TraceCsv.h"

#include <cassert>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "Base/RegularFile.h"

namespace tobrin {
namespace {

std::vector<std::string_view> splitAtCommas(std::string_view line) {
  std::vector<std::string_view> fields;
  for (std::size_t start = 0;;) {
    const std::size_t comma = line.find(',', start);
    fields.push_back(line.substr(start, comma - start));
    if (comma == std::string_view::npos) return fields;
    start = comma + 1;
  }
}

template <typename Number>
bool parse(std::string_view text, Number& number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

std::string quoted(std::string_view text) {
  constexpr std::size_t most = 40;
  return '"' + std::string(text.substr(0, most)) + (text.size() > most ? "...\"" : "\"");
}

}  // namespace

TraceCsv::TraceCsv(std::string_view text, std::string name, std::string_view header)
    : rest_(text), name_(std::move(name)), header_(header), columns_(splitAtCommas(header)) {
  std::string_view line;
  if (!takeLine(line) || line != header_)
    fail("expected the header \"" + std::string(header_) + "\"");
}

bool TraceCsv::next() {
  std::string_view line;
  while (takeLine(line)) {
    if (!line.empty()) {
      split(line);
      return true;
    }
    if (rest_.find_first_not_of("\r\n") != std::string_view::npos) fail("the line is empty");
  }
  return false;
}

uint64_t TraceCsv::whole(std::size_t field, uint64_t largest) const {
  assert(field < fields_.size());
  uint64_t number = 0;
  if (!parse(fields_[field], number) || number > largest)
    fail(std::string(columns_[field]) + " is no whole number from 0 to " + std::to_string(largest) +
         ": " + quoted(fields_[field]));
  return number;
}

int64_t TraceCsv::wholeBetween(std::size_t field, int64_t least, int64_t most) const {
  assert(field < fields_.size());
  int64_t number = 0;
  if (!parse(fields_[field], number) || number < least || number > most)
    fail(std::string(columns_[field]) + " is no whole number from " + std::to_string(least) +
         " to " + std::to_string(most) + ": " + quoted(fields_[field]));
  return number;
}

double TraceCsv::number(std::size_t field) const {
  assert(field < fields_.size());
  double number = 0;
  if (!parse(fields_[field], number) || !std::isfinite(number))
    fail(std::string(columns_[field]) + " is no number: " + quoted(fields_[field]));
  return number;
}

void TraceCsv::fail(const std::string& reason) const {
  throw TraceError(name_ + ":" + std::to_string(lineNumber_) + ": " + reason);
}

std::string TraceCsv::load(const std::filesystem::path& file) {
  constexpr uint64_t longestTrace = 1 << 30;  // bytes; some seven hours at 1000 Hz
  try {
    return RegularFile(file).readText(longestTrace);
  } catch (const std::system_error& error) {
    throw TraceError(file.string() + ": " + error.what());
  }
}

bool TraceCsv::takeLine(std::string_view& line) {
  ++lineNumber_;
  if (rest_.empty()) return false;
  const std::size_t end = rest_.find('\n');
  line = rest_.substr(0, end);
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return true;
}

void TraceCsv::split(std::string_view line) {
  fields_ = splitAtCommas(line);
  if (fields_.size() != columns_.size())
    fail("expected " + std::to_string(columns_.size()) + " fields (" + std::string(header_) +
         "), found " + std::to_string(fields_.size()));
}

}  // namespace tobrin
