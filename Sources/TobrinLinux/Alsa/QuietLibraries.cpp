#include "Alsa/QuietLibraries.h"

#include <alsa/asoundlib.h>
#include <dlfcn.h>

#include <initializer_list>

namespace tobrin {

namespace {

// NOLINTNEXTLINE(cert-dcl50-cpp): the library's handlers are variadic
void ignoreError(const char* /*file*/, int /*line*/, const char* /*function*/, int /*error*/,
                 const char* /*format*/, ...) {}

void ignoreText(const char* /*text*/) {}

}  // namespace

void quietenAlsa() {
  snd_lib_error_set_handler(ignoreError);
}

void quietenJack() {
  // Never closed: ALSA's plug-in is to find it loaded. Without the plug-in it may well be missing.
  static void* const library = dlopen("libjack.so.0", RTLD_NOW);
  if (library == nullptr) return;
  for (const char* setter : {"jack_set_error_function", "jack_set_info_function"}) {
    using Setter = void (*)(void (*)(const char*));
    if (const auto set = reinterpret_cast<Setter>(dlsym(library, setter))) set(ignoreText);
  }
}

}  // namespace tobrin
