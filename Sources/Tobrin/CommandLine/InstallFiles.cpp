#include "CommandLine/InstallFiles.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <cstdio>
#include <filesystem>

#include "Application/Translation.h"
#include "Base/Log.h"
#include "Base/PrintableText.h"
#include "Base/SystemFolders.h"
#include "Desktop/Notice.h"

namespace tobrin {
namespace {

constexpr std::string_view workshopName = "tobrin-packs";

/// In the user's language; the program ends after it.
void showFailure(const PackProblem& problem) {
  std::string name = "tobrin";
  char* words[] = {name.data(), nullptr};
  int count = 1;
  const QCoreApplication application(count, words);
  installTranslation();
  (void)showNotice("Tobrin", problem.sentence(translated));
}

/// What the workshop said last, without its name.
std::string reasonIn(const std::string& said) {
  const std::string last = said.substr(said.rfind('\n') + 1);
  const std::string before = std::string(workshopName) + ": ";
  return last.starts_with(before) ? last.substr(before.size()) : last;
}

std::string nameOf(const std::filesystem::path& file) {
  return (file.has_filename() ? file : file.parent_path()).filename().string();
}

}  // namespace

PackProblem problemIn(const std::string& said, const std::vector<std::string>& files) {
  PackProblem problem{.name = nameOf(files.front()), .reason = reasonIn(said)};
  std::string& reason = problem.reason;
  for (const std::string& file : files)
    if (reason.starts_with(nameOf(file))) problem.name = nameOf(file);
  // The sentence that shows the reason begins with the name.
  if (reason.starts_with(problem.name + ": "))
    reason.erase(0, problem.name.size() + 2);
  else if (reason.starts_with(problem.name + " "))
    reason.replace(0, problem.name.size(), "it");
  return problem;
}

std::vector<std::string> filesAmong(const std::vector<std::string>& arguments) {
  std::vector<std::string> files;
  std::error_code ignored;
  for (const std::string& argument : arguments) {
    if (argument.starts_with('-')) continue;
    if (std::filesystem::exists(argument, ignored))
      files.push_back(argument);
    else
      std::fprintf(stderr, "tobrin: there is no file %s; starting without it.\n",
                   printable(argument).c_str());
  }
  return files;
}

bool installFiles(const std::vector<std::string>& files) {
  QStringList arguments{"install", "--"};
  for (const std::string& file : files)
    arguments.append(QString::fromLocal8Bit(file));
  QProcess workshop;
  workshop.setProcessChannelMode(QProcess::ForwardedOutputChannel);
  workshop.start(QString::fromStdString((thisProgram().parent_path() / workshopName).string()),
                 arguments);
  const bool isOver = workshop.waitForFinished(-1);
  const bool isDone =
      isOver && workshop.exitStatus() == QProcess::NormalExit && workshop.exitCode() == 0;
  std::string said = workshop.readAllStandardError().trimmed().toStdString();
  if (!isOver) said = "tobrin-packs: " + workshop.errorString().toStdString();
  if (!said.empty()) std::fprintf(stderr, "%s\n", said.c_str());
  if (isDone) return true;
  logLine("A pack couldn't be installed: " + said);
  if (isatty(STDERR_FILENO) == 0) showFailure(problemIn(said, files));
  return false;
}

}  // namespace tobrin
