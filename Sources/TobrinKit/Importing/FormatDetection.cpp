// Which file of a source describes a pack, by what stands in it: descriptions go by many names, and
// some archives hold two.
#include <algorithm>

#include "Base/LowerCase.h"
#include "Base/ReadJson.h"
#include "Importing/FormatReaders.h"
#include "Importing/ImportError.h"
#include "Importing/PackAssembly.h"
#include "Packs/PackManifest.h"

namespace tobrin {
namespace {

using Kind = ImportError::Kind;

constexpr uint64_t longestDescription = uint64_t{1} << 20;  // those that are seen have 10 KiB
constexpr std::size_t mostDescriptions = 16;

/// A description is text; sounds are not.
bool isText(std::string_view content) {
  return content.substr(0, 512).find('\0') == std::string_view::npos;
}

bool hasAny(std::string_view content, std::initializer_list<std::string_view> words) {
  return std::ranges::any_of(
      words, [&](auto word) { return content.find(word) != std::string_view::npos; });
}

bool mayBeConfig(std::string_view content) {
  return hasAny(content, {"\"defines\"", "\"definitions\"", "\"key_define_type\""});
}

bool mayBeProfile(std::string_view content) {
  return hasAny(content, {"profile"}) && hasAny(content, {"sources"}) && hasAny(content, {"keys"});
}

struct Description {
  const SourceFiles::File* file;
  std::string content;
};

/// Everything that may be a description, the one least deep in folders first.
std::vector<Description> descriptions(const SourceFiles& files) {
  std::vector<Description> found;
  for (const auto& file : files.all()) {
    if (file.bytes > longestDescription || file.bytes == 0) continue;
    if (lowerCase(file.name).ends_with(".wav")) continue;  // most files of most packs
    std::string content = SourceFiles::read(file, longestDescription);
    if (isText(content) && (mayBeConfig(content) || mayBeProfile(content)))
      found.push_back({&file, std::move(content)});
    if (found.size() == mostDescriptions) break;
  }
  const auto order = [](const Description& each) {
    const auto& name = each.file->name;
    return std::tuple(std::ranges::count(name, '/'), !name.ends_with(".json"), name);
  };
  std::ranges::stable_sort(found, {}, order);
  return found;
}

std::optional<ForeignPack> read(const FormatContext& context, const Description& description) {
  const std::string& name = description.file->name;
  try {
    return mayBeConfig(description.content) ? readConfig(context, name, description.content)
                                            : readProfile(context, name, description.content);
  } catch (const JsonError& error) {
    throw ImportError(Kind::unreadable, name + " is " + error.what());
  }
}

bool holdsOurPack(const SourceFiles& files) {
  return std::ranges::any_of(
      files.all(), [](const auto& file) { return fileOf(file.name) == PackManifest::fileName; });
}

/// The first description whose sounds are there. A broken one is the answer only where there is no
/// other.
class Search {
 public:
  explicit Search(const FormatContext& context) : context_(context) {}

  std::optional<ForeignPack> run() {
    for (const Description& description : descriptions(context_.files)) {
      if (best_)
        context_.notes.leftOut("second descriptions of a pack", description.file->name);
      else
        consider(description);
    }
    if (!best_) best_ = readKeyFiles(context_);
    if (!best_ && failure_) throw ImportError(*failure_);
    return std::move(best_);
  }

 private:
  void consider(const Description& description) {
    ImportNotes notes;  // of this one alone: those of a description that is passed over mislead
    try {
      auto pack = read({context_.files, context_.keyCodes, notes}, description);
      if (!pack) return;
      if (hasSounds(*pack)) {
        best_ = std::move(pack);
        context_.notes.add(notes);
      } else if (!failure_) {
        const auto& name = description.file->name;
        std::string reason = name + " describes a pack, but none of its sounds is there";
        for (const auto& note : notes.all())
          reason += "; " + note.line();
        failure_.emplace(Kind::noSounds, reason);
      }
    } catch (const ImportError& error) {
      if (!failure_) failure_ = error;
    }
  }

  const FormatContext& context_;
  std::optional<ForeignPack> best_;
  std::optional<ImportError> failure_;
};

}  // namespace

ForeignPack readForeignPack(const FormatContext& context) {
  if (auto pack = Search(context).run()) return *std::move(pack);
  if (holdsOurPack(context.files))
    throw ImportError(Kind::ours, "this is a Tobrin pack already: install it as it is");
  throw ImportError(Kind::noPack,
                    "no pack in a format that is known: no config.json, no profile.yaml, no files "
                    "named by keys");
}

}  // namespace tobrin
