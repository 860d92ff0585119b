#include "Building/DemoLoudness.h"

#include "Building/Loudness.h"
#include "Engine/EngineSettings.h"
#include "Engine/OfflineRenderer.h"
#include "Engine/TypingScript.h"
#include "Packs/PackLoader.h"

namespace tobrin {
namespace {

constexpr const char* sentence =
    "tobrin plays real keyboards as you type, every key with its own take.\n";
constexpr double wordsPerMinute = 85.0;
constexpr uint64_t seed = 3;
constexpr double tailSeconds = 0.8;
constexpr double sampleRate = 48000;
constexpr float typicalStroke = 1;  // the position of the medium tier

}  // namespace

double demoLoudness(const LoadedPack& pack) {
  const auto script = typingScript(sentence, wordsPerMinute, seed,
                                   [](std::size_t, std::size_t) { return typicalStroke; });
  const auto sound = renderOffline(pack, script, EngineSettings(), tailSeconds, sampleRate);
  return integratedLoudness(sound.left, sound.right, sampleRate);
}

double demoLoudness(const std::filesystem::path& packFolder) {
  return demoLoudness(*loadPack(PackInfo::read(packFolder, false), sampleRate));
}

}  // namespace tobrin
