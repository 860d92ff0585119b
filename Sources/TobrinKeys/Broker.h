/// The service on the message bus: says who may hear the keyboards, and lets them. Thread: main.
#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Consents.h"
#include "EventLoop.h"
#include "KeyStream.h"
#include "Seats.h"
#include "System/SystemBus.h"

namespace tobrin {

class Broker final {
 public:
  struct Options {
    std::string program;        ///< the one executable that is served
    std::string consentFolder;  ///< where consents are remembered
    bool alsoWhenLocked = false;
  };

  /// Takes its name on the bus; `problem` says why it could not.
  Broker(Options options, sd_event* loop, sd_bus* bus);

  [[nodiscard]] const std::string& problem() const { return problem_; }

 private:
  struct Question;
  struct Methods;

  int allow(sd_bus_message* call, sd_bus_error* error);
  int open(sd_bus_message* call, sd_bus_error* error);
  int isAllowed(sd_bus_message* call, sd_bus_error* error);
  int takeBack(sd_bus_message* call, sd_bus_error* error);

  [[nodiscard]] std::optional<uid_t> caller(sd_bus_message* call, sd_bus_error* error);
  [[nodiscard]] bool isFull(uid_t user) const;
  int askAdministrator(sd_bus_message* call, uid_t user, bool remember);
  int takeAnswer(sd_bus_message* answer, const Question& question);
  [[nodiscard]] Place placeOf(uid_t user) const;
  void addStream(uid_t user, FileDescriptor socket);
  void endWithoutConsent();
  void review();
  void lookAgainSoon();
  void endWhenIdle();
  void watchDevices();
  bool takeName();

  const Options options_;
  sd_event* const loop_;
  sd_bus* const bus_;
  Seats seats_;
  Consents consents_;
  std::string problem_;
  std::vector<std::unique_ptr<KeyStream>> streams_;
  unsigned questions_ = 0;  // that an administrator has been asked and has not answered
  unsigned looksLeft_ = 0;
  EventSource anyDevice_, inputDevices_, consentFiles_, secondLook_, idle_;
};

}  // namespace tobrin
