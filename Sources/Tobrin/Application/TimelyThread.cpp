#include "Application/TimelyThread.h"

#include "Threads/RealtimeScheduling.h"
#include "Threads/ThreadName.h"

namespace tobrin {

void prepareTimelyThread(std::string_view name) {
  nameThisThread(name);
  requestRealtimeScheduling();
}

}  // namespace tobrin
