#include "Importing/SourceLicense.h"

#include "Base/LowerCase.h"
#include "Importing/ImportError.h"

namespace tobrin {
namespace {

constexpr const char* noLicense = "The source of these sounds names no licence.";
constexpr uint64_t longestText = uint64_t{64} << 10;

bool isLicense(std::string_view name) {
  const std::string file = lowerCase(fileOf(name));
  for (const std::string_view start : {"license", "licence", "copying", "copyright", "credits"})
    if (file.starts_with(start)) return true;
  return false;
}

void append(std::string& text, const std::string& more) {
  if (!text.empty() && !more.empty()) text += "\n\n";
  text += more;
}

}  // namespace

std::string licenseOf(const ForeignPack& pack, const SourceFiles& files) {
  std::string text = pack.license;
  for (const auto& file : files.all()) {
    if (!isLicense(file.name) || file.bytes > longestText) continue;
    const std::string content = SourceFiles::read(file, longestText);
    if (content.find('\0') == std::string::npos) append(text, content);
  }
  return text.empty() ? noLicense : text;
}

bool namesLicense(const PackManifest& manifest) {
  return manifest.license && !manifest.license->empty() && *manifest.license != noLicense;
}

}  // namespace tobrin
