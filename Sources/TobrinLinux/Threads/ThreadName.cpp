#include "Threads/ThreadName.h"

#include <pthread.h>

#include <string>

namespace tobrin {

void nameThisThread(std::string_view name) {
  constexpr std::size_t kernelLimit = 15;
  const std::string cut(name.substr(0, kernelLimit));
  pthread_setname_np(pthread_self(), cut.c_str());
}

}  // namespace tobrin
