/// For test programs that run the toolkit outside a desktop session: its libraries and the bus's
/// are not built with the thread sanitizer, which cannot see their locks. Include it once.
#pragma once

// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizer's names
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_suppressions();

const char* __tsan_default_options() {
  return "ignore_noninstrumented_modules=1";
}

const char* __tsan_default_suppressions() {
  return "race:libQt6\nrace:libdbus\nmutex:libdbus";
}
// NOLINTEND(bugprone-reserved-identifier)
