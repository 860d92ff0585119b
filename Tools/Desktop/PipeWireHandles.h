/// What the sound server's clients share: owners of its objects, so that errors and reconnecting
/// leave nothing open, and the format of their streams. Thread: any.
#pragma once

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <memory>

#include "PipeWire/ClientConfiguration.h"
#include "StreamFormat.h"

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
  return PipeWireHandle<pw_context>(pw_context_new(
      pw_main_loop_get_loop(loop),
      pw_properties_new(PW_KEY_CONFIG_NAME, realTimeClientConfiguration(), nullptr), 0));
}

/// Asks for interleaved stereo floats, to be processed on the real-time thread. Returns false where
/// the server refuses.
inline bool connectStereo(pw_stream* stream, pw_direction direction) {
  std::array<uint8_t, 1024> memory{};
  spa_pod_builder builder =
      SPA_POD_BUILDER_INIT(memory.data(), static_cast<uint32_t>(memory.size()));
  spa_audio_info_raw format{};
  format.format = SPA_AUDIO_FORMAT_F32;
  format.rate = static_cast<uint32_t>(sampleRate);
  format.channels = channelCount;
  format.position[0] = SPA_AUDIO_CHANNEL_FL;
  format.position[1] = SPA_AUDIO_CHANNEL_FR;
  const spa_pod* parameter = spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format);
  const auto flags = static_cast<pw_stream_flags>(
      PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
  return pw_stream_connect(stream, direction, PW_ID_ANY, flags, &parameter, 1) == 0;
}

/// Leaves the ending signals to the loop's own signal sources. To be called before there are other
/// threads, which would take the signals and end the program.
inline void blockEndingSignals() {
  sigset_t ending;
  sigemptyset(&ending);
  sigaddset(&ending, SIGINT);
  sigaddset(&ending, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ending, nullptr);
}

}  // namespace tobrin::testing
