/// What an import left out or had to guess: one note a reason, with the names that it concerns.
/// Thread: any, one at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tobrin {

class ImportNotes final {
 public:
  enum class Kind : uint8_t { leftOut, guessed };

  struct Note {
    Kind kind = Kind::leftOut;
    std::string reason;
    std::vector<std::string> items;  ///< files or keys, in the order they were met

    /// One line for people: the first few items, and how many there are.
    [[nodiscard]] std::string line() const;
  };

  /// Adds `item` to those noted for the same reason; one noted twice is kept once.
  void leftOut(const std::string& reason, const std::string& item = "");
  void guessed(const std::string& reason, const std::string& item = "");

  /// Adds all notes of another list.
  void add(const ImportNotes& others);

  [[nodiscard]] const std::vector<Note>& all() const { return notes_; }

 private:
  void add(Kind kind, const std::string& reason, const std::string& item);

  std::vector<Note> notes_;
};

}  // namespace tobrin
