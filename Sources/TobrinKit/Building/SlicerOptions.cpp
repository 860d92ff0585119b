#include "Building/SlicerOptions.h"

#include "Base/JsonFields.h"

namespace tobrin {
namespace {

using Options = SlicerOptions;
using Json = nlohmann::json;

struct NumberKey {
  const char* key;
  double Options::*field;
  double least;
  double most;
};

struct CountKey {
  const char* key;
  int64_t Options::*field;
};

constexpr double longestMs = 60'000;
// Nothing that belongs to a key comes earlier; every take is longer by this much.
constexpr double longestPreRollMs = 1000;
constexpr int64_t mostVariants = 1000;

constexpr NumberKey numbers[] = {
    {"preRollMs", &Options::preRollMs, 0, longestPreRollMs},
    {"maxPressMs", &Options::maxPressMs, 0, longestMs},
    {"maxBigPressMs", &Options::maxBigPressMs, 0, longestMs},
    {"maxReleaseMs", &Options::maxReleaseMs, 0, longestMs},
    {"minPressMs", &Options::minPressMs, 0, longestMs},
    {"mergeWithinMs", &Options::mergeWithinMs, 0, longestMs},
    {"bigKeyShare", &Options::bigKeyShare, 0, 1},
    {"highPassHz", &Options::highPassHz, 0, 20'000},
    {"gainDb", &Options::gainDb, -120, 120},
};

constexpr CountKey counts[] = {
    {"alphaVariants", &Options::alphaVariants},
    {"bigVariants", &Options::bigVariants},
    {"releaseVariants", &Options::releaseVariants},
};

}  // namespace

SlicerOptions slicerOptionsFromJson(std::string_view text) {
  const Json document = parsedJson(text);
  const JsonFields fields(document, "");
  Options options;
  for (const auto& [key, field, least, most] : numbers) {
    if (const auto* value = fields.find(key)) {
      options.*field = fields.number(key, *value, least, most);
    }
  }
  for (const auto& [key, field] : counts) {
    if (const auto* value = fields.find(key)) {
      options.*field = fields.integer(key, *value, 0, mostVariants);
    }
  }
  if (const auto* value = fields.find("noReleases")) {
    if (!value->is_boolean()) fields.fail("noReleases", "must be true or false");
    options.noReleases = value->get<bool>();
  }
  return options;
}

std::string toJson(const Options& options) {
  Json document = {{"noReleases", options.noReleases}};
  for (const auto& number : numbers)
    document[number.key] = options.*number.field;
  for (const auto& count : counts)
    document[count.key] = options.*count.field;
  return document.dump();
}

}  // namespace tobrin
