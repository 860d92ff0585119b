/// Loads the program's own optional libraries, which lie beside the executable in a build tree and
/// in the library folder once installed.
#pragma once

#include <QString>

namespace tobrin {

struct Modules {
  /// The address of `symbol` in the library "libtobrin-<name>.so"; null (and the reason logged)
  /// where there is none. A loaded library stays loaded. Thread: main.
  static void* symbol(const char* name, const char* symbol);
};

}  // namespace tobrin
