/// What somebody types to a command-line program and what it answers, in a kept text beside the
/// tests. There "$ WORDS" runs a command ("%" shows its status alone, where a library has the
/// words), "> FILE TEXT" writes a file ("↵" ends its lines), "+ FROM TO" copies one, "= FILE OTHER"
/// compares two and "? FOLDER" lists one. What is indented below is the answer: "!" is said on
/// standard error, "=" is the exit status. A new case is a line there.
#pragma once

#include <functional>
#include <iomanip>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Support/KeptText.h"

namespace tobrin::testing {

struct Outcome {
  int status = 0;
  std::string out;
  std::string err;
};

inline std::string replaced(std::string text, const std::string& part, const std::string& other) {
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += other.size())
    text.replace(at, part.size(), other);
  return text;
}

/// Plays the session in its folder, which becomes the working folder until the end.
class Session final {
 public:
  using Program = std::function<Outcome(const std::vector<std::string>& arguments)>;

  explicit Session(Program program) : program_(std::move(program)) {
    std::filesystem::current_path(folder.path());
  }
  ~Session() { std::filesystem::current_path(before_); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// `name` is the text's, below Tests/.
  void expectAsKept(const std::string& name) {
    std::istringstream lines(contentOf(std::filesystem::path(TOBRIN_TESTS) / name));
    std::string all;
    ::testing::internal::CaptureStderr();
    for (std::string line; std::getline(lines, line);)
      if (!line.starts_with("  ")) all += line + "\n" + answer(line);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "nothing but what is shown";
    expectKeptText(all, name);
  }

  const TempFolder folder;

 private:
  std::string answer(const std::string& line) {
    if (line.empty()) return "";
    std::istringstream words(line.substr(1));
    std::vector<std::string> arguments;
    for (std::string word; words >> std::quoted(word);)
      arguments.push_back(word);
    if (line[0] == '$') return commandsAnswer(arguments);
    if (line[0] == '%') return "  = " + std::to_string(program_(arguments).status) + "\n";
    if (line[0] == '?') return indented(entriesOf(arguments[0]), "  ");
    if (line[0] == '=')
      return contentOf(arguments[0]) == contentOf(arguments[1]) ? "  same\n" : "  different\n";
    if (line[0] == '+') std::filesystem::copy(arguments[0], arguments[1]);
    if (line[0] == '>') {
      const std::size_t text = 2 + arguments[0].size() + 1;
      folder.write(arguments[0], text > line.size() ? "" : replaced(line.substr(text), "↵", "\n"));
    }
    return "";
  }
  std::string commandsAnswer(const std::vector<std::string>& arguments) const {
    const auto [status, out, err] = program_(arguments);
    return indented(err, "  ! ") + indented(out, "  ") +
           (status != 0 ? "  = " + std::to_string(status) + "\n" : "");
  }
  static std::string entriesOf(const std::filesystem::path& folder) {
    std::set<std::string> names;
    if (!std::filesystem::is_directory(folder)) return "no folder\n";
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      names.insert(entry.path().filename().string() + "\n");
    std::string all;
    for (const std::string& name : names)
      all += name;
    return all;
  }
  [[nodiscard]] std::string indented(const std::string& text, const char* indent) const {
    std::istringstream lines(text);
    std::string all;
    for (std::string line; std::getline(lines, line);)
      all += indent + replaced(line, folder.path(), "~") + "\n";
    return all;
  }

  const Program program_;
  const std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace tobrin::testing
