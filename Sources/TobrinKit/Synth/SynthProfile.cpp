#include "Synth/SynthProfile.h"

#include <array>

namespace tobrin {
namespace {

SynthProfile makeCream() {
  return {.id = "cream",
          .name = "Cream",
          .kind = "Linear",
          .summary = "Smooth linear with a deep, creamy thock.",
          .modes = {{196, 0.03, 1.0},
                    {355, 0.02, 0.55},
                    {610, 0.013, 0.42},
                    {980, 0.009, 0.3},
                    {1650, 0.006, 0.22},
                    {2900, 0.004, 0.12}},
          .impact = {.center = 1500, .q = 0.7, .decay = 0.0018, .amplitude = 0.55},
          .thump = {.frequency = 105, .decay = 0.018, .amplitude = 0.35},
          .early = {},
          .ping = {},
          .brightness = 6500,
          .room = 0.8,
          .releasePitch = 1.22,
          .releaseLevel = 0.32};
}

SynthProfile makeClick() {
  return {
      .id = "blue-click",
      .name = "Blue Click",
      .kind = "Clicky",
      .summary = "Crisp clicky switch with a bright snap on the way down and up.",
      .modes = {{390, 0.016, 0.7}, {820, 0.011, 0.55}, {1580, 0.008, 0.45}, {3100, 0.005, 0.32}},
      .impact = {.center = 2800, .q = 0.9, .decay = 0.0012, .amplitude = 0.6},
      .thump = {.frequency = 130, .decay = 0.012, .amplitude = 0.22},
      .early = {{.leadMilliseconds = 7.5,
                 .burst = {.center = 4200, .q = 1.4, .decay = 0.0007, .amplitude = 0.9},
                 .tone = {{.frequency = 5200, .decay = 0.0035, .amplitude = 0.35}},
                 .onRelease = 0.55}},
      .ping = {{.frequency = 6300, .decay = 0.045, .amplitude = 0.05}},
      .brightness = 11000,
      .room = 0.7,
      .releasePitch = 1.3,
      .releaseLevel = 0.4};
}

SynthProfile makePanda() {
  return {.id = "panda",
          .name = "Panda",
          .kind = "Tactile",
          .summary = "Punchy tactile bump with a poppy, clacky finish.",
          .modes = {{300, 0.021, 0.85},
                    {560, 0.015, 0.62},
                    {990, 0.01, 0.5},
                    {2250, 0.006, 0.34},
                    {3800, 0.003, 0.15}},
          .impact = {.center = 2300, .q = 0.8, .decay = 0.0013, .amplitude = 0.62},
          .thump = {.frequency = 118, .decay = 0.014, .amplitude = 0.3},
          .early = {{.leadMilliseconds = 4.0,
                     .burst = {.center = 1800, .q = 0.8, .decay = 0.0006, .amplitude = 0.18},
                     .tone = {}}},
          .ping = {{.frequency = 5600, .decay = 0.03, .amplitude = 0.02}},
          .brightness = 9000,
          .room = 0.75,
          .releasePitch = 1.25,
          .releaseLevel = 0.36};
}

SynthProfile makeDome() {
  return {.id = "dome",
          .name = "Dome",
          .kind = "Silent tactile",
          .summary = "Muted, rounded thock with a soft rubber-dome feel.",
          .modes = {{165, 0.034, 1.0}, {285, 0.024, 0.5}, {470, 0.016, 0.32}, {790, 0.01, 0.18}},
          .impact = {.center = 900, .q = 0.6, .decay = 0.0022, .amplitude = 0.4},
          .thump = {.frequency = 95, .decay = 0.022, .amplitude = 0.4},
          .early = {},
          .ping = {},
          .brightness = 4200,
          .room = 0.9,
          .releasePitch = 1.15,
          .releaseLevel = 0.45};
}

SynthProfile makeTypewriter() {
  return {.id = "typewriter",
          .name = "Typewriter",
          .kind = "Novelty",
          .summary = "Vintage typebars striking the platen, with a bell on Return.",
          // Unlike a switch, struck steel rings longest in its higher modes.
          .modes = {{620, 0.02, 0.8},
                    {1250, 0.016, 0.6},
                    {2450, 0.035, 0.28},
                    {3700, 0.05, 0.18},
                    {5200, 0.03, 0.08}},
          .impact = {.center = 3200, .q = 0.7, .decay = 0.0016, .amplitude = 0.75},
          .thump = {.frequency = 140, .decay = 0.02, .amplitude = 0.35},
          .early = {{.leadMilliseconds = 18.0,
                     .burst = {.center = 900, .q = 0.7, .decay = 0.0015, .amplitude = 0.3},
                     .tone = {}}},
          .ping = {},
          .brightness = 12000,
          .room = 1.2,
          .releasePitch = 1.1,
          .releaseLevel = 0.25,
          .bellOnEnter = true};
}

const std::array<SynthProfile, 5>& builtIn() {
  static const std::array<SynthProfile, 5> profiles = {makeCream(), makeClick(), makePanda(),
                                                       makeDome(), makeTypewriter()};
  return profiles;
}

}  // namespace

const SynthProfile& SynthProfile::cream() {
  return builtIn()[0];
}
const SynthProfile& SynthProfile::click() {
  return builtIn()[1];
}
const SynthProfile& SynthProfile::panda() {
  return builtIn()[2];
}
const SynthProfile& SynthProfile::dome() {
  return builtIn()[3];
}
const SynthProfile& SynthProfile::typewriter() {
  return builtIn()[4];
}

std::span<const SynthProfile> SynthProfile::starterPacks() {
  return builtIn();
}

}  // namespace tobrin
