#include "Shortcuts/KeyNames.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <array>
#include <fstream>
#include <utility>

#include "Base/Environment.h"
#include "Base/MachTime.h"
#include "Evdev/KeyCodes.h"
#include "X11/XConnection.h"

namespace tobrin {
namespace {

/// A layout switched by its user is noticed this late at most.
constexpr double reloadAfterMs = 2000;

struct UnrefState {
  void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

/// The value of a line NAME="value" in the system's keyboard settings.
std::string setting(const std::string& line, const std::string& name) {
  if (!line.starts_with(name + "=")) return {};
  std::string value = line.substr(name.size() + 1);
  std::erase(value, '"');
  return value;
}

std::string characterOf(xkb_keysym_t symbol) {
  std::array<char, 8> text{};
  const int length = xkb_keysym_to_utf8(symbol, text.data(), text.size());
  const auto first = static_cast<unsigned char>(text[0]);
  return length > 1 && first > ' ' && first != 0x7F ? text.data() : "";
}

std::string nameOf(xkb_keysym_t symbol) {
  std::array<char, 64> name{};
  return xkb_keysym_get_name(symbol, name.data(), name.size()) > 0 ? name.data() : "";
}

}  // namespace

void KeyNames::Unref::operator()(xkb_context* context) const {
  xkb_context_unref(context);
}

void KeyNames::Unref::operator()(xkb_keymap* keymap) const {
  xkb_keymap_unref(keymap);
}

KeyNames::KeyNames(std::string display)
    : display_(std::move(display)), context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {}

KeyNaming KeyNames::naming(uint32_t keyCode) {
  load();
  const auto kernelCodes = kernelCodesOf(keyCode);
  if (!keymap_ || kernelCodes.empty()) return {};
  const xkb_keycode_t key = kernelCodes.front() + uint32_t{xKeyCodeOffset};
  const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(keymap_.get(), key);
  if (layouts == 0) return {};
  const xkb_keysym_t* symbols = nullptr;
  const int count =
      xkb_keymap_key_get_syms_by_level(keymap_.get(), key, layout_ % layouts, 0, &symbols);
  if (count != 1) return {};
  return {.symbol = nameOf(symbols[0]), .label = characterOf(symbols[0])};
}

void KeyNames::load() {
  const uint64_t now = machNow();
  if (!context_ || (keymap_ && machDelta(now, loadedAt_) < reloadAfterMs)) return;
  loadedAt_ = now;
  if (!display_.empty() && loadFromServer()) return;
  if (!keymap_) loadFromSettings();
}

bool KeyNames::loadFromServer() {
  const XConnection connection = connectToX(display_);
  if (!connection) return false;
  if (xkb_x11_setup_xkb_extension(
          connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
          XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr) == 0) {
    return false;
  }
  const int32_t keyboard = xkb_x11_get_core_keyboard_device_id(connection.get());
  std::unique_ptr<xkb_keymap, Unref> keymap(xkb_x11_keymap_new_from_device(
      context_.get(), connection.get(), keyboard, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap) return false;
  const std::unique_ptr<xkb_state, UnrefState> state(
      xkb_x11_state_new_from_device(keymap.get(), connection.get(), keyboard));
  layout_ = state ? xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE) : 0;
  keymap_ = std::move(keymap);
  return true;
}

void KeyNames::loadFromSettings() {
  std::string layout;
  std::string variant;
  std::ifstream settings("/etc/default/keyboard");
  for (std::string line; std::getline(settings, line);) {
    if (layout.empty()) layout = setting(line, "XKBLAYOUT");
    if (variant.empty()) variant = setting(line, "XKBVARIANT");
  }
  // The library's own variables (XKB_DEFAULT_LAYOUT and so on) come first where they are set.
  const bool hasOwn = processEnvironment("XKB_DEFAULT_LAYOUT").has_value();
  xkb_rule_names names{};
  if (!hasOwn && !layout.empty()) {
    names.layout = layout.c_str();
    names.variant = variant.c_str();
  }
  keymap_.reset(xkb_keymap_new_from_names(context_.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
  layout_ = 0;
}

}  // namespace tobrin
