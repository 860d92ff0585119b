#include "Motion/FindMotionSource.h"

#include <cstdlib>

#include "Force/TraceSource.h"
#include "Motion/HidrawSource.h"
#include "Motion/IioSource.h"

namespace tobrin {

std::unique_ptr<MotionSource> findMotionSource(const MotionPaths& paths) {
  const char* trace = std::getenv(motionTraceVariable);  // NOLINT(concurrency-mt-unsafe)
  if (trace != nullptr && *trace != '\0')
    return std::make_unique<TraceSource>(std::filesystem::path(trace),
                                         std::make_shared<RealTraceClock>(),
                                         TraceSource::Times::present);
  const HidrawSource::Paths hidraw{paths.sys, paths.dev};
  if (HidrawSource::find(hidraw)) return std::make_unique<HidrawSource>(hidraw);
  const IioPaths iio{paths.sys, paths.dev};
  if (!IioDevice::findAll(iio).empty()) return std::make_unique<IioSource>(iio);
  return nullptr;
}

}  // namespace tobrin
