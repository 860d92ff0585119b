#include "TobrinMixer.h"

#include <stddef.h>

/* The same declarations serve C: called from VoiceTests.cpp. */
bool startVoiceFromC(TBMixer* mixer, const float* samples, uint32_t frames);

bool startVoiceFromC(TBMixer* mixer, const float* samples, uint32_t frames) {
  const TBCommand command = {.type = TB_COMMAND_START,
                             .tag = 1,
                             .layers = {{.left = samples, .right = NULL, .frames = frames}},
                             .weights = {1.0F},
                             .rate = 1.0F};
  return tb_mixer_push(mixer, &command);
}
