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
  /// `model` must outlive this.
  explicit TerminalReport(const AppModel& model);
  /// Tells how many sounds were played, and how many the mixer had no room for.
  ~TerminalReport() override;

 private:
  void printChanges();
  void print(const std::string& subject, const std::string& text);

  const AppModel& model_;
  std::map<std::string, std::string> printed_;  // the last text by its subject
};

}  // namespace tobrin
