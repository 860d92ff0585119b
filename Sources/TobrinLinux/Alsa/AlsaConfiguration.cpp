#include "Alsa/AlsaConfiguration.h"

#include <alsa/asoundlib.h>

#include <string_view>

#include "Alsa/QuietLibraries.h"

namespace tobrin {

namespace {

constexpr int deepestNesting = 8;  // a configuration may well name itself

bool leadsTo(std::string_view type, snd_config_t* top, const char* name, int depth);

/// `device` is a device's definition, or its name.
bool isOfType(std::string_view type, snd_config_t* top, snd_config_t* device, int depth) {
  const char* text = nullptr;
  if (snd_config_get_string(device, &text) == 0) return leadsTo(type, top, text, depth + 1);
  snd_config_t* field = nullptr;
  if (snd_config_search(device, "type", &field) == 0 && snd_config_get_string(field, &text) == 0 &&
      type == text) {
    return true;
  }
  return snd_config_search(device, "slave.pcm", &field) == 0 &&
         isOfType(type, top, field, depth + 1);
}

bool leadsTo(std::string_view type, snd_config_t* top, const char* name, int depth) {
  if (depth > deepestNesting) return false;
  snd_config_t* device = nullptr;
  if (snd_config_search_definition(top, "pcm", name, &device) < 0) return false;
  const bool found = isOfType(type, top, device, depth);
  snd_config_delete(device);
  return found;
}

}  // namespace

void readAlsaConfigurationAgain() {
  snd_config_update_free_global();
}

bool alsaDeviceLeadsTo(const std::string& type, const std::string& name) {
  quietenAlsa();
  snd_config_t* top = nullptr;
  if (snd_config_update_ref(&top) < 0) return false;
  const bool found = leadsTo(type, top, name.c_str(), 0);
  snd_config_unref(top);
  return found;
}

}  // namespace tobrin
