/// What a double click on a pack does: puts it among the user's own. Thread: main.
#pragma once

#include <string>
#include <vector>

namespace tobrin {

/// Whether the arguments of `tobrin` are files to install.
bool areFiles(const std::vector<std::string>& arguments);

/// Runs the pack workshop on the files and waits for it, so that its libraries do not stay in the
/// memory of a program that runs all day. False, with the reason on standard error and in the
/// system's log, where nothing was put in place.
bool installFiles(const std::vector<std::string>& files);

}  // namespace tobrin
