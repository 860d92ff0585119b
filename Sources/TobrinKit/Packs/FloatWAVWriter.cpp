#include "Packs/FloatWAVWriter.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "Base/AtomicFile.h"

namespace tobrin {
namespace {

/// A file in memory, as the library writes it.
struct MemoryFile {
  std::string bytes;
  std::size_t position = 0;

  static MemoryFile& of(void* context) { return *static_cast<MemoryFile*>(context); }
  static sf_count_t length(void* context) {
    return static_cast<sf_count_t>(of(context).bytes.size());
  }
  static sf_count_t tell(void* context) { return static_cast<sf_count_t>(of(context).position); }
  static sf_count_t seek(sf_count_t offset, int whence, void* context) {
    const sf_count_t base = whence == SEEK_SET   ? 0
                            : whence == SEEK_CUR ? tell(context)
                                                 : length(context);
    of(context).position = static_cast<std::size_t>(std::max<sf_count_t>(base + offset, 0));
    return tell(context);
  }
  static sf_count_t read(void*, sf_count_t, void*) { return 0; }
  static sf_count_t write(const void* data, sf_count_t count, void* context) {
    MemoryFile& file = of(context);
    const auto size = static_cast<std::size_t>(count);
    file.bytes.resize(std::max(file.bytes.size(), file.position + size));
    std::memcpy(&file.bytes[file.position], data, size);
    file.position += size;
    return count;
  }
};

constexpr std::size_t stepFrames = 4096;

void writeSamples(SNDFILE* file, std::span<const float> left, std::span<const float> right) {
  std::array<float, 2 * stepFrames> interleaved;
  for (std::size_t start = 0; start < left.size(); start += stepFrames) {
    const std::size_t frames = std::min(stepFrames, left.size() - start);
    for (std::size_t i = 0; i < frames; ++i) {
      interleaved[2 * i] = left[start + i];
      interleaved[2 * i + 1] = right[start + i];
    }
    const auto count = static_cast<sf_count_t>(frames);
    if (sf_writef_float(file, interleaved.data(), count) != count)
      throw std::runtime_error(sf_strerror(file));
  }
}

}  // namespace

void writeFloatWAV(std::span<const float> left, std::span<const float> right, int sampleRate,
                   const std::filesystem::path& file) {
  assert(left.size() == right.size() && left.size() <= maxFloatWAVFrames);
  MemoryFile memory;
  memory.bytes.reserve(8 * left.size() + 128);
  SF_VIRTUAL_IO access = {MemoryFile::length, MemoryFile::seek, MemoryFile::read, MemoryFile::write,
                          MemoryFile::tell};
  SF_INFO info{};
  info.samplerate = sampleRate;
  info.channels = 2;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> sound(
      sf_open_virtual(&access, SFM_WRITE, &info, &memory), sf_close);
  if (!sound) throw std::runtime_error(sf_strerror(nullptr));
  // The chunk of peaks carries the time of day.
  sf_command(sound.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  writeSamples(sound.get(), left, right);
  // Closing completes the header.
  if (const int error = sf_close(sound.release()); error != SF_ERR_NO_ERROR)
    throw std::runtime_error(sf_error_number(error));
  writeFileAtomically(file, memory.bytes);
}

}  // namespace tobrin
