/// The command line of the pack workshop, apart from the process it runs in. Thread: main.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "Commands.h"

namespace tobrin {

using AddCommand = void (*)(CLI::App& app, const CommandStreams& streams);

/// Runs one command; `arguments` without the program's name, `more` adds commands that this library
/// lacks. Returns the exit status: 0 done, 1 failed with one line on `streams.err`, 2 wrong usage.
int runPackWorkshop(const std::vector<std::string>& arguments, const CommandStreams& streams,
                    std::span<const AddCommand> more = {});

}  // namespace tobrin
