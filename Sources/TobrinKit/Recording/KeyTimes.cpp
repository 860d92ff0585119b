#include "Recording/KeyTimes.h"

#include <map>

#include "Base/AtomicFile.h"
#include "Force/TraceCsv.h"

namespace tobrin {
namespace {

constexpr std::string_view header = "time_ns,action,group,key";

KeyAction actionIn(const TraceCsv& lines) {
  for (const KeyAction action : {KeyAction::down, KeyAction::up}) {
    if (lines.text(1) == nameOf(action)) return action;
  }
  lines.fail("action is neither \"down\" nor \"up\"");
}

KeyGroup groupIn(const TraceCsv& lines) {
  const auto group = keyGroup(lines.text(2));
  if (!group) lines.fail("there is no such group of keys");
  return *group;
}

/// The state of the keys after the lines so far; refuses what no keyboard does.
class KeyStates {
 public:
  void add(const RecordedKey& key, const TraceCsv& lines) {
    if (key.time < last_) lines.fail("the time goes back");
    last_ = key.time;
    const auto [state, isNew] = states_.try_emplace(key.number, State{key.group, KeyAction::up});
    if (isNew && key.number + 1 != states_.size()) {
      lines.fail("keys are numbered from 0 in order of first use");
    }
    if (state->second.group != key.group) lines.fail("the key was in another group before");
    if (state->second.action == key.action)
      lines.fail("the key is " + std::string(nameOf(key.action)) + " already");
    state->second.action = key.action;
  }

 private:
  struct State {
    KeyGroup group;
    KeyAction action;
  };

  int64_t last_ = INT64_MIN;
  std::map<uint32_t, State> states_;
};

}  // namespace

std::string_view nameOf(KeyAction action) {
  return action == KeyAction::down ? "down" : "up";
}

std::vector<RecordedKey> loadKeyTimes(const std::filesystem::path& file) {
  return parseKeyTimes(TraceCsv::load(file), file.string());
}

std::vector<RecordedKey> parseKeyTimes(std::string_view text, const std::string& name) {
  constexpr int64_t latest = int64_t{24} * 3600 * 1'000'000'000;  // ns: a day
  TraceCsv lines(text, name, header);
  KeyStates states;
  std::vector<RecordedKey> keys;
  while (lines.next()) {
    const RecordedKey key{lines.wholeBetween(0, -latest, latest), actionIn(lines), groupIn(lines),
                          static_cast<uint32_t>(lines.whole(3, UINT16_MAX)), std::nullopt};
    states.add(key, lines);
    keys.push_back(key);
  }
  return keys;
}

void saveKeyTimes(std::span<const RecordedKey> keys, const std::filesystem::path& file) {
  std::string text(header);
  for (const RecordedKey& key : keys) {
    text += '\n' + std::to_string(key.time) + ',';
    text.append(nameOf(key.action)).append(",").append(rawValue(key.group));
    text += ',' + std::to_string(key.number);
  }
  writeFileAtomically(file, text + '\n');
}

}  // namespace tobrin
