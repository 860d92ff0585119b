/// What only the system knows about this process. Thread: any.
#pragma once

#include <filesystem>

namespace tobrin {

/// The home folder that the system has on record for the user; empty where it knows none.
std::filesystem::path recordedHomeFolder();

/// The file that this program runs from; empty where the system does not tell.
std::filesystem::path thisProgram();

/// Whether that file is no longer there under its name, as after an update.
bool isThisProgramReplaced();

}  // namespace tobrin
