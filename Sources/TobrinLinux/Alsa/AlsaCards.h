/// The machine's sound cards, and what their outputs are called here: by the card's id, which stays
/// the same when cards get other numbers. Thread: any.
#pragma once

#include <string>
#include <vector>

#include "Engine/SoundOutputs.h"

typedef struct _snd_pcm snd_pcm_t;  // NOLINT(*-reserved-identifier,cert-dcl*): the library's name

namespace tobrin {

/// Every output of every card. The ids are names that ALSA opens.
[[nodiscard]] std::vector<SoundOutput> alsaCardOutputs();

/// The id of the card's output that this opened device plays on; empty where it is none or not
/// known.
[[nodiscard]] std::string alsaOutputOf(snd_pcm_t* pcm);

}  // namespace tobrin
