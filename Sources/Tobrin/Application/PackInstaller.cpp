#include "Application/PackInstaller.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "Base/SystemFolders.h"
#include "Importing/ImportError.h"
#include "System/Spawn.h"

namespace tobrin {
namespace {

/// The workshop while it works. It ends when nobody reads its reports any more.
class Workshop final {
 public:
  explicit Workshop(const std::filesystem::path& source) {
    auto pipe = makePipe();
    if (!pipe) throw std::runtime_error("no file descriptors left");
    const std::string program = thisProgram().replace_filename("tobrin-packs").string();
    const Spawned started = spawn({program, "install", "--report", "--", source.string()},
                                  {.input = SpawnOptions::nowhere,
                                   .output = pipe->writing.get(),
                                   .errors = SpawnOptions::nowhere});
    if (started.error != 0)
      throw std::system_error(started.error, std::generic_category(), program);
    child_ = started.child;
    reports_ = std::move(pipe->reading);
  }
  ~Workshop() {
    reports_.reset();
    (void)waitForEnd(child_);
  }
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;

  /// The next report; nothing at the end.
  std::optional<QJsonObject> next() {
    while (!text_.contains('\n')) {
      char piece[4096];
      const ssize_t length = retried([&] { return ::read(reports_.get(), piece, sizeof piece); });
      if (length <= 0) return std::nullopt;
      text_.append(piece, length);
    }
    const qsizetype end = text_.indexOf('\n');
    const QByteArray line = text_.left(end);
    text_.remove(0, end + 1);
    return QJsonDocument::fromJson(line).object();
  }

 private:
  pid_t child_ = -1;
  FileDescriptor reports_;
  QByteArray text_;
};

[[noreturn]] void refuse(const QJsonObject& report) {
  const std::string reason = report["reason"].toString().toStdString();
  const int kind = report["kind"].toInt(-1);
  if (kind >= 0 && kind <= static_cast<int>(ImportError::Kind::noSounds))
    throw ImportError(static_cast<ImportError::Kind>(kind), reason);
  throw std::runtime_error(reason);
}

}  // namespace

std::string addByWorkshop(const std::filesystem::path& source,
                          const std::function<void(double)>& progress) {
  Workshop workshop(source);
  while (const auto report = workshop.next()) {
    if (report->contains("id")) return (*report)["id"].toString().toStdString();
    if (report->contains("reason")) refuse(*report);
    progress((*report)["progress"].toDouble());
  }
  throw std::runtime_error("tobrin-packs ended before it was done");
}

}  // namespace tobrin
