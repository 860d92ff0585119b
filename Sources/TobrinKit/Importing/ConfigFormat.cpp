// Packs described by a "config.json": the old kind, with the start and the length of each key's
// part of one file, or a file a key; and the new kind, with starts and ends under the names that
// the web has for keys.
#include <algorithm>
#include <charconv>
#include <cmath>

#include "Base/LowerCase.h"
#include "Base/ReadJson.h"
#include "Importing/FormatReaders.h"
#include "Importing/ImportError.h"
#include "Importing/LenientJson.h"
#include "Importing/PackAssembly.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;
using Sounds = std::vector<SoundRef>;

/// A text of the document, empty where there is none.
std::string text(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

/// A number, also where it was written as a text.
std::optional<double> number(const Json& value) {
  if (value.is_number()) return value.get<double>();
  if (!value.is_string()) return std::nullopt;
  const std::string digits = value.get<std::string>();
  double result = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), result);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return result;
}

/// Two numbers, in milliseconds.
std::optional<std::pair<double, double>> pairOf(const Json& value) {
  if (!value.is_array() || value.size() < 2) return std::nullopt;
  const auto first = number(value[0]);
  const auto second = number(value[1]);
  if (!first || !second || !std::isfinite(*first) || !std::isfinite(*second)) return std::nullopt;
  return std::pair(*first, *second);
}

ForeignPack described(const Json& config) {
  ForeignPack pack;
  pack.id = text(config, "id");
  pack.name = text(config, "name");
  pack.summary = text(config, "description");
  pack.author = text(config, "author");
  pack.license = text(config, "license");
  return pack;
}

/// What the description says about one key; an absent list is one that could not be used.
struct KeyEntry {
  std::optional<Sounds> down;
  std::optional<Sounds> up;
};

void addKeys(ForeignPack& pack, const std::map<uint16_t, KeyEntry>& entries, ImportNotes& notes) {
  for (const auto& [code, entry] : entries) {
    if (entry.down)
      pack.keys[code] = {*entry.down, entry.up.value_or(Sounds())};
    else if (entry.up)
      notes.leftOut("release sounds of keys without a press sound");
  }
}

class OldConfig final {
 public:
  OldConfig(const PackAssembly& assembly, const Json& config)
      : assembly_(assembly), config_(config) {}

  ForeignPack read() {
    ForeignPack pack = described(config_);
    const auto version = config_.find("version");
    const bool isSecond = version != config_.end() && number(*version) == 2.0;
    pack.format = isSecond ? "config.json, version 2" : "config.json, version 1";
    readKeys();
    if (isSecond) readFallbacks(pack);
    addKeys(pack, entries_, assembly_.notes());
    return pack;
  }

 private:
  struct Line {
    std::string name;
    bool isUp = false;
    ForeignKeys::Key key;
    const Json* value = nullptr;
  };

  /// The lines of "defines", a key's usual number before its other ones.
  std::vector<Line> lines() const {
    constexpr std::string_view release = "-up";
    std::vector<Line> lines;
    const auto defines = config_.find("defines");
    if (defines == config_.end() || !defines->is_object()) return lines;
    for (const auto& [name, value] : defines->items()) {
      Line line{name, name.ends_with(release), {}, &value};
      unsigned digits = 0;
      const std::size_t length = name.size() - (line.isUp ? release.size() : 0);
      const auto [end, error] = std::from_chars(name.data(), name.data() + length, digits);
      const bool isNumber = error == std::errc() && end == name.data() + length;
      const auto key = isNumber ? ForeignKeys::numbered(digits) : std::nullopt;
      if (key) {
        line.key = *key;
        lines.push_back(std::move(line));
      } else {
        (void)assembly_.key(std::nullopt, name);  // which says so
      }
    }
    std::ranges::stable_sort(lines, {}, [](const Line& line) { return line.key.isSecondary; });
    return lines;
  }

  void readKeys() {
    for (const Line& line : lines()) {
      const auto code = assembly_.key(line.key.kernelKey, line.name);
      if (!code) continue;
      auto sounds = soundsOf(*line.value, line.name);
      if (!sounds) continue;
      KeyEntry& entry = entries_[*code];
      auto& list = line.isUp ? entry.up : entry.down;
      // Null is silence; another number of the same key may still have a sound.
      if (!list || list->empty()) list = std::move(sounds);
    }
    for (const auto& [code, entry] : entries_)
      if (entry.down && entry.down->empty()) ++silent_;
    if (silent_ > 0)
      assembly_.notes().leftOut(std::to_string(silent_) + " keys that the pack keeps silent");
  }

