/// What desktops say of installed applications in their entries. Thread: any.
#pragma once

#include <string>

#include "Base/Environment.h"
#include "Engine/FrontWindow.h"

namespace tobrin {

/// The application whose windows have this id, by the entry of that name or one that claims it.
/// Without an entry its name is the id. Reads files; the name is in the user's language.
AppDescription describeApp(const std::string& id,
                           const Environment& environment = processEnvironment);

}  // namespace tobrin
