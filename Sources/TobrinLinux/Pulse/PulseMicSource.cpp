#include "Pulse/PulseMicSource.h"

#include <pulse/pulseaudio.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstring>
#include <string_view>
#include <utility>

#include "Pulse/PulseListing.h"

namespace tobrin {

namespace {

constexpr std::chrono::milliseconds answerLimit{500};
constexpr pa_usec_t retryPause = 5 * PA_USEC_PER_SEC;

int32_t processOf(const pa_proplist* properties) {
  const char* text = pa_proplist_gets(properties, PA_PROP_APPLICATION_PROCESS_ID);
  int32_t number = 0;
  if (text != nullptr) std::from_chars(text, text + std::strlen(text), number);
  return number;
}

PulseListing::Recorder recorder(const pa_source_output_info& info) {
  const char* method = info.resample_method == nullptr ? "" : info.resample_method;
  return {.source = info.source,
          .process = processOf(info.proplist),
          .isCorked = info.corked != 0,
          .isLevelMeter = std::string_view(method) == "peaks",
          .isModule = info.client == PA_INVALID_INDEX};
}

}  // namespace

/// The library's loop on its thread and a connection to the server on it, made again while
/// it fails. Thread: the loop's, but for making and destroying.
class PulseMicSource::Connection final {
 public:
  explicit Connection(PulseMicSource& owner) : owner_(owner), loop_(pa_threaded_mainloop_new()) {
    pa_threaded_mainloop_set_name(loop_, "Tobrin.Pulse");
    connect();
    pa_threaded_mainloop_start(loop_);
  }
  ~Connection() {
    pa_threaded_mainloop_stop(loop_);
    drop();
    pa_threaded_mainloop_free(loop_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

 private:
  void connect() {
    context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Tobrin");
    pa_context_set_state_callback(
        context_, [](pa_context*, void* self) { static_cast<Connection*>(self)->stateChanged(); },
        this);
    // A failure also arrives as a state.
    pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
  }

  void drop() {
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(context_);
  }

  void stateChanged() {
    const pa_context_state_t state = pa_context_get_state(context_);
    if (state == PA_CONTEXT_READY) follow();
    if (PA_CONTEXT_IS_GOOD(state)) return;
    owner_.keep({});  // now it is not known who records
    isListing_ = false;
    pa_context_rttime_new(
        context_, pa_rtclock_now() + retryPause,
        [](pa_mainloop_api* loop, pa_time_event* timer, const timeval*, void* self) {
          loop->time_free(timer);
          static_cast<Connection*>(self)->drop();
          static_cast<Connection*>(self)->connect();
        },
        this);
  }

  void follow() {
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t, uint32_t, void* self) {
          static_cast<Connection*>(self)->list();
        },
        this);
    constexpr int kinds = PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SOURCE |
                          PA_SUBSCRIPTION_MASK_SOURCE_OUTPUT;
    finish(pa_context_subscribe(context_, static_cast<pa_subscription_mask_t>(kinds), nullptr,
                                nullptr));
    list();
  }

  /// The server answers in the order of the questions, so that the last answer completes the rest.
  void list() {
    if (std::exchange(isListing_, true)) {
      isStale_ = true;
      return;
    }
    isStale_ = false;
    listing_ = {};
    finish(pa_context_get_server_info(
        context_,
        [](pa_context*, const pa_server_info* info, void* self) {
          if (info != nullptr && info->default_source_name != nullptr)
            static_cast<Connection*>(self)->listing_.defaultSource = info->default_source_name;
        },
        this));
    finish(pa_context_get_source_info_list(
        context_,
        [](pa_context*, const pa_source_info* info, int end, void* self) {
          if (end == 0) static_cast<Connection*>(self)->add(*info);
        },
        this));
    finish(pa_context_get_source_output_info_list(
        context_,
        [](pa_context*, const pa_source_output_info* info, int end, void* self) {
          auto* connection = static_cast<Connection*>(self);
          if (end == 0)
            connection->listing_.recorders.push_back(recorder(*info));
          else
            connection->listed();
        },
        this));
  }

  void add(const pa_source_info& info) {
    listing_.sources[info.index] = {.name = info.name,
                                    .description = info.description,
                                    .isMonitor = info.monitor_of_sink != PA_INVALID_INDEX};
  }

  void listed() {
    isListing_ = false;
    if (isStale_)
      list();
    else
      owner_.keep(listing_.activity(getpid()));
  }

  static void finish(pa_operation* operation) {
    if (operation != nullptr) pa_operation_unref(operation);
  }

  PulseMicSource& owner_;
  pa_threaded_mainloop* const loop_;
  pa_context* context_ = nullptr;
  PulseListing listing_;
  bool isListing_ = false;  // `listing_` waits for answers
  bool isStale_ = false;    // and something has changed since
};

PulseMicSource::PulseMicSource() = default;

PulseMicSource::~PulseMicSource() {
  stop();
}

void PulseMicSource::start(std::function<void()> changed) {
  stop();
  changed_ = std::move(changed);
  connection_ = std::make_unique<Connection>(*this);
}

void PulseMicSource::stop() {
  connection_.reset();
  const std::lock_guard lock(mutex_);
  activity_ = {};
  isSettled_ = false;
}

MicActivity PulseMicSource::read() {
  const bool isOnce = connection_ == nullptr;
  if (isOnce) start(nullptr);
  MicActivity activity;
  {
    std::unique_lock lock(mutex_);
    settled_.wait_for(lock, answerLimit, [this] { return isSettled_; });
    activity = activity_;
  }
  if (isOnce) stop();
  return activity;
}

void PulseMicSource::keep(MicActivity activity) {
  bool isNews = false;
  {
    const std::lock_guard lock(mutex_);
    isNews = activity != activity_;
    activity_ = std::move(activity);
    isSettled_ = true;
  }
  settled_.notify_all();
  if (isNews && changed_) changed_();
}

}  // namespace tobrin
