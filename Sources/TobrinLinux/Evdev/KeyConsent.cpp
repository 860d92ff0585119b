#include "Evdev/KeyConsent.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "Evdev/KeyBroker.h"
#include "Evdev/KeyRecord.h"
#include "System/SystemBus.h"

namespace tobrin {

struct KeyConsent::Question {
  Answer answer;
  bool isAnswered = false;
  SystemBus bus;

  bool ask(bool remember) {
    constexpr uint64_t patienceUs = 330'000'000;  // a little more than the broker has
    sd_bus* connection = nullptr;
    if (sd_bus_open_system(&connection) < 0) return false;
    bus.reset(connection);
    sd_bus_set_method_call_timeout(connection, patienceUs);
    return sd_bus_call_method_async(connection, nullptr, keyBrokerName, keyBrokerPath,
                                    keyBrokerName, "Allow", &answered, this, "b",
                                    remember ? 1 : 0) >= 0;
  }

  void take(const std::string& problem) {
    isAnswered = true;
    answer(problem);
  }

  static int answered(sd_bus_message* message, void* self, sd_bus_error*) {
    auto* const question = static_cast<Question*>(self);
    const sd_bus_error* const error = sd_bus_message_get_error(message);
    question->take(error == nullptr ? "" : broker::refusal(error->name, error->message));
    return 0;
  }
};

KeyConsent::KeyConsent(bool remember, Answer answer) : question_(std::make_unique<Question>()) {
  question_->answer = std::move(answer);
  if (question_->ask(remember)) {
    process();
  } else {
    question_->take("the message bus does not answer");
  }
}

KeyConsent::~KeyConsent() = default;

bool KeyConsent::isPossible() {
  sd_bus* bus = nullptr;
  if (sd_bus_open_system(&bus) < 0) return false;
  const SystemBus owner(bus);
  char** running = nullptr;
  char** startable = nullptr;
  if (sd_bus_list_names(bus, &running, &startable) < 0) return false;
  bool found = false;
  for (char** const list : {running, startable}) {
    for (char** name = list; name != nullptr && *name != nullptr; ++name) {
      found |= std::strcmp(*name, keyBrokerName) == 0;
      std::free(*name);
    }
    std::free(list);
  }
  return found;
}

int KeyConsent::descriptor() const {
  return !question_->isAnswered ? sd_bus_get_fd(question_->bus.get()) : -1;
}

bool KeyConsent::process() {
  int result = 0;
  while (!question_->isAnswered && (result = sd_bus_process(question_->bus.get(), nullptr)) > 0) {
  }
  if (!question_->isAnswered && result < 0) {
    question_->take("the message bus is gone");
  }
  return !question_->isAnswered;
}

}  // namespace tobrin
