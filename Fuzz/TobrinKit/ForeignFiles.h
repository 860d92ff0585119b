/// A source with a few files, for fuzzers of what describes them.
#pragma once

#include <vector>

#include "FuzzInput.h"
#include "Importing/FormatReaders.h"
#include "Importing/SoundCutting.h"

namespace tobrin::fuzz {

inline std::optional<uint16_t> anyCode(uint32_t kernelKey) {
  return kernelKey < 256 ? std::optional(static_cast<uint16_t>(kernelKey)) : std::nullopt;
}

inline SourceFiles filesNamed(std::initializer_list<const char*> names) {
  std::vector<SourceFiles::File> files;
  for (const char* name : names)
    files.push_back({name, name, 1});
  return SourceFiles(std::move(files));
}

/// Cuts every part that a pack names out of a short sound: any numbers must do.
inline void cutAll(const ForeignPack& pack) {
  static const SampleBuffer sound(std::vector<float>(4800, 0.5f), {}, 48000);
  ImportNotes notes;
  for (const auto& [code, key] : pack.keys) {
    for (const SoundRef& ref : key.down) {
      const auto take = cutSound(sound, ref, notes);
      require(!take || (!take->left.empty() && take->left.size() <= sound.frames() + 100));
      for (const SoundRef& up : key.up)
        if (ref.part && up.part) (void)belongsToPress(sound, *ref.part, *up.part);
    }
  }
}

}  // namespace tobrin::fuzz
