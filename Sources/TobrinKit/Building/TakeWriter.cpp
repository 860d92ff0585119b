#include "Building/TakeWriter.h"

#include <cmath>
#include <utility>

#include "Base/AtomicFile.h"
#include "Building/DemoLoudness.h"
#include "Building/TakeCollection.h"
#include "Packs/WAVWriter.h"

namespace tobrin {
namespace {

constexpr double toleratedLu = 0.2;

WrittenPack writtenWith(float correction, const std::filesystem::path& folder,
                        const std::function<void(TakeWriter&)>& write) {
  TakeWriter writer(folder, correction);
  write(writer);
  return {writer.count(), demoLoudness(folder)};
}

}  // namespace

TakeWriter::TakeWriter(std::filesystem::path folder, float correction)
    : folder_(std::move(folder)), correction_(correction) {}

std::vector<std::string> TakeWriter::write(const std::string& prefix,
                                           const std::vector<RecordedTake>& takes) {
  std::vector<std::string> names;
  for (RecordedTake take : takes) {
    scale(take, correction_);
    names.push_back(prefix + "-" + std::to_string(names.size() + 1) + ".wav");
    writeWAV(take.left, take.right, static_cast<int64_t>(recordedPackRate), folder_ / names.back());
    ++count_;
  }
  return names;
}

std::map<std::string, std::vector<std::string>> TakeWriter::write(const std::string& prefix,
                                                                  const RecordedTiers& tiers) {
  std::map<std::string, std::vector<std::string>> names;
  for (const auto& [tier, takes] : tiers) {
    const std::string tierName(name(tier));
    std::string tierPrefix = prefix;
    names[tierName] = write(tierPrefix.append("-").append(tierName), takes);
  }
  return names;
}

void TakeWriter::write(const PackManifest& manifest) const {
  writeFileAtomically(folder_ / PackManifest::fileName, manifest.toJson());
}

WrittenPack writeLevelled(const std::filesystem::path& folder,
                          const std::function<void(TakeWriter&)>& write) {
  const WrittenPack written = writtenWith(1.0f, folder, write);
  const double away = targetLoudness - written.loudness;
  if (!std::isfinite(written.loudness) || std::abs(away) <= toleratedLu) return written;
  return writtenWith(static_cast<float>(std::pow(10.0, away / 20)), folder, write);
}

}  // namespace tobrin
