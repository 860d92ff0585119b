/// What all readers of packs share: they find keys and files by name, and note those that are
/// missing. Lives for one reading. Thread: any, one at a time.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Importing/FormatReaders.h"

namespace tobrin {

class PackAssembly final {
 public:
  /// `folder` is where the description lies.
  PackAssembly(const FormatContext& context, std::string_view folder)
      : context_(context), folder_(folder) {}

  /// A file of the pack; null, with a note, where there is none.
  [[nodiscard]] const SourceFiles::File* file(std::string_view name) const;

  /// Whole files; "{0-4}" in a name stands for all of 0 to 4 that there are.
  [[nodiscard]] std::vector<SoundRef> sounds(std::string_view name) const;

  /// Our code of a key, which notes call `name`; nothing, with a note, where no such key has a
  /// sound.
  [[nodiscard]] std::optional<uint16_t> key(std::optional<uint16_t> kernelKey,
                                            const std::string& name) const;

  [[nodiscard]] ImportNotes& notes() const { return context_.notes; }

 private:
  FormatContext context_;
  std::string_view folder_;
};

/// Whether any key of a pack has a sound.
[[nodiscard]] bool hasSounds(const ForeignPack& pack);

}  // namespace tobrin
