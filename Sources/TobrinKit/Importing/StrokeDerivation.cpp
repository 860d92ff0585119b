#include "Importing/StrokeDerivation.h"

#include <cmath>
#include <numbers>

#include "Building/TakeCollection.h"
#include "Building/TakeCutter.h"
#include "Importing/SoundLoader.h"
#include "Synth/KeySynth.h"

namespace tobrin {
namespace {

using Take = RecordedTake;

constexpr double levelExponent = 1.25;   // of strength, as `KeySynth` has it
constexpr double brightnessDb = 0.35;    // above the corner, for each dB of level
constexpr double attackDb = 0.15;        // of the first moments, for each dB of level
constexpr double cornerHz = 2000;        // contacts of keys last about half a millisecond
constexpr double attackSeconds = 0.004;  // a key's bottoming out

double linear(double decibel) {
  return std::pow(10.0, decibel / 20);
}

/// Raises or lowers what lies above the corner by `gain`, in place.
void tilt(std::vector<float>& channel, double gain) {
  // A one-pole low-pass; what it takes away is the upper part.
  const double pole = std::exp(-2 * std::numbers::pi * cornerHz / SoundLoader::rate);
  double low = 0;
  for (float& sample : channel) {
    low += (1 - pole) * (static_cast<double>(sample) - low);
    sample = static_cast<float>(low + gain * (static_cast<double>(sample) - low));
  }
}

/// Raises or lowers the first moments by up to `gain`, in place.
void sharpen(std::vector<float>& channel, double gain) {
  const double decay = std::exp(-1 / (attackSeconds * SoundLoader::rate));
  double excess = gain - 1;
  for (float& sample : channel) {
    sample = static_cast<float>(static_cast<double>(sample) * (1 + excess));
    excess *= decay;
  }
}

}  // namespace

double tierLevelDb(Tier tier) {
  const double ratio = strikeStrength(tier) / strikeStrength(Tier::medium);
  return 20 * levelExponent * std::log10(ratio);
}

RecordedTake derivedStroke(const RecordedTake& medium, Tier tier) {
  Take take = medium;
  if (tier == Tier::medium) return take;
  const double level = tierLevelDb(tier);
  for (auto* channel : {&take.left, &take.right}) {
    tilt(*channel, linear(brightnessDb * level));
    sharpen(*channel, linear(attackDb * level));
  }
  take.level = takeLevel(take, SoundLoader::rate);
  const double wanted = static_cast<double>(medium.level) * linear(level);
  if (take.level > 0) scale(take, static_cast<float>(wanted / static_cast<double>(take.level)));
  return take;
}

}  // namespace tobrin
