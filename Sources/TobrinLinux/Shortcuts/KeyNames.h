/// What the user's keyboard layout calls the keys. Thread: main.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Input/Accelerator.h"

struct xkb_context;
struct xkb_keymap;

namespace tobrin {

class KeyNames final {
 public:
  /// `display` is the X server whose layout counts; empty for the layout the system is set to, the
  /// only one a program without a window learns of in a Wayland session.
  explicit KeyNames(std::string display);

  /// The names of a key in the layout active now (or a moment ago); empty where it has none.
  KeyNaming naming(uint32_t keyCode);

 private:
  struct Unref {
    void operator()(xkb_context* context) const;
    void operator()(xkb_keymap* keymap) const;
  };

  void load();
  bool loadFromServer();
  void loadFromSettings();

  const std::string display_;
  std::unique_ptr<xkb_context, Unref> context_;
  std::unique_ptr<xkb_keymap, Unref> keymap_;
  uint32_t layout_ = 0;
  uint64_t loadedAt_ = 0;  // ticks
};

}  // namespace tobrin
