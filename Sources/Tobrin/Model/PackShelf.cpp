#include "Model/PackShelf.h"

#include <system_error>
#include <utility>

#include "Base/Log.h"
#include "Importing/ImportError.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Kind = PackProblem::Kind;

/// Thrown through the code that adds a pack, to end it.
struct Stopped {};

Kind kindOf(const ImportError& error) {
  switch (error.kind()) {
    case ImportError::Kind::noPack:
      return Kind::noPack;
    case ImportError::Kind::mouse:
      return Kind::mouse;
    case ImportError::Kind::tooLarge:
      return Kind::tooLarge;
    case ImportError::Kind::noSounds:
      return Kind::noSounds;
    case ImportError::Kind::unreadable:
    case ImportError::Kind::ours:
      break;
  }
  return Kind::notAdded;
}

/// Why, without `name`, which the sentence has already.
std::string reasonOf(const std::exception& error, const std::string& name) {
  if (const auto* const file = dynamic_cast<const fs::filesystem_error*>(&error)) {
    if (file->code() == std::errc::cross_device_link) return "it is on another disk than the trash";
    if (file->code() == std::errc::file_exists) return "something else has its place";
    return file->code().message();
  }
  const std::string text = error.what();
  return text.starts_with(name + ": ") ? text.substr(name.size() + 2) : text;
}

/// A description stands for the folder that it describes: file choosers offer files only.
fs::path folderOfDescription(const fs::path& source) {
  std::error_code missing;
  const bool describes = source.extension() == ".json" || source.extension() == ".yaml";
  const bool isFolder = fs::is_directory(source, missing);
  return describes && !isFolder ? source.parent_path() : source;
}

std::string nameOf(const fs::path& source) {
  return (source.has_filename() ? source : source.parent_path()).filename().string();
}

}  // namespace

PackShelf::PackShelf(SerialQueue& main, SerialQueue& adding, Add add, Discard discard)
    : main_(main), adding_(adding), add_(std::move(add)), discard_(std::move(discard)) {}

PackShelf::~PackShelf() {
  if (stop_) stop_->store(true, std::memory_order_relaxed);
}

// Adding

void PackShelf::add(const std::vector<fs::path>& sources) {
  for (const fs::path& source : sources)
    waiting_.push_back(folderOfDescription(source));
  if (!current_.empty() || waiting_.empty()) return;
  problem_.reset();
  newest_.clear();
  showLater();
  startNext();
}

void PackShelf::cancel() {
  waiting_.clear();
  if (stop_) stop_->store(true, std::memory_order_relaxed);
}

void PackShelf::showLater() {
  main_.after(silence, [this, alive = std::weak_ptr(alive_), round = ++rounds_] {
    if (alive.expired() || round != rounds_ || current_.empty()) return;
    isShown_ = true;
    emit changed();
  });
}

void PackShelf::startNext() {
  if (waiting_.empty()) return finish();
  const fs::path source = std::move(waiting_.front());
  waiting_.pop_front();
  current_ = nameOf(source);
  fraction_ = 0;
  stop_ = std::make_shared<std::atomic<bool>>(false);
  emit changed();
  adding_.async(
      [this, source, add = add_, stop = stop_, alive = std::weak_ptr(alive_), &main = main_] {
        const auto progress = [&, told = 0.0](double fraction) mutable {
          // Relaxed: nothing but the wish itself is passed on.
          if (stop->load(std::memory_order_relaxed)) throw Stopped();
          constexpr double worthTelling = 0.01;
          if (fraction - told < worthTelling) return;
          told = fraction;
          main.async([this, alive, fraction] {
            if (!alive.expired()) report(fraction);
          });
        };
        main.async([this, alive, outcome = outcomeOf(add, source, progress)] {
          if (!alive.expired()) ended(outcome);
        });
      });
}

PackShelf::Outcome PackShelf::outcomeOf(const Add& add, const fs::path& source,
                                        const Progress& progress) {
  const std::string name = nameOf(source);
  try {
    progress(0);
    return {.id = add(source, progress), .problem = std::nullopt};
  } catch (const Stopped&) {
    return {};
  } catch (const ImportError& error) {
    return {.id = {}, .problem = PackProblem{kindOf(error), name, reasonOf(error, name)}};
  } catch (const std::exception& error) {
    return {.id = {}, .problem = PackProblem{Kind::notAdded, name, reasonOf(error, name)}};
  }
}

void PackShelf::report(double fraction) {
  fraction_ = fraction;
  if (isShown_) emit changed();
}

void PackShelf::ended(const Outcome& outcome) {
  if (!outcome.id.empty()) newest_ = outcome.id;
  if (outcome.problem) fail(*outcome.problem);
  startNext();
}

void PackShelf::finish() {
  current_.clear();
  stop_.reset();
  isShown_ = false;
  emit changed();
  if (!newest_.empty()) emit added(newest_);
}

void PackShelf::fail(PackProblem problem) {
  logLine(problem.sentence([](std::string_view english) { return std::string(english); }) +
          (problem.kind < Kind::notAdded ? " " + problem.reason : ""));
  if (problem_ && problem.kind <= Kind::notAdded)
    ++problem_->others;
  else
    problem_ = std::move(problem);
  emit changed();
}

void PackShelf::forgetProblem() {
  if (!problem_ || !current_.empty()) return;
  problem_.reset();
  emit changed();
}

// Taking away

bool PackShelf::discard(const PackInfo& pack) {
  if (pack.isBundled) return false;
  problem_.reset();
  try {
    wayBack_ = discard_(pack);
  } catch (const std::exception& error) {
    fail({Kind::notRemoved, pack.name, reasonOf(error, pack.name)});
    return false;
  }
  discarded_ = pack;
  emit changed();
  main_.after(regret, [this, alive = std::weak_ptr(alive_), number = ++discards_] {
    if (alive.expired() || number != discards_) return;
    discarded_.reset();
    emit changed();
  });
  return true;
}

std::optional<PackInfo> PackShelf::bringBack() {
  if (!discarded_) return std::nullopt;
  PackInfo pack = *std::exchange(discarded_, std::nullopt);
  try {
    wayBack_();
  } catch (const std::exception& error) {
    fail({Kind::notBroughtBack, pack.name, reasonOf(error, pack.name)});
    return std::nullopt;
  }
  emit changed();
  return pack;
}

}  // namespace tobrin
