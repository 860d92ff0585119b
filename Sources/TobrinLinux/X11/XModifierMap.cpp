#include "X11/XModifierMap.h"

#include <xcb/xcb_keysyms.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <set>

#include "X11/XConnection.h"

namespace tobrin {
namespace {

struct FreeSymbols {
  void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};

/// The symbols a key gives in its first two groups, plain and shifted.
std::set<xcb_keysym_t> symbolsOf(xcb_key_symbols_t* table, xcb_keycode_t key) {
  std::set<xcb_keysym_t> result;
  for (int column = 0; column < 4; ++column) {
    result.insert(xcb_key_symbols_get_keysym(table, key, column));
  }
  return result;
}

}  // namespace

XModifierMap::XModifierMap(xcb_connection_t* connection) {
  const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> table(xcb_key_symbols_alloc(connection));
  const XReply<xcb_get_modifier_mapping_reply_t> map(
      xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
  if (!table || !map) return;

  const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(map.get());
  for (unsigned bit = 0; bit < 8; ++bit) {
    std::set<xcb_keysym_t> symbols;
    for (unsigned i = 0; i < map->keycodes_per_modifier; ++i) {
      const xcb_keycode_t key = keys[bit * map->keycodes_per_modifier + i];
      if (key != 0) symbols.merge(symbolsOf(table.get(), key));
    }
    const auto hasAny = [&](std::initializer_list<xcb_keysym_t> wanted) {
      return std::any_of(wanted.begin(), wanted.end(), [&](auto s) { return symbols.contains(s); });
    };
    const auto mask = static_cast<uint16_t>(1U << bit);
    if (hasAny({XKB_KEY_Alt_L, XKB_KEY_Alt_R})) option_ = mask;
    if (hasAny({XKB_KEY_Super_L, XKB_KEY_Super_R})) command_ = mask;
    if (hasAny({XKB_KEY_Num_Lock})) numLock_ = mask;
    if (hasAny({XKB_KEY_Scroll_Lock})) scrollLock_ = mask;
  }
}

uint16_t XModifierMap::mask(Modifiers modifiers) const {
  unsigned result = 0;
  if (modifiers.contains(Modifiers::control)) result |= XCB_MOD_MASK_CONTROL;
  if (modifiers.contains(Modifiers::shift)) result |= XCB_MOD_MASK_SHIFT;
  if (modifiers.contains(Modifiers::option)) result |= option_;
  if (modifiers.contains(Modifiers::command)) result |= command_;
  return static_cast<uint16_t>(result);
}

std::vector<uint16_t> XModifierMap::lockCombinations() const {
  std::vector<uint16_t> result = {0};
  for (const uint16_t lock : {uint16_t{XCB_MOD_MASK_LOCK}, numLock_, scrollLock_}) {
    if (lock == 0) continue;
    const std::size_t before = result.size();
    for (std::size_t i = 0; i < before; ++i) {
      result.push_back(static_cast<uint16_t>(result[i] | lock));
    }
  }
  return result;
}

}  // namespace tobrin
