/// Owners of the sound server's client objects, so that errors and reconnecting leave nothing
/// behind.
#pragma once

#include <pipewire/pipewire.h>

#include <csignal>
#include <memory>

namespace tobrin::testing {

struct PipeWireDelete {
  void operator()(pw_main_loop* loop) const { pw_main_loop_destroy(loop); }
  void operator()(pw_context* context) const { pw_context_destroy(context); }
  void operator()(pw_core* core) const { pw_core_disconnect(core); }
  void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
};

template <typename T>
using PipeWireHandle = std::unique_ptr<T, PipeWireDelete>;

/// A context whose streams run on a real-time thread, which the default client configuration does
/// not give.
inline PipeWireHandle<pw_context> realTimeContext(pw_main_loop* loop) {
  return PipeWireHandle<pw_context>(
      pw_context_new(pw_main_loop_get_loop(loop),
                     pw_properties_new(PW_KEY_CONFIG_NAME, "client-rt.conf", nullptr), 0));
}

/// Leaves the ending signals to the loop's own signal sources. To be called before there are other
/// threads, which would take them with the usual effect.
inline void blockEndingSignals() {
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
}

}  // namespace tobrin::testing