  std::optional<Sounds> soundsOf(const Json& value, const std::string& name) {
    if (value.is_null()) return Sounds();
    Sounds sounds;
    if (value.is_string()) {
      sounds = assembly_.sounds(value.get<std::string>());
    } else if (const auto times = pairOf(value)) {
      if (const auto* file = sprite())
        sounds = {{file, SoundRef::Part{times->first, times->second}}};
    } else {
      assembly_.notes().leftOut("sounds that are written as nothing known", name);
    }
    return sounds.empty() ? std::nullopt : std::optional(std::move(sounds));
  }

  /// The file that parts are cut from.
  const SourceFiles::File* sprite() {
    if (!sprite_) sprite_ = assembly_.file(text(config_, "sound"));
    return *sprite_;
  }

  /// The second version has sounds for the keys that it does not name.
  void readFallbacks(ForeignPack& pack) {
    if (const std::string file = text(config_, "sound"); !file.empty())
      pack.others.down = assembly_.sounds(file);
    if (const std::string file = text(config_, "soundup"); !file.empty())
      pack.others.up = assembly_.sounds(file);
    for (auto& [code, entry] : entries_)
      if (entry.down && !entry.down->empty() && !entry.up) entry.up = pack.others.up;
  }

  const PackAssembly& assembly_;
  const Json& config_;
  std::optional<const SourceFiles::File*> sprite_;  // looked for once
  std::map<uint16_t, KeyEntry> entries_;
  std::size_t silent_ = 0;
};

class NewConfig final {
 public:
  NewConfig(const PackAssembly& assembly, const Json& config)
      : assembly_(assembly), config_(config) {}

  ForeignPack read() {
    if (lowerCase(text(config_, "soundpack_type")) == "mouse")
      throw ImportError(ImportError::Kind::mouse, "this pack is for mouse buttons, not for keys");
    ForeignPack pack = described(config_);
    pack.format = "config.json, named keys";
    for (const auto& [name, value] : config_.at("definitions").items()) {
      const auto code = assembly_.key(ForeignKeys::named(name), name);
      if (code) readKey(name, value, entries_[*code]);
    }
    addKeys(pack, entries_, assembly_.notes());
    return pack;
  }

 private:
  void readKey(const std::string& name, const Json& value, KeyEntry& entry) {
    if (value.is_null()) entry.down = Sounds();
    if (!value.is_object()) return;
    std::string fileName = text(value, "audio_file");
    if (fileName.empty()) fileName = text(config_, "audio_file");
    const auto* file = assembly_.file(fileName);
    if (file == nullptr) return;
    const auto timing = value.find("timing");
    if (timing == value.end() || !timing->is_array() || timing->empty()) {
      entry.down = {{file, std::nullopt}};
      return;
    }
    entry.down = between((*timing)[0], file, name);
    if (timing->size() > 1) entry.up = between((*timing)[1], file, name);
  }

  std::optional<Sounds> between(const Json& value, const SourceFiles::File* file,
                                const std::string& name) const {
    const auto times = pairOf(value);
    if (times) return Sounds{{file, SoundRef::Part{times->first, times->second - times->first}}};
    assembly_.notes().leftOut("sounds that are written as nothing known", name);
    return std::nullopt;
  }

  const PackAssembly& assembly_;
  const Json& config_;
  std::map<uint16_t, KeyEntry> entries_;
};

}  // namespace

std::optional<ForeignPack> readConfig(const FormatContext& context, std::string_view name,
                                      std::string_view text) {
  const Json config = readLenientJson(text);
  if (!config.is_object()) return std::nullopt;
  const PackAssembly assembly(context, folderOf(name));
  const auto isObject = [&](const char* key) {
    return config.contains(key) && config[key].is_object();
  };
  if (isObject("definitions")) return NewConfig(assembly, config).read();
  if (isObject("defines") || config.contains("key_define_type"))
    return OldConfig(assembly, config).read();
  return std::nullopt;
}

}  // namespace tobrin
