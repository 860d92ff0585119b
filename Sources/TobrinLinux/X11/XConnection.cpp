#include "X11/XConnection.h"

#include "Base/Mutex.h"

namespace tobrin {

XConnection connectToX(const std::string& display) {
  // The library that finds the authority file keeps its name in one buffer for all threads.
  static Mutex oneAtATime;
  const MutexLock lock(oneAtATime);
  XConnection connection(xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr));
  if (xcb_connection_has_error(connection.get()) != 0) return nullptr;
  return connection;
}

}  // namespace tobrin
