#include "PackArgument.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "Packs/PackLibrary.h"

namespace tobrin {
namespace {

/// Letters to add, to leave out or to exchange (Levenshtein's distance).
std::size_t mistakes(const std::string& one, const std::string& other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t exchanged = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string didYouMean(const std::string& word, const std::vector<std::string>& names) {
  constexpr std::size_t mostMistakes = 2;
  const std::string* nearest = nullptr;
  std::size_t least = std::min(mostMistakes + 1, word.size());
  for (const std::string& name : names) {
    const std::size_t distance = mistakes(word, name);
    if (distance >= least) continue;
    least = distance;
    nearest = &name;
  }
  return nearest != nullptr ? ", did you mean '" + *nearest + "'?" : "";
}

std::filesystem::path packFolder(const std::string& argument) {
  std::error_code error;
  if (std::filesystem::exists(argument, error) || argument.find('/') != std::string::npos)
    return argument;
  std::vector<std::string> ids;
  for (const PackInfo& pack : discoverPacks()) {
    if (pack.id == argument) return pack.directory;
    ids.push_back(pack.id);
  }
  throw std::runtime_error("no folder and no pack of the library is called '" + argument + "'" +
                           didYouMean(argument, ids));
}

}  // namespace tobrin
