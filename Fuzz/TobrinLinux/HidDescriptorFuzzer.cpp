// Any bytes as a HID report descriptor.
#include "Force/MotionSource.h"
#include "FuzzInput.h"
#include "Motion/HidReportDescriptor.h"

using namespace tobrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const auto report = findMotionReport({data, size});
  if (report) fuzz::require(report->bytes == report->skip + MotionSource::reportBytes);
  return 0;
}
