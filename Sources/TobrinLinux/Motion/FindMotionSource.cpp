#include "Motion/FindMotionSource.h"

#include "Base/Environment.h"
#include "Force/TraceSource.h"
#include "Motion/HidrawSource.h"
#include "Motion/IioSource.h"

namespace tobrin {

std::unique_ptr<MotionSource> findMotionSource(const MotionPaths& paths) {
  if (const std::string trace = processVariable(motionTraceVariable); !trace.empty())
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
