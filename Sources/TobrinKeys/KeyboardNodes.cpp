#include "KeyboardNodes.h"

#include <systemd/sd-device.h>

#include <memory>

namespace tobrin {
namespace {

struct Unref {
  void operator()(sd_device_enumerator* list) const { sd_device_enumerator_unref(list); }
};

std::string property(sd_device* device, const char* name) {
  const char* value = nullptr;
  return sd_device_get_property_value(device, name, &value) < 0 ? "" : value;
}

bool belongsTo(sd_device* device, const std::string& seat) {
  const std::string own = property(device, "ID_SEAT");
  return seat == (own.empty() ? "seat0" : own);
}

}  // namespace

KeyboardNodes keyboardNodes(const std::string& seat) {
  KeyboardNodes result;
  sd_device_enumerator* all = nullptr;
  if (sd_device_enumerator_new(&all) < 0) return result;
  const std::unique_ptr<sd_device_enumerator, Unref> owner(all);
  sd_device_enumerator_allow_uninitialized(all);
  sd_device_enumerator_add_match_subsystem(all, "input", 1);
  sd_device_enumerator_add_match_sysname(all, "event*");
  for (auto* device = sd_device_enumerator_get_device_first(all); device != nullptr;
       device = sd_device_enumerator_get_device_next(all)) {
    const char* node = nullptr;
    if (sd_device_get_devname(device, &node) < 0) continue;
    if (sd_device_get_is_initialized(device) <= 0) {
      result.isComplete = false;
    } else if (belongsTo(device, seat) && property(device, "ID_INPUT_KEY") == "1") {
      result.nodes.emplace_back(node);
    }
  }
  return result;
}

}  // namespace tobrin
