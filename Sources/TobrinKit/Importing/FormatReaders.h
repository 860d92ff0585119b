/// The formats of other programs that packs come in. Each reader takes one description and says
/// what it could not use; none opens a sound. Thread: any.
#pragma once

#include <optional>
#include <string_view>

#include "Importing/ForeignKeys.h"
#include "Importing/ForeignPack.h"
#include "Importing/ImportNotes.h"
#include "Importing/SourceFiles.h"

namespace tobrin {

/// What the readers share; all of it outlives the packs that they return.
struct FormatContext {
  const SourceFiles& files;
  KernelKeyCodes keyCodes;
  ImportNotes& notes;
};

/// Finds the description, by its content, and reads it. Throws `ImportError`.
ForeignPack readForeignPack(const FormatContext& context);

/// JSON descriptions, old ("defines") and new ("definitions"); nothing where the text is neither.
/// `name` is the file's; sounds are looked for beside it. Throws `ImportError` and `JsonError`.
std::optional<ForeignPack> readConfig(const FormatContext& context, std::string_view name,
                                      std::string_view text);

/// "profile.yaml". Throws `ImportError`.
std::optional<ForeignPack> readProfile(const FormatContext& context, std::string_view name,
                                       std::string_view text);

/// Two files a key, named by the kernel's key numbers, without any description.
std::optional<ForeignPack> readKeyFiles(const FormatContext& context);

}  // namespace tobrin
