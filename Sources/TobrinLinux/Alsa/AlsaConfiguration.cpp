#include "Alsa/AlsaConfiguration.h"

#include <alsa/asoundlib.h>

#include <string_view>

namespace tobrin {

namespace {

constexpr int deepestNesting = 8;  // a configuration may well name itself

bool leadsToPipeWire(snd_config_t* top, const char* name, int depth);

/// `device` is a device's definition, or its name.
bool isPipeWire(snd_config_t* top, snd_config_t* device, int depth) {
  const char* text = nullptr;
  if (snd_config_get_string(device, &text) == 0) return leadsToPipeWire(top, text, depth + 1);
  snd_config_t* field = nullptr;
  if (snd_config_search(device, "type", &field) == 0 && snd_config_get_string(field, &text) == 0 &&
      std::string_view(text) == "pipewire") {
    return true;
  }
  return snd_config_search(device, "slave.pcm", &field) == 0 && isPipeWire(top, field, depth + 1);
}

bool leadsToPipeWire(snd_config_t* top, const char* name, int depth) {
  if (depth > deepestNesting) return false;
  snd_config_t* device = nullptr;
  if (snd_config_search_definition(top, "pcm", name, &device) < 0) return false;
  const bool found = isPipeWire(top, device, depth);
  snd_config_delete(device);
  return found;
}

}  // namespace

bool alsaDeviceLeadsToPipeWire(const std::string& name) {
  snd_config_t* top = nullptr;
  if (snd_config_update_ref(&top) < 0) return false;
  const bool found = leadsToPipeWire(top, name.c_str(), 0);
  snd_config_unref(top);
  return found;
}

}  // namespace tobrin
