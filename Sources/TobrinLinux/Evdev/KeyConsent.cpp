#include "Evdev/KeyConsent.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "Evdev/KeyRecord.h"
#include "System/SystemBus.h"

namespace tobrin {

struct KeyConsent::Question {
  Answer answer;
  bool isAnswered = false;
  SystemBus bus;

  static int answered(sd_bus_message* message, void* self, sd_bus_error*) {
    auto* const question = static_cast<Question*>(self);
    const sd_bus_error* const error = sd_bus_message_get_error(message);
    question->isAnswered = true;
    question->answer(error == nullptr ? "" : error->message);
    return 0;
  }
};

KeyConsent::KeyConsent(bool remember, Answer answer) : question_(std::make_unique<Question>()) {
  constexpr uint64_t patienceUs = 330'000'000;  // a little more than the broker has
  question_->answer = std::move(answer);
  sd_bus* bus = nullptr;
  if (sd_bus_open_system(&bus) < 0) return;
  SystemBus owner(bus);
  sd_bus_set_method_call_timeout(bus, patienceUs);
  if (sd_bus_call_method_async(bus, nullptr, keyBrokerName, keyBrokerPath, keyBrokerName, "Allow",
                               &Question::answered, question_.get(), "b", remember ? 1 : 0) < 0)
    return;
  question_->bus = std::move(owner);
  process();
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
  return question_->bus ? sd_bus_get_fd(question_->bus.get()) : -1;
}

bool KeyConsent::process() {
  int result = 0;
  while (!question_->isAnswered && (result = sd_bus_process(question_->bus.get(), nullptr)) > 0) {
  }
  if (!question_->isAnswered && result < 0) {
    question_->isAnswered = true;
    question_->answer("the message bus is gone");
  }
  return !question_->isAnswered;
}

}  // namespace tobrin
