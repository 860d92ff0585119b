#include "KeyScript.h"

#include <algorithm>
#include <iomanip>
#include <random>
#include <sstream>
#include <stdexcept>

namespace tobrin::testing {
namespace {

constexpr uint32_t returnKeysym = 0xff0d;
constexpr uint32_t shiftKeysym = 0xffe1;

void inOrderOfTime(std::vector<KeyAction>& actions) {
  std::stable_sort(actions.begin(), actions.end(),
                   [](const KeyAction& a, const KeyAction& b) { return a.atMs < b.atMs; });
}

}  // namespace

std::vector<KeyAction> typedText(const std::string& text, TypingStyle style) {
  std::vector<KeyAction> actions;
  double atMs = 0;
  for (const char character : text) {
    const bool capital = character >= 'A' && character <= 'Z';
    const auto byte = static_cast<unsigned char>(capital ? character - 'A' + 'a' : character);
    const uint32_t keysym = character == '\n' ? returnKeysym : byte;
    if (capital) {
      actions.push_back({atMs, shiftKeysym, true});
      atMs += style.intervalMs;
    }
    actions.push_back({atMs, keysym, true});
    actions.push_back({atMs + style.holdMs, keysym, false});
    if (capital) actions.push_back({atMs + style.holdMs + 5, shiftKeysym, false});
    atMs += style.intervalMs;
  }
  inOrderOfTime(actions);
  return actions;
}

std::vector<KeyAction> randomTyping(const RandomTyping& typing) {
  static const std::string keys = "etaoinshrdlucmfwypvbgk ";
  std::mt19937 random(typing.seed);
  const auto uniform = [&random] { return static_cast<double>(random()) / 4294967296.0; };
  std::vector<KeyAction> actions;
  double atMs = 0;
  size_t last = keys.size();
  for (int i = 0; i < typing.presses; ++i) {
    size_t key = random() % keys.size();
    if (key == last) key = (key + 1) % keys.size();
    last = key;
    const double spread = typing.maximumIntervalMs - typing.minimumIntervalMs;
    const double nextMs = atMs + typing.minimumIntervalMs + spread * uniform();
    // A roll ends within the next key's hold, before the key after that.
    const double heldMs = typing.rolls ? nextMs - atMs + typing.minimumIntervalMs * 0.5
                                       : (nextMs - atMs) * (0.3 + 0.4 * uniform());
    const auto keysym = static_cast<uint32_t>(static_cast<unsigned char>(keys[key]));
    actions.push_back({atMs, keysym, true});
    actions.push_back({atMs + heldMs, keysym, false});
    atMs = nextMs;
  }
  inOrderOfTime(actions);
  return actions;
}

std::vector<KeyAction> parseKeyScript(std::istream& lines) {
  std::vector<KeyAction> actions;
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    KeyAction action;
    std::string verb;
    words >> action.atMs >> verb >> std::setbase(0) >> action.keysym;
    if (words.fail() || (verb != "press" && verb != "release"))
      throw std::runtime_error("line " + std::to_string(number) + ": '" + line + "'");
    action.down = verb == "press";
    actions.push_back(action);
  }
  inOrderOfTime(actions);
  return actions;
}

}  // namespace tobrin::testing
