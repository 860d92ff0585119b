/// Follows the application in front on a thread that exists between `start` and `stop`, by the
/// first feed that has something to tell. It waits without waking up. Thread: main.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "Engine/FrontWindow.h"
#include "Front/FrontFeed.h"
#include "System/WakeEvent.h"

namespace tobrin {

class FrontThread final : public FrontWindow {
 public:
  /// Makes a feed; null where it is none for this session. Called on the watcher's thread.
  using MakeFeed = std::function<std::unique_ptr<FrontFeed>()>;

  /// In order of preference. Where none has anything to tell, or the one that did is lost, all are
  /// asked again after each of the pauses: a desktop that has just started may be late.
  explicit FrontThread(std::vector<MakeFeed> feeds,
                       std::vector<std::chrono::milliseconds> pauses = {std::chrono::seconds(3),
                                                                        std::chrono::seconds(15),
                                                                        std::chrono::seconds(60)})
      : feeds_(std::move(feeds)), pauses_(std::move(pauses)) {}
  ~FrontThread() override { stop(); }

  void start(Changed changed) override;
  void stop() override;

 private:
  void run(const Changed& changed);
  [[nodiscard]] std::unique_ptr<FrontFeed> chosenFeed() const;
  [[nodiscard]] bool endsWithin(std::chrono::milliseconds time) const;
  /// Runs until `stop`; false where the connection was lost before that.
  bool follow(FrontFeed& feed, const Changed& changed);

  const std::vector<MakeFeed> feeds_;
  const std::vector<std::chrono::milliseconds> pauses_;
  WakeEvent stop_;
  std::thread thread_;
};

}  // namespace tobrin
