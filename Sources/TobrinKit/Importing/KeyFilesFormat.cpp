// Packs without a description: "1e-1.wav" is the press of the kernel's key 0x1e, "1e-0.wav" its
// release.
#include <charconv>

#include "Importing/FormatReaders.h"
#include "Importing/PackAssembly.h"

namespace tobrin {
namespace {

constexpr unsigned mouse = 0xFF;

struct KeyFile {
  unsigned key = 0;
  bool isPress = false;
};

std::optional<KeyFile> keyFile(std::string_view name) {
  const std::string_view stem = name.substr(0, name.rfind('.'));
  const auto dash = stem.find('-');
  if (dash == 0 || dash > 3 || dash + 2 != stem.size()) return std::nullopt;
  const char action = stem[dash + 1];
  KeyFile file{0, action == '1'};
  const auto [end, error] = std::from_chars(stem.data(), stem.data() + dash, file.key, 16);
  const bool isKey = error == std::errc() && end == stem.data() + dash;
  return isKey && (action == '0' || action == '1') ? std::optional(file) : std::nullopt;
}

/// The folder in which most such files lie.
std::string_view fullestFolder(const SourceFiles& files) {
  std::map<std::string_view, std::size_t> counts;
  for (const auto& file : files.all())
    if (keyFile(fileOf(file.name))) ++counts[folderOf(file.name)];
  std::string_view fullest;
  std::size_t most = 0;
  for (const auto& [folder, count] : counts) {
    if (count <= most) continue;
    most = count;
    fullest = folder;
  }
  return fullest;
}

}  // namespace

std::optional<ForeignPack> readKeyFiles(const FormatContext& context) {
  const std::string_view folder = fullestFolder(context.files);
  const PackAssembly assembly(context, folder);
  ForeignPack pack;
  pack.format = "two files a key";
  pack.name = fileOf(folder);
  for (const auto& file : context.files.all()) {
    const auto named = keyFile(fileOf(file.name));
    if (folderOf(file.name) != folder || !named || named->key == mouse) continue;
    const auto code = assembly.key(static_cast<uint16_t>(named->key), file.name);
    if (!code) continue;
    KeySounds& key = pack.keys[*code];
    auto& list = named->isPress ? key.down : key.up;
    if (list.empty()) list.push_back({&file, std::nullopt});
  }
  std::erase_if(pack.keys, [](const auto& key) { return key.second.down.empty(); });
  return pack.keys.empty() ? std::nullopt : std::optional(pack);
}

}  // namespace tobrin
