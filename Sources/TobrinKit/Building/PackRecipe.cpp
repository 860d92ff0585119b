#include "Building/PackRecipe.h"

#include <algorithm>

#include "Base/JsonFields.h"
#include "Building/RecordingAddress.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;
using Source = PackRecipe::Source;

// The sound-sharing site that recordings are credited to.
constexpr const char* recordingSite = "https://freesound.org";
constexpr double longestRecording = 24 * 3600.0;  // s

Source sourceFrom(const Json& object, const std::string& place) {
  const JsonFields fields(object, place);
  Source source;
  source.freesoundID =
      fields.integer("freesoundID", fields.require("freesoundID"), INT64_MIN, INT64_MAX);
  source.user = fields.text("user");
  source.title = fields.text("title");
  source.license = fields.text("license");
  source.previewURL = fields.text("previewURL");
  if (source.previewURL.empty()) fields.fail("previewURL", "must not be empty");
  if (const auto* start = fields.find("start")) {
    source.start = fields.number("start", *start, 0, longestRecording);
  }
  if (const auto* end = fields.find("end")) {
    source.end = fields.number("end", *end, 0, longestRecording);
    if (*source.end <= source.start.value_or(0)) fields.fail("end", "must come after the start");
  }
  return source;
}

std::vector<Source> sourcesFrom(const JsonFields& fields, const char* key, const Json& list) {
  if (!list.is_array()) fields.fail(key, "must be a list");
  std::vector<Source> sources;
  for (const Json& entry : list) {
    sources.push_back(
        sourceFrom(entry, std::string(key) + "[" + std::to_string(sources.size()) + "]."));
  }
  return sources;
}

Json jsonOf(const std::vector<Source>& sources) {
  Json list = Json::array();
  for (const Source& source : sources) {
    Json entry = {{"freesoundID", source.freesoundID},
                  {"user", source.user},
                  {"title", source.title},
                  {"license", source.license},
                  {"previewURL", source.previewURL}};
    if (source.start) entry["start"] = *source.start;
    if (source.end) entry["end"] = *source.end;
    list.push_back(std::move(entry));
  }
  return list;
}

}  // namespace

std::optional<std::filesystem::path> Source::file() const {
  return localFile(previewURL);
}

std::string Source::pageURL() const {
  return recordingSite + std::string("/s/") + std::to_string(freesoundID) + "/";
}

std::string Source::creditLine() const {
  const std::string page = freesoundID < 0 ? "" : ", " + pageURL();
  return "\"" + title + "\" by " + user + page + " (" + license + ")";
}

std::vector<Source> PackRecipe::credits() const {
  std::vector<Source> all = sources;
  if (enterSources) all.insert(all.end(), enterSources->begin(), enterSources->end());
  std::vector<Source> distinct;
  for (const Source& source : all) {
    const bool isKnown = std::any_of(distinct.begin(), distinct.end(), [&](const Source& known) {
      return known.freesoundID == source.freesoundID;
    });
    if (!isKnown) distinct.push_back(source);
  }
  return distinct;
}

std::string PackRecipe::licenseText() const {
  std::string lines;
  for (const Source& source : credits()) {
    if (!lines.empty()) lines += "; ";
    lines += source.creditLine();
  }
  return "Recordings: " + lines + ". Sliced and leveled for Tobrin.";
}

void PackRecipe::resolvePaths(const std::filesystem::path& folder) {
  const auto resolve = [&](std::vector<Source>& list) {
    for (Source& source : list) {
      const auto file = source.file();
      if (file && file->is_relative()) source.previewURL = (folder / *file).string();
    }
  };
  resolve(sources);
  if (enterSources) resolve(*enterSources);
}

bool PackRecipe::isOne(std::string_view text) {
  const Json document = parsedJson(text);
  return document.is_object() && document.contains("sources");
}

PackRecipe PackRecipe::fromJson(std::string_view text) {
  const Json document = parsedJson(text);
  const JsonFields fields(document, "");
  PackRecipe recipe;
  recipe.id = fields.text("id");
  if (recipe.id.empty()) fields.fail("id", "must not be empty");
  recipe.name = fields.text("name");
  recipe.kind = fields.text("kind");
  recipe.summary = fields.text("summary");
  recipe.sources = sourcesFrom(fields, "sources", fields.require("sources"));
  if (const auto* list = fields.find("enterSources")) {
    recipe.enterSources = sourcesFrom(fields, "enterSources", *list);
  }
  if (const auto* options = fields.find("options")) {
    if (!options->is_object()) fields.fail("options", "must be an object");
    recipe.options = slicerOptionsFromJson(options->dump());
  }
  return recipe;
}

std::string PackRecipe::toJson() const {
  Json document = {{"id", id},
                   {"name", name},
                   {"kind", kind},
                   {"summary", summary},
                   {"sources", jsonOf(sources)}};
  if (enterSources) document["enterSources"] = jsonOf(*enterSources);
  if (options) document["options"] = Json::parse(tobrin::toJson(*options));
  return document.dump();
}

}  // namespace tobrin
