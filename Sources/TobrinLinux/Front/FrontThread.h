/// Follows the application in front on a thread that exists between `start` and `stop`, by the
/// first feed that has something to tell. It waits without waking up. Thread: main.
#pragma once

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

  /// In order of preference.
  explicit FrontThread(std::vector<MakeFeed> feeds) : feeds_(std::move(feeds)) {}
  ~FrontThread() override { stop(); }

  void start(Changed changed) override;
  void stop() override;

 private:
  void run(const Changed& changed);
  [[nodiscard]] std::unique_ptr<FrontFeed> chosenFeed() const;
  /// Until it is to end; false where the connection was lost before.
  bool follow(FrontFeed& feed, const Changed& changed);

  const std::vector<MakeFeed> feeds_;
  WakeEvent stop_;
  std::thread thread_;
};

}  // namespace tobrin
