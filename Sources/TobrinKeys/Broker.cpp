#include "Broker.h"

#include <sys/inotify.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "Caller.h"
#include "Evdev/KeyRecord.h"

namespace tobrin {
namespace {

constexpr std::size_t mostStreams = 16, mostStreamsOfOne = 4;
constexpr uint64_t lookAgainUs = 50'000;
constexpr unsigned looks = 40;  // a device manager that is not done after two seconds is stuck
constexpr uint64_t idleUs = 30'000'000;
constexpr uint64_t answerUs = 300'000'000;  // for an administrator to come
constexpr const char* action = "app.tobrin.keys.listen";

// A password was needed, but no program could ask for one.
constexpr const char* nobodyAsks =
    "no program of this desktop asks for passwords: start a polkit agent";
constexpr const char* notInFront = "app.tobrin.Keys1.Error.NotInFront";
constexpr const char* failed = "app.tobrin.Keys1.Error.Failed";

int once(sd_event* loop, EventSource& timer, uint64_t afterUs, sd_event_time_handler_t handler,
         void* self) {
  sd_event_source* source = nullptr;
  const int status =
      sd_event_add_time_relative(loop, &source, CLOCK_MONOTONIC, afterUs, 0, handler, self);
  timer.reset(source);
  return status;
}

}  // namespace

struct Broker::Question {
  Broker* broker;
  BusMessage call;
  uid_t user;
  bool remember;
};

/// What the libraries call.
struct Broker::Methods {
  template <int (Broker::*method)(sd_bus_message*, sd_bus_error*)>
  static int call(sd_bus_message* message, void* self, sd_bus_error* error) {
    auto* const broker = static_cast<Broker*>(self);
    broker->endWhenIdle();
    return (broker->*method)(message, error);
  }

  static int sessionsChanged(sd_bus_message*, void* self, sd_bus_error*) {
    static_cast<Broker*>(self)->looksLeft_ = looks;
    static_cast<Broker*>(self)->review();
    return 0;
  }

  static int devicesChanged(sd_event_source*, const inotify_event*, void* self) {
    static_cast<Broker*>(self)->looksLeft_ = looks;
    static_cast<Broker*>(self)->lookAgainSoon();
    return 0;
  }

  static int consentsChanged(sd_event_source*, const inotify_event*, void* self) {
    static_cast<Broker*>(self)->endWithoutConsent();
    return 0;
  }

  static int lookAgain(sd_event_source*, uint64_t, void* self) {
    static_cast<Broker*>(self)->review();
    return 0;
  }

  static int answered(sd_bus_message* answer, void* self, sd_bus_error*) {
    const std::unique_ptr<Question> question(static_cast<Question*>(self));
    return question->broker->takeAnswer(answer, *question);
  }

