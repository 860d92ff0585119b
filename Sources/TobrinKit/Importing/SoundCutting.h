/// Cuts single key sounds out of the files of a pack: from the onset on, ended where it is quiet,
/// both ends faded, without rumble. Pure functions; thread: any.
#pragma once

#include <optional>

#include "Building/RecordingSlicer.h"
#include "Importing/ForeignPack.h"
#include "Importing/ImportNotes.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {

/// The sound in a part of a file, or in all of it; nothing, with a note, where there is none. `ref`
/// names it in notes.
std::optional<RecordedTake> cutSound(const SampleBuffer& sound, const SoundRef& ref,
                                     ImportNotes& notes);

/// Whether `release` is no separate sound: it lies within the press, or continues it because one
/// sound was cut in two.
bool belongsToPress(const SampleBuffer& sound, const SoundRef::Part& press,
                    const SoundRef::Part& release);

}  // namespace tobrin
