/// The calls on PipeWire's proxies as functions. The library has them as macros that cast the C
/// way, which this project's warnings refuse outside system headers.
#pragma once

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace tobrin {

inline void addListener(pw_core* core, spa_hook& hook, const pw_core_events& events, void* data) {
  pw_core_add_listener(core, &hook, &events, data);
}

}  // namespace tobrin

#pragma GCC diagnostic pop