  static int idle(sd_event_source*, uint64_t, void* self) {
    auto* const broker = static_cast<Broker*>(self);
    if (broker->streams_.empty() && broker->questions_ == 0) return sd_event_exit(broker->loop_, 0);
    broker->endWhenIdle();
    return 0;
  }
};

Broker::Broker(Options options, sd_event* loop, sd_bus* bus)
    : options_(std::move(options)),
      loop_(loop),
      bus_(bus),
      seats_(bus),
      consents_(options_.consentFolder) {
  sd_event_source* source = nullptr;
  sd_event_add_inotify(loop_, &source, "/dev", IN_CREATE | IN_ONLYDIR, &Methods::devicesChanged,
                       this);
  anyDevice_.reset(source);
  source = nullptr;
  // An administrator may take a consent back by deleting its file.
  sd_event_add_inotify(loop_, &source, options_.consentFolder.c_str(),
                       IN_DELETE | IN_MOVED_FROM | IN_ONLYDIR, &Methods::consentsChanged, this);
  consentFiles_.reset(source);
  if (!takeName()) problem_ = "no place on the message bus";
  endWhenIdle();
}

bool Broker::takeName() {
  static const sd_bus_vtable methods[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Allow", "b", "", &Methods::call<&Broker::allow>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("Open", "", "h", &Methods::call<&Broker::open>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("IsAllowed", "", "b", &Methods::call<&Broker::isAllowed>,
                    SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("TakeBack", "", "", &Methods::call<&Broker::takeBack>,
                    SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END};
  constexpr const char* loginManager =
      "type='signal',sender='org.freedesktop.login1',path_namespace='/org/freedesktop/login1'";
  constexpr const char* itsEnd =
      "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
      "arg0='org.freedesktop.login1'";
  const auto hear = [&](const char* what) {
    return sd_bus_add_match(bus_, nullptr, what, &Methods::sessionsChanged, this) >= 0;
  };
  return sd_bus_add_object_vtable(bus_, nullptr, keyBrokerPath, keyBrokerName, methods, this) >=
             0 &&
         hear(loginManager) && hear(itsEnd) && sd_bus_request_name(bus_, keyBrokerName, 0) >= 0;
}

std::optional<uid_t> Broker::caller(sd_bus_message* call, sd_bus_error* error) {
  const auto user = userOfProgram(call, options_.program);
  if (!user) sd_bus_error_set(error, keyBrokerNotTobrin, "only the installed Tobrin is served");
  return user;
}

int Broker::allow(sd_bus_message* call, sd_bus_error* error) {
  int remember = 0;
  if (const int status = sd_bus_message_read(call, "b", &remember); status < 0) return status;
  const auto user = caller(call, error);
  if (!user) return -EPERM;
  if (placeOf(*user).kind != Place::Kind::front)
    return sd_bus_error_set(error, notInFront, "only the user in front of the computer may ask");
  if (questions_ >= mostStreams) return sd_bus_error_set(error, failed, "too many questions");
  return askAdministrator(call, *user, remember != 0);
}

int Broker::askAdministrator(sd_bus_message* call, uid_t user, bool remember) {
  sd_bus_message* made = nullptr;
  int status = sd_bus_message_new_method_call(
      bus_, &made, "org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
      "org.freedesktop.PolicyKit1.Authority", "CheckAuthorization");
  const BusMessage question(made);
  if (status >= 0) {
    constexpr uint32_t askPeople = 1;
    status = sd_bus_message_append(made, "(sa{sv})sa{ss}us", "system-bus-name", 1, "name", "s",
                                   sd_bus_message_get_sender(call), action, 0, askPeople, "");
  }
  if (status < 0) return status;
  auto asked = std::make_unique<Question>(
      Question{this, BusMessage(sd_bus_message_ref(call)), user, remember});
  status = sd_bus_call_async(bus_, nullptr, made, &Methods::answered, asked.get(), answerUs);
  if (status < 0) return status;
  static_cast<void>(asked.release());  // comes back with the answer
  ++questions_;
  return 1;
}

int Broker::takeAnswer(sd_bus_message* answer, const Question& question) {
  --questions_;
  sd_bus_message* const call = question.call.get();
  int agreed = 0;
  int couldAsk = 0;
  if (sd_bus_message_is_method_error(answer, nullptr) != 0)
    return sd_bus_reply_method_errorf(call, failed, "%s",
                                      sd_bus_message_get_error(answer)->message);
  if (sd_bus_message_enter_container(answer, 'r', "bba{ss}") < 0 ||
      sd_bus_message_read(answer, "bb", &agreed, &couldAsk) < 0 || agreed == 0)
    return sd_bus_reply_method_errorf(call, keyBrokerNotAllowed,
                                      couldAsk != 0 ? nobodyAsks : "it was not allowed");
  if (!consents_.give(question.user, question.remember))
    return sd_bus_reply_method_errorf(call, failed, "the consent could not be kept");
  return sd_bus_reply_method_return(call, "");
}

int Broker::open(sd_bus_message* call, sd_bus_error* error) {
  const auto user = caller(call, error);
  if (!user) return -EPERM;
  if (!consents_.has(*user))
    return sd_bus_error_set(error, keyBrokerNotAllowed, "an administrator has not allowed it");
  if (isFull(*user)) return sd_bus_error_set(error, failed, "too many programs ask");
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return -errno;
  FileDescriptor ours(ends[0]);
  const FileDescriptor theirs(ends[1]);
  shutdown(ours.get(), SHUT_RD);  // nothing that comes from there is read
  const int status = sd_bus_reply_method_return(call, "h", theirs.get());
  if (status >= 0) addStream(*user, std::move(ours));
  return status;
}

bool Broker::isFull(uid_t user) const {
  const auto own = std::count_if(streams_.begin(), streams_.end(),
                                 [&](const auto& stream) { return stream->user() == user; });
  return streams_.size() >= mostStreams || own >= static_cast<std::ptrdiff_t>(mostStreamsOfOne);
}

void Broker::addStream(uid_t user, FileDescriptor socket) {
  const int key = socket.get();
  KeyStream::Notices notices{
      .onEnd =
          [this, key] {
            std::erase_if(streams_, [&](const auto& one) { return one->isThrough(key); });
            endWhenIdle();
          },
      .onDoubt =
          [this] {
            looksLeft_ = looks;
            lookAgainSoon();
          }};
  streams_.push_back(
      std::make_unique<KeyStream>(loop_, seats_, user, std::move(socket), std::move(notices)));
  if (options_.alsoWhenLocked) streams_.back()->tell(KeyRecord::Kind::alsoWhenLocked);
  looksLeft_ = looks;
  review();
}

int Broker::isAllowed(sd_bus_message* call, sd_bus_error* error) {
  const auto user = caller(call, error);
  return user ? sd_bus_reply_method_return(call, "b", consents_.has(*user)) : -EPERM;
}

int Broker::takeBack(sd_bus_message* call, sd_bus_error* error) {
  const auto user = caller(call, error);
  if (!user) return -EPERM;
  const bool isForgotten = consents_.takeBack(*user);
  endWithoutConsent();
  if (!isForgotten) return sd_bus_error_set(error, failed, "the consent could not be deleted");
  return sd_bus_reply_method_return(call, "");
}

void Broker::endWithoutConsent() {
  std::erase_if(streams_, [&](const auto& stream) {
    if (consents_.has(stream->user())) return false;
    stream->stop(KeyRecord::Kind::takenBack);
    return true;
  });
}

Place Broker::placeOf(uid_t user) const {
  Place place = seats_.placeOf(user);
  if (place.kind == Place::Kind::locked && options_.alsoWhenLocked) place.kind = Place::Kind::front;
  return place;
}

/// Looks where everybody sits, and which keyboards there are.
void Broker::review() {
  watchDevices();  // first, so that no change is missed
  bool isSettled = true;
  for (const auto& stream : streams_)
    isSettled &= stream->follow(placeOf(stream->user()));
  if (!isSettled) lookAgainSoon();
}

void Broker::lookAgainSoon() {
  if (looksLeft_ == 0) return;
  --looksLeft_;
  once(loop_, secondLook_, lookAgainUs, &Methods::lookAgain, this);
}

/// Again each time: the folder goes with the last device and comes back with the next.
void Broker::watchDevices() {
  sd_event_source* source = nullptr;
  sd_event_add_inotify(loop_, &source, "/dev/input", IN_CREATE | IN_ATTRIB | IN_ONLYDIR,
                       &Methods::devicesChanged, this);
  inputDevices_.reset(source);
}

void Broker::endWhenIdle() {
  once(loop_, idle_, idleUs, &Methods::idle, this);
}

}  // namespace tobrin
