/// The user's own packs: adds what they bring, one after the other on a queue made for that, and
/// takes packs away to the trash. Says how that goes. Thread: main.
#pragma once

#include <QObject>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/SerialQueue.h"
#include "Model/PackProblem.h"
#include "Packs/PackManifest.h"

namespace tobrin {

class PackShelf final : public QObject {
  Q_OBJECT

 public:
  using Progress = std::function<void(double fraction)>;
  /// Puts what lies at `source` among the user's packs and returns the new pack's id. Throws, also
  /// what `progress` throws. Runs on the queue for that.
  using Add = std::function<std::string(const std::filesystem::path& source, const Progress&)>;
  /// Moves a pack to the trash and returns what brings it back; both throw.
  using Discard = std::function<std::function<void()>(const PackInfo& pack)>;

  /// Work that ends sooner is not shown.
  static constexpr std::chrono::seconds silence{1};
  /// How long a pack can be brought back.
  static constexpr std::chrono::seconds regret{12};

  /// The queues outlive this object, as does what `add` and `discard` use.
  PackShelf(SerialQueue& main, SerialQueue& adding, Add add, Discard discard);
  ~PackShelf() override;

  /// Adds packs, after those being added. A folder may also be named by the description in it.
  void add(const std::vector<std::filesystem::path>& sources);
  /// Adds nothing more; what was added stays.
  void cancel();
  /// Returns whether the pack is gone.
  bool discard(const PackInfo& pack);
  /// Brings back what was discarded last; its pack where that worked.
  std::optional<PackInfo> bringBack();
  /// To be called when the problem has been seen.
  void forgetProblem();

  /// What is being added, by its file name; empty while nothing is, or while it is not shown yet.
  [[nodiscard]] std::string adding() const { return isShown_ ? current_ : std::string(); }
  [[nodiscard]] double fraction() const { return fraction_; }  ///< of it, 0 to 1
  [[nodiscard]] const std::optional<PackProblem>& problem() const { return problem_; }
  /// What can be brought back; null where nothing can.
  [[nodiscard]] const PackInfo* discarded() const { return discarded_ ? &*discarded_ : nullptr; }

 signals:
  void changed();
  void added(const std::string& id);  ///< all are there; this one came last

 private:
  struct Outcome {
    std::string id;  // empty where it failed
    std::optional<PackProblem> problem;
  };

  void startNext();
  void ended(const Outcome& outcome);
  void finish();
  void showLater();
  void report(double fraction);
  void fail(PackProblem problem);
  static Outcome outcomeOf(const Add& add, const std::filesystem::path& source,
                           const Progress& progress);

  SerialQueue& main_;
  SerialQueue& adding_;
  const Add add_;
  const Discard discard_;

  std::deque<std::filesystem::path> waiting_;
  std::string current_;  // empty: nothing is being added
  double fraction_ = 0;
  bool isShown_ = false;
  uint64_t rounds_ = 0;  // each from idle to idle
  std::string newest_;   // the pack added last in this round
  std::optional<PackProblem> problem_;

  std::optional<PackInfo> discarded_;
  std::function<void()> wayBack_;
  uint64_t discards_ = 0;

  std::shared_ptr<std::atomic<bool>> stop_;  // shared with the queue: it ends early
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // posted tasks watch it
};

}  // namespace tobrin
