#include "CommandLine/InstallFiles.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <cstdio>
#include <filesystem>

#include "Application/Translation.h"
#include "Base/Log.h"
#include "Base/SystemFolders.h"
#include "Desktop/Notice.h"
#include "Model/PackProblem.h"

namespace tobrin {
namespace {

constexpr std::string_view workshopName = "tobrin-packs";

/// In the user's language; the program ends after it.
void showFailure(const std::vector<std::string>& files, const std::string& reason) {
  std::string name = "tobrin";
  char* words[] = {name.data(), nullptr};
  int count = 1;
  const QCoreApplication application(count, words);
  installTranslation();
  const PackProblem problem{.name = std::filesystem::path(files.front()).filename().string(),
                            .reason = reason};
  (void)showNotice("Tobrin", problem.sentence(translated));
}

/// What the workshop said last, without its name.
std::string reasonIn(const std::string& said) {
  const std::string last = said.substr(said.rfind('\n') + 1);
  const std::string before = std::string(workshopName) + ": ";
  return last.starts_with(before) ? last.substr(before.size()) : last;
}

}  // namespace

std::vector<std::string> filesAmong(const std::vector<std::string>& arguments) {
  std::vector<std::string> files;
  std::error_code ignored;
  for (const std::string& argument : arguments) {
    if (argument.starts_with('-')) continue;
    if (std::filesystem::exists(argument, ignored))
      files.push_back(argument);
    else
      std::fprintf(stderr, "tobrin: there is no file %s; starting without it.\n", argument.c_str());
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
  if (isatty(STDERR_FILENO) == 0) showFailure(files, reasonIn(said));
  return false;
}

}  // namespace tobrin
