/// Packs of other programs, composed: their sounds, their descriptions and their archives, valid
/// ones and others.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Support/AudioFiles.h"
#include "Support/TempFolder.h"

namespace tobrin::testing {

/// A struck key: 10 ms of silence, then 80 ms of a tone at `pitch` that begins noisy and fades.
inline std::vector<float> strokeSound(unsigned pitch, float peak = 0.5f, double rate = 48000) {
  std::vector<float> sound(static_cast<std::size_t>(0.01 * rate));
  uint32_t noise = pitch;
  for (std::size_t n = 0; n < static_cast<std::size_t>(0.08 * rate); ++n) {
    const double at = static_cast<double>(n) / rate;
    noise = noise * 1664525 + 1013904223;
    const double hiss = std::exp(-at / 0.003) * (static_cast<double>(noise >> 8) * 0x1p-23 - 1);
    const double tone = std::exp(-at / 0.015) * std::sin(6.2832 * (500 + 100.0 * pitch) * at);
    sound.push_back(peak * static_cast<float>(0.6 * tone + 0.4 * hiss));
  }
  return sound;
}

inline std::string strokeFile(unsigned pitch, uint32_t rate = 48000) {
  return wavFloat({.rate = rate}, strokeSound(pitch, 0.5f, rate));
}

/// `count` strokes, one each 100 ms.
inline std::string spriteFile(unsigned count, uint32_t rate = 44100) {
  std::vector<float> sprite;
  for (unsigned i = 0; i < count; ++i) {
    const auto stroke = strokeSound(i, 0.3f, rate);
    sprite.insert(sprite.end(), stroke.begin(), stroke.end());
    sprite.resize((i + 1) * rate / 10);
  }
  return wavFloat({.rate = rate}, sprite);
}

using Files = std::map<std::string, std::string>;  // content by name

inline void writeFiles(const std::filesystem::path& folder, const Files& files) {
  for (const auto& [name, content] : files) {
    std::filesystem::create_directories((folder / name).parent_path());
    std::ofstream(folder / name, std::ios::binary) << content;
  }
}

/// Writes an archive entry by entry, whatever the entries are called.
class ArchiveMaker final {
 public:
  ArchiveMaker(const std::filesystem::path& file, int format, int filter = ARCHIVE_FILTER_NONE) {
    archive_write_set_format(archive_, format);
    archive_write_add_filter(archive_, filter);
    archive_write_open_filename(archive_, file.c_str());
  }
  ~ArchiveMaker() { archive_write_free(archive_); }
  ArchiveMaker(const ArchiveMaker&) = delete;
  ArchiveMaker& operator=(const ArchiveMaker&) = delete;

  ArchiveMaker& add(const std::string& name, const std::string& content,
                    const char* link = nullptr) {
    archive_entry* const entry = archive_entry_new();
    archive_entry_copy_pathname(entry, name.c_str());
    archive_entry_set_filetype(entry, link == nullptr ? AE_IFREG : AE_IFLNK);
    archive_entry_set_perm(entry, 0644);
    if (link != nullptr) archive_entry_copy_symlink(entry, link);
    archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
    archive_write_header(archive_, entry);
    archive_write_data(archive_, content.data(), content.size());
    archive_entry_free(entry);
    return *this;
  }
  ArchiveMaker& add(const Files& files) {
    for (const auto& [name, content] : files)
      add(name, content);
    return *this;
  }

 private:
  archive* archive_ = archive_write_new();
};

/// The same six keys in each format, each with another sound: A, Space, Enter, Backspace, left
/// Shift and the right arrow. All but the sprite have a release for A.
namespace foreign {
inline Files sprite() {
  return {{"config.json", R"({"id": "1", "name": "Sprite", "key_define_type": "single",
           "sound": "sound.wav", "defines": {"30": [0, 100], "57": [100, 100], "28": [200, 100],
           "14": [300, 100], "42": [400, 100], "57421": [500, 100], "1": null}})"},
          {"sound.wav", spriteFile(6)}};
}
inline Files files() {
  return {{"config.json", R"({"id": "2", "name": "Files", "version": 2, "sound": "other.wav",
           "key_define_type": "multi", "defines": {"30": "a{0-1}.wav", "30-up": "up.wav",
           "57": "57.wav", "28": "28.wav", "14": "14.wav", "42": "42.wav", "61005": "right.wav"}})"},
          {"a0.wav", strokeFile(0)},
          {"a1.wav", strokeFile(7, 22050)},
          {"up.wav", strokeFile(20, 44100)},
          {"57.wav", strokeFile(1)},
          {"28.wav", strokeFile(2)},
          {"14.wav", strokeFile(3)},
          {"42.wav", strokeFile(4)},
          {"right.wav", strokeFile(5)},
          {"other.wav", strokeFile(6)}};
}
inline Files named() {
  return {{"config.json", R"({"config_version": "2", "name": "Named", "author": "Ada",
           "license": "CC0", "audio_file": "s.wav", "soundpack_type": "Keyboard", "definitions": {
           "KeyA": {"timing": [[0, 100], [600, 700]]}, "Space": {"timing": [[100, 200]]},
           "Enter": {"timing": [[200, 300]]}, "Backspace": {"timing": [[300, 400]]},
           "ShiftLeft": {"timing": [[400, 500]]}, "ArrowRight": {"timing": [[500, 600]]}}})"},
          {"s.wav", spriteFile(7)}};
}
inline Files keyFiles() {
  return {{"My keys/1e-1.wav", strokeFile(0)}, {"My keys/1e-0.wav", strokeFile(20)},
          {"My keys/39-1.wav", strokeFile(1)}, {"My keys/1c-1.wav", strokeFile(2)},
          {"My keys/0e-1.wav", strokeFile(3)}, {"My keys/2a-1.wav", strokeFile(4)},
          {"My keys/6a-1.wav", strokeFile(5)}, {"My keys/ff-1.wav", strokeFile(9)}};
}
inline Files profile() {
  return {{"profile.yaml",
           "profile: {name: Profile, author: Ada, device: keyboard}\n"
           "sources:\n"
           "  - {id: a, source: {press: a.wav, release: up.wav}}\n"
           "  - {id: other, source: 57.wav}\n"
           "  - {id: right, source: right.wav}\n"
           "keys:\n"
           "  default: [other]\n"
           "  other:\n"
           "    - {sound: a, keys: [a]}\n"
           "    - {sound: right, keys: [right]}\n"},
          {"COPYING", "Do as you like."},
          {"license.doc", std::string("Not a text\0", 11)},
          {"a.wav", strokeFile(0)},
          {"up.wav", strokeFile(20)},
          {"57.wav", strokeFile(1)},
          {"right.wav", strokeFile(5)}};
}
}  // namespace foreign

}  // namespace tobrin::testing
