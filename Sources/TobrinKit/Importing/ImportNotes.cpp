#include "Importing/ImportNotes.h"

#include <algorithm>

namespace tobrin {
namespace {

constexpr std::size_t itemsInALine = 4;
constexpr std::size_t mostItems = 1000;  // what a hostile pack can make us remember

}  // namespace

std::string ImportNotes::Note::line() const {
  std::string text = kind == Kind::leftOut ? "left out: " : "guessed: ";
  text += reason;
  for (std::size_t i = 0; i < std::min(items.size(), itemsInALine); ++i)
    text += (i == 0 ? " (" : ", ") + items[i];
  if (items.size() > itemsInALine)
    text += ", and " + std::to_string(items.size() - itemsInALine) + " more";
  return items.empty() ? text : text + ")";
}

void ImportNotes::leftOut(const std::string& reason, const std::string& item) {
  add(Kind::leftOut, reason, item);
}

void ImportNotes::guessed(const std::string& reason, const std::string& item) {
  add(Kind::guessed, reason, item);
}

void ImportNotes::add(const ImportNotes& others) {
  for (const Note& note : others.notes_) {
    if (note.items.empty()) add(note.kind, note.reason, "");
    for (const std::string& item : note.items)
      add(note.kind, note.reason, item);
  }
}

void ImportNotes::add(Kind kind, const std::string& reason, const std::string& item) {
  auto note = std::ranges::find_if(
      notes_, [&](const Note& each) { return each.kind == kind && each.reason == reason; });
  if (note == notes_.end()) note = notes_.insert(note, {kind, reason, {}});
  const bool isKnown = std::ranges::find(note->items, item) != note->items.end();
  if (!item.empty() && !isKnown && note->items.size() < mostItems) note->items.push_back(item);
}

}  // namespace tobrin
