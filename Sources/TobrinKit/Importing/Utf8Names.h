/// Names in archives as UTF-8, in whatever language the program runs: the archive library turns
/// them into the thread's encoding, and loses those that it cannot express. Holds for the calling
/// thread, as long as this object lives. Thread: any.
#pragma once

#include <clocale>

namespace tobrin {

class Utf8Names final {
 public:
  Utf8Names() : utf8_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), before_(uselocale(utf8_)) {}
  ~Utf8Names() {
    uselocale(before_);
    if (utf8_ != nullptr) freelocale(utf8_);
  }
  Utf8Names(const Utf8Names&) = delete;
  Utf8Names& operator=(const Utf8Names&) = delete;

 private:
  locale_t utf8_;
  locale_t before_;
};

}  // namespace tobrin
