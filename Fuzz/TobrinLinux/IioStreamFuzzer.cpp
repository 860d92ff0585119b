// Any texts as descriptions of an IIO stream, any bytes as its frames, any times as its stamps.
#include <vector>

#include "Force/SampleClock.h"
#include "FuzzInput.h"
#include "Motion/IioLayout.h"
#include "Motion/IioRate.h"

using namespace tobrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  (void)ratesToTry(input.text(input.take<uint8_t>() % 32));
  std::vector<IioLayout::Element> elements;
  for (std::size_t channel = 0; channel < IioLayout::channelCount; ++channel) {
    const auto type = IioScanType::parse(input.text(input.take<uint8_t>() % 20));
    if (type)
      elements.push_back({static_cast<IioLayout::Channel>(channel), input.take<uint8_t>(), *type});
  }
  if (elements.empty()) return 0;
  const IioLayout layout(elements);
  SampleClock clock;
  uint64_t now = 0;
  uint64_t last = 0;
  std::vector<uint8_t> frame(layout.frameBytes());
  while (!input.empty()) {
    now += input.take<uint32_t>();
    const auto bytes = input.bytes(frame.size());
    std::copy(bytes.begin(), bytes.end(), frame.begin());
    const IioLayout::Frame decoded = layout.decode(frame);
    const uint64_t time = clock.place(decoded.stamp, now, input.take<uint8_t>() % 8);
    fuzz::require(time >= last && time <= now);
    last = time;
  }
  return 0;
}
