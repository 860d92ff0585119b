/// The scripts of ours that KWin runs.
#pragma once

#include <string>

namespace tobrin {

/// The path of the script with that file name, next to where this program was built or installed;
/// empty where it is missing. Thread: any.
std::string kwinScript(const char* name);

}  // namespace tobrin
