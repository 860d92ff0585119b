/// The application in front on Plasma's Wayland sessions: KWin runs a script of ours, which reports
/// over the session bus. The script is loaded while this object lives. Thread: the watcher's.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

#include "Front/FrontFeed.h"
#include "System/SystemBus.h"

struct sd_event;

namespace tobrin {

class KWinFrontFeed final : public FrontFeed {
 public:
  /// `script` is the file that KWin runs.
  explicit KWinFrontFeed(std::string script);
  ~KWinFrontFeed() override;
  KWinFrontFeed(const KWinFrontFeed&) = delete;
  KWinFrontFeed& operator=(const KWinFrontFeed&) = delete;

  [[nodiscard]] int descriptor() const override;
  bool process(const Report& report) override;

 private:
  struct LoopUnref {
    void operator()(sd_event* loop) const;
  };

  [[nodiscard]] bool connect();
  [[nodiscard]] bool listen();
  [[nodiscard]] bool load();
  void unload() const;
  [[nodiscard]] std::string owner() const;
  static int reported(sd_bus_message* report, void* self, sd_bus_error* error);
  static int ownerChanged(sd_bus_message* notice, void* self, sd_bus_error* error);

  const std::string script_;
  std::unique_ptr<sd_event, LoopUnref> loop_;
  SystemBus bus_;                   // the session's
  std::string kwin_;                // its name on the bus; nobody else's reports count
  const Report* report_ = nullptr;  // while it processes
  bool isLost_ = false;             // KWin has started again and did not take the script
};

}  // namespace tobrin
