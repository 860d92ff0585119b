#include "Alsa/AlsaCards.h"

#include <alsa/asoundlib.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "Alsa/QuietLibraries.h"

namespace tobrin {

namespace {

struct Close {
  void operator()(snd_ctl_t* card) const { snd_ctl_close(card); }
};
using Card = std::unique_ptr<snd_ctl_t, Close>;

Card openCard(int number) {
  snd_ctl_t* card = nullptr;
  snd_ctl_open(&card, ("hw:" + std::to_string(number)).c_str(), SND_CTL_NONBLOCK);
  return Card(card);
}

/// A card's first output is shared with other programs where the card needs help for that.
std::string outputId(const std::string& cardId, unsigned device) {
  if (device == 0) return "sysdefault:CARD=" + cardId;
  return "plughw:CARD=" + cardId + ",DEV=" + std::to_string(device);
}

/// The name of the card's device for people; empty where it plays nothing.
std::string nameOfDevice(snd_ctl_t* card, int device) {
  snd_pcm_info_t* info = nullptr;
  snd_pcm_info_alloca(&info);
  snd_pcm_info_set_device(info, static_cast<unsigned>(device));
  snd_pcm_info_set_subdevice(info, 0);
  snd_pcm_info_set_stream(info, SND_PCM_STREAM_PLAYBACK);
  return snd_ctl_pcm_info(card, info) < 0 ? "" : snd_pcm_info_get_name(info);
}

/// The card's id and its name for people.
std::pair<std::string, std::string> namesOf(snd_ctl_t* card) {
  snd_ctl_card_info_t* info = nullptr;
  snd_ctl_card_info_alloca(&info);
  if (snd_ctl_card_info(card, info) < 0) return {};
  return {snd_ctl_card_info_get_id(info), snd_ctl_card_info_get_name(info)};
}

void addOutputs(int number, std::vector<SoundOutput>& outputs) {
  const Card card = openCard(number);
  if (card == nullptr) return;
  const auto [id, name] = namesOf(card.get());
  for (int device = -1; snd_ctl_pcm_next_device(card.get(), &device) == 0 && device >= 0;) {
    const std::string output = nameOfDevice(card.get(), device);
    if (output.empty()) continue;
    outputs.push_back({.id = outputId(id, static_cast<unsigned>(device)),
                       .name = std::string(name).append(", ").append(output)});
  }
}

}  // namespace

std::vector<SoundOutput> alsaCardOutputs() {
  quietenAlsa();
  std::vector<SoundOutput> outputs;
  for (int card = -1; snd_card_next(&card) == 0 && card >= 0;)
    addOutputs(card, outputs);
  return outputs;
}

std::string alsaOutputOf(snd_pcm_t* pcm) {
  snd_pcm_info_t* info = nullptr;
  snd_pcm_info_alloca(&info);
  if (snd_pcm_info(pcm, info) < 0 || snd_pcm_info_get_card(info) < 0) return {};
  const Card card = openCard(snd_pcm_info_get_card(info));
  if (card == nullptr) return {};
  return outputId(namesOf(card.get()).first, snd_pcm_info_get_device(info));
}

}  // namespace tobrin
