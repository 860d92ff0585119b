/// The calls on PipeWire's proxies as functions. The library has them as macros with C casts, which
/// this project's warnings refuse outside system headers. The caller holds the loop's lock.
/// Thread: any.
#pragma once

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace tobrin {

inline void addListener(pw_core* core, spa_hook& hook, const pw_core_events& events, void* data) {
  pw_core_add_listener(core, &hook, &events, data);
}

inline void addListener(pw_registry* registry, spa_hook& hook, const pw_registry_events& events,
                        void* data) {
  pw_registry_add_listener(registry, &hook, &events, data);
}

inline void addListener(pw_node* node, spa_hook& hook, const pw_node_events& events, void* data) {
  pw_node_add_listener(node, &hook, &events, data);
}

inline void addListener(pw_client* client, spa_hook& hook, const pw_client_events& events,
                        void* data) {
  pw_client_add_listener(client, &hook, &events, data);
}

inline void addListener(pw_metadata* metadata, spa_hook& hook, const pw_metadata_events& events,
                        void* data) {
  pw_metadata_add_listener(metadata, &hook, &events, data);
}

/// Keeps a value under a key of the object with this id; null: takes it back.
inline void setProperty(pw_metadata* metadata, uint32_t subject, const char* key, const char* type,
                        const char* value) {
  pw_metadata_set_property(metadata, subject, key, type, value);
}

/// Null where the object is gone or not available.
inline pw_proxy* bind(pw_registry* registry, uint32_t id, const char* type, uint32_t version) {
  return static_cast<pw_proxy*>(pw_registry_bind(registry, id, type, version, 0));
}

inline pw_registry* getRegistry(pw_core* core) {
  return pw_core_get_registry(core, PW_VERSION_REGISTRY, 0);
}

/// Has the server answer with a `done` event of this number once everything asked before is done.
inline int sync(pw_core* core) {
  return pw_core_sync(core, PW_ID_CORE, 0);
}

/// For any proxy: registry, node, metadata, ...
template <typename Proxy>
void destroyProxy(Proxy* proxy) {
  pw_proxy_destroy(reinterpret_cast<pw_proxy*>(proxy));
}

}  // namespace tobrin

#pragma GCC diagnostic pop
