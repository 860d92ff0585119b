#include "CommandLine/InstallFiles.h"

#include <QProcess>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "Base/Log.h"
#include "Base/SystemFolders.h"

namespace tobrin {

bool areFiles(const std::vector<std::string>& arguments) {
  std::error_code ignored;
  return !arguments.empty() && std::ranges::all_of(arguments, [&](const std::string& argument) {
    return !argument.starts_with('-') && std::filesystem::exists(argument, ignored);
  });
}

bool installFiles(const std::vector<std::string>& files) {
  QStringList arguments{"install", "--"};
  for (const std::string& file : files)
    arguments.append(QString::fromLocal8Bit(file));
  QProcess workshop;
  workshop.setProcessChannelMode(QProcess::ForwardedOutputChannel);
  workshop.start(QString::fromStdString((thisProgram().parent_path() / "tobrin-packs").string()),
                 arguments);
  const bool isOver = workshop.waitForFinished(-1);
  const bool isDone =
      isOver && workshop.exitStatus() == QProcess::NormalExit && workshop.exitCode() == 0;
  std::string said = workshop.readAllStandardError().trimmed().toStdString();
  if (!isOver) said = "tobrin-packs: " + workshop.errorString().toStdString();
  if (!said.empty()) std::fprintf(stderr, "%s\n", said.c_str());
  if (!isDone) logLine("A pack couldn't be installed: " + said);
  return isDone;
}

}  // namespace tobrin
