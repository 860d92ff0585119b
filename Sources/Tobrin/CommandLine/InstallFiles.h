/// What a double click on a pack does: puts it among the user's own. Thread: main.
#pragma once

#include <string>
#include <vector>

#include "Model/PackProblem.h"

namespace tobrin {

/// Those of the arguments of `tobrin` that are files to install. Says on standard error which are
/// no files.
std::vector<std::string> filesAmong(const std::vector<std::string>& arguments);

/// Which of the files could not be installed, and why, by what the workshop said: it names the file
/// first, or else the first one is named.
PackProblem problemIn(const std::string& said, const std::vector<std::string>& files);

/// Runs the pack workshop on the files and waits for it, so that its libraries do not stay in the
/// memory of a program that runs all day. False, with the reason on standard error and in the
/// system's log, where nothing was put in place; without a terminal the desktop shows it, too.
bool installFiles(const std::vector<std::string>& files);

}  // namespace tobrin
