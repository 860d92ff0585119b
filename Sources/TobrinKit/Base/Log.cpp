#include "Base/Log.h"

#include <cstdio>
#include <utility>

#include "Base/Mutex.h"
#include "Base/PrintableText.h"

namespace tobrin {
namespace {

Mutex sinkLock;
LogSink currentSink TOBRIN_GUARDED_BY(sinkLock);  // empty: standard error

}  // namespace

void logLine(const std::string& text) {
  const std::string line = "Tobrin: " + printable(text);
  MutexLock lock(sinkLock);
  if (currentSink)
    currentSink(line);
  else
    static_cast<void>(std::fprintf(stderr, "%s\n", line.c_str()));
}

void setLogSink(LogSink sink) {
  MutexLock lock(sinkLock);
  currentSink = std::move(sink);
}

}  // namespace tobrin
