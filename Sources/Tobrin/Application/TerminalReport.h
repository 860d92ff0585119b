/// Tells the terminal what the program plays, listens to and plays through, and what fails: a line
/// whenever one of them changes. Thread: main.
#pragma once

#include <QObject>
#include <map>
#include <string>

#include "Model/AppModel.h"

namespace tobrin {

class TerminalReport final : public QObject {
 public:
  explicit TerminalReport(const AppModel& model);

 private:
  void printChanges();
  void print(const std::string& subject, const std::string& text);

  const AppModel& model_;
  std::map<std::string, std::string> printed_;  // subject to the text last printed
};

}  // namespace tobrin
