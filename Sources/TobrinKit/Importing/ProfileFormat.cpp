// Packs described by a "profile.yaml": sources by name, and the keys that play them.
#include <yaml-cpp/yaml.h>

#include <algorithm>

#include "Base/LowerCase.h"
#include "Importing/FormatReaders.h"
#include "Importing/ImportError.h"
#include "Importing/PackAssembly.h"

namespace tobrin {
namespace {

std::string text(const YAML::Node& node) {
  return node && node.IsScalar() ? node.Scalar() : "";
}

/// The texts of a list, or the one that stands in its place.
std::vector<std::string> texts(const YAML::Node& node) {
  std::vector<std::string> result;
  if (!node) return result;
  if (node.IsScalar()) result.push_back(node.Scalar());
  if (node.IsSequence())
    for (const auto& entry : node)
      result.push_back(text(entry));
  return result;
}

void append(std::vector<SoundRef>& list, const std::vector<SoundRef>& more) {
  list.insert(list.end(), more.begin(), more.end());
}

class Profile final {
 public:
  Profile(const PackAssembly& assembly, const YAML::Node& document)
      : assembly_(assembly), document_(document) {}

  ForeignPack read() {
    const YAML::Node profile = document_["profile"];
    if (lowerCase(text(profile["device"])) == "mouse")
      throw ImportError(ImportError::Kind::mouse, "this pack is for mouse buttons, not for keys");
    ForeignPack pack;
    pack.format = "profile.yaml";
    pack.name = text(profile["name"]);
    pack.summary = text(profile["description"]);
    pack.author = text(profile["author"]);
    pack.license = text(profile["license"]);
    readSources();
    readKeys(pack);
    return pack;
  }

 private:
  void readSources() {
    for (const auto& each : document_["sources"]) {
      if (!each.IsMap()) continue;
      const YAML::Node source = each["source"];
      KeySounds& sounds = sources_[text(each["id"])];
      const bool isPair = source && source.IsMap();
      sounds.down = soundsOf(isPair ? source["press"] : source);
      if (isPair) sounds.up = soundsOf(source["release"]);
    }
  }

  std::vector<SoundRef> soundsOf(const YAML::Node& file) const {
    const std::string name = text(file);
    return name.empty() ? std::vector<SoundRef>() : assembly_.sounds(name);
  }

  void readKeys(ForeignPack& pack) {
    const YAML::Node keys = document_["keys"];
    pack.others = named(keys["default"]);
    const YAML::Node other = keys["other"];
    if (!other || !other.IsSequence()) return;
    for (const auto& each : other) {
      if (!each.IsMap()) continue;
      const KeySounds sounds = named(each["sound"]);
      for (const std::string& name : texts(each["keys"])) {
        const auto code = assembly_.key(ForeignKeys::named(name), name);
        if (code && !sounds.down.empty()) pack.keys[*code] = sounds;
      }
    }
  }

  KeySounds named(const YAML::Node& ids) const {
    KeySounds sounds;
    for (const std::string& id : texts(ids)) {
      const auto found = sources_.find(id);
      if (found == sources_.end()) {
        assembly_.notes().leftOut("sources that are not there", id);
        continue;
      }
      append(sounds.down, found->second.down);
      append(sounds.up, found->second.up);
    }
    return sounds;
  }

  const PackAssembly& assembly_;
  const YAML::Node& document_;
  std::map<std::string, KeySounds> sources_;
};

bool isProfile(const YAML::Node& document) {
  return document.IsMap() && document["profile"] && document["profile"].IsMap() &&
         document["sources"] && document["sources"].IsSequence() && document["keys"] &&
         document["keys"].IsMap();
}

}  // namespace

std::optional<ForeignPack> readProfile(const FormatContext& context, std::string_view name,
                                       std::string_view text) {
  try {
    const YAML::Node document = YAML::Load(std::string(text));
    if (!isProfile(document)) return std::nullopt;
    return Profile(PackAssembly(context, folderOf(name)), document).read();
  } catch (const YAML::Exception& error) {
    throw ImportError(ImportError::Kind::unreadable, std::string(name) + ": " + error.what());
  }
}

}  // namespace tobrin
