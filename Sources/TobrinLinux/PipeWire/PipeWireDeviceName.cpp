#include "PipeWire/PipeWireDeviceName.h"

#include <spa/utils/result.h>

#include <cstdlib>
#include <cstring>
#include <map>

#include "PipeWire/PipeWireCalls.h"
#include "PipeWire/PipeWireLoop.h"

namespace tobrin {

namespace {

constexpr std::chrono::milliseconds answerLimit{200};

/// What the server listed: who is linked to whom, and what the nodes are called.
struct Listing {
  PipeWireLoop& loop;
  uint32_t nodeId;
  uint32_t peerId = PW_ID_ANY;
  std::map<uint32_t, std::string> names;
  int awaited = 0;
  bool isComplete = false;
};

uint32_t asId(const char* text) {
  return text == nullptr ? PW_ID_ANY : static_cast<uint32_t>(std::strtoul(text, nullptr, 10));
}

void global(void* data, uint32_t id, uint32_t /*permissions*/, const char* type,
            uint32_t /*version*/, const spa_dict* properties) {
  auto& listing = *static_cast<Listing*>(data);
  if (properties == nullptr) return;
  if (std::strcmp(type, PW_TYPE_INTERFACE_Link) == 0) {
    if (asId(spa_dict_lookup(properties, PW_KEY_LINK_OUTPUT_NODE)) == listing.nodeId) {
      listing.peerId = asId(spa_dict_lookup(properties, PW_KEY_LINK_INPUT_NODE));
    }
  } else if (std::strcmp(type, PW_TYPE_INTERFACE_Node) == 0) {
    const char* name = spa_dict_lookup(properties, PW_KEY_NODE_DESCRIPTION);
    if (name == nullptr) name = spa_dict_lookup(properties, PW_KEY_NODE_NAME);
    if (name != nullptr) listing.names[id] = name;
  }
}

void done(void* data, uint32_t id, int sequence) {
  auto& listing = *static_cast<Listing*>(data);
  if (id != PW_ID_CORE || sequence != listing.awaited) return;
  listing.isComplete = true;
  listing.loop.wake();
}

}  // namespace

std::string linkedDeviceName(PipeWireLoop& loop, uint32_t nodeId) {
  Listing listing{.loop = loop, .nodeId = nodeId, .names = {}};
  pw_core_events coreEvents{};
  coreEvents.version = PW_VERSION_CORE_EVENTS;
  coreEvents.done = done;
  pw_registry_events registryEvents{};
  registryEvents.version = PW_VERSION_REGISTRY_EVENTS;
  registryEvents.global = global;

  spa_hook coreHook{};
  spa_hook registryHook{};
  pw_core* core = pw_context_connect(loop.context(), nullptr, 0);
  if (core == nullptr) return {};
  pw_registry* registry = getRegistry(core);
  addListener(core, coreHook, coreEvents, &listing);
  addListener(registry, registryHook, registryEvents, &listing);
  listing.awaited = sync(core);
  loop.wait([&] { return listing.isComplete; }, answerLimit);
  spa_hook_remove(&registryHook);
  spa_hook_remove(&coreHook);
  destroyProxy(registry);
  pw_core_disconnect(core);
  const auto name = listing.names.find(listing.peerId);
  return name == listing.names.end() ? std::string() : name->second;
}

}  // namespace tobrin
