/// The real-time voice mixer: 32 voices of up to four sample layers, fed through a lock-free
/// single-producer, single-consumer ring of commands.
///
/// One producer calls `tb_mixer_push` and `tb_mixer_forget`, one consumer, the render thread,
/// `tb_mixer_render`. Nothing here allocates, locks, logs or makes a system call after
/// `tb_mixer_create`. Compiles as C11 and as C++20. Thread: any.
#ifndef TOBRIN_MIXER_H
#define TOBRIN_MIXER_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
#define TB_NOEXCEPT noexcept
extern "C" {
#else
#define TB_NOEXCEPT
#endif

enum {
  TB_LAYERS = 4,           ///< layers of one voice, one per force tier
  TB_VOICES = 32,          ///< voices sounding at once; the oldest is taken over beyond that
  TB_RING_CAPACITY = 512,  ///< commands waiting for the next render
};

/// What a command asks for; other values are ignored.
enum {
  TB_COMMAND_START = 1,        ///< start a voice
  TB_COMMAND_SET_WEIGHTS = 2,  ///< crossfade the voice with this tag to new layer weights
  TB_COMMAND_RELEASE_ALL = 3,  ///< fade every voice out over 6 ms
};

/// One layer: a view of decoded audio that the mixer neither owns nor frees. It must stay alive
/// and unchanged until every voice that plays it has ended.
typedef struct TBSample {
  const float* left;   ///< left or only channel, `frames` samples; null marks an empty layer
  const float* right;  ///< right channel, `frames` samples; null means mono
  uint32_t frames;
} TBSample;

/// One command, copied whole. Producers start from an all-zero record.
typedef struct TBCommand {
  uint32_t type;               ///< one of `TB_COMMAND_...`
  uint32_t tag;                ///< the voice's identity, chosen by the producer, never 0
  TBSample layers[TB_LAYERS];  ///< start only; unused entries all zero
  float weights[TB_LAYERS];    ///< linear gain of each layer
  float pan;                   ///< start only; -1 (left) to +1 (right), clamped
  float rate;                  ///< start only; playback rate, strictly within 0.25 to 4, else 1
} TBCommand;

typedef struct TBMixer TBMixer;

/// Creates a mixer. `sampleRate` in frames per second (<= 0 stands for 48000), `crossfadeMs` is the
/// length of a weight change (<= 0 stands for 4 ms). Returns null when memory is refused.
TBMixer* tb_mixer_create(float sampleRate, float crossfadeMs) TB_NOEXCEPT;

/// Frees a mixer (null is allowed). No other call may be running or follow.
void tb_mixer_destroy(TBMixer* mixer) TB_NOEXCEPT;

/// Adds one command to the ring. For the one producer; never blocks, never allocates.
/// Returns false when all 512 slots are taken; the command is then lost and counted as dropped.
bool tb_mixer_push(TBMixer* mixer, const TBCommand* command) TB_NOEXCEPT;

/// Ends every voice without a fade and drops the commands that wait, before the next render does
/// anything else: for an output that was silent for so long that its sounds now come too late. No
/// sample that was pushed before is read any more. For the one producer; never blocks.
void tb_mixer_forget(TBMixer* mixer) TB_NOEXCEPT;

/// Sets the master gain, linear, clamped to [0, 4]; reached across the next rendered block.
void tb_mixer_set_master(TBMixer* mixer, float gain) TB_NOEXCEPT;

/// The master gain last set (1 at creation).
float tb_mixer_get_master(const TBMixer* mixer) TB_NOEXCEPT;

/// Applies the queued commands, then overwrites `frames` samples of each channel with the mix.
/// For the one consumer. The output is mono (half the sum of both channels) when `right` is
/// null or equal to `left`. Any frame count works; 0 applies the commands alone.
void tb_mixer_render(TBMixer* mixer, float* left, float* right, uint32_t frames) TB_NOEXCEPT;

uint32_t tb_mixer_active_voices(const TBMixer* mixer)
    TB_NOEXCEPT;  ///< sounding after the last block
uint64_t tb_mixer_started_voices(const TBMixer* mixer) TB_NOEXCEPT;    ///< since creation
uint64_t tb_mixer_rendered_frames(const TBMixer* mixer) TB_NOEXCEPT;   ///< since creation
uint64_t tb_mixer_dropped_commands(const TBMixer* mixer) TB_NOEXCEPT;  ///< refused by a full ring

#ifdef __cplusplus
}
#endif

#endif
