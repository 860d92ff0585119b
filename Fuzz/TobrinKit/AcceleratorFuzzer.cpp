// The desktops' settings of key combinations, in both formats.
#include "Input/Accelerator.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  const std::string text = fuzz::Input(data, size).text(size);
  for (const auto read : {acceleratorsInGsettings, acceleratorsInKGlobalShortcuts}) {
    for (const Accelerator& accelerator : read(text)) {
      fuzz::require(!accelerator.key.empty());
      const Hotkey hotkey{0, accelerator.modifiers};
      fuzz::require(accelerator.matches(hotkey, {accelerator.key, ""}));
    }
  }
  return 0;
}
