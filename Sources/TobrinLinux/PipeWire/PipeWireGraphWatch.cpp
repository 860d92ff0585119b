#include "PipeWire/PipeWireGraphWatch.h"

#include <spa/utils/json.h>

#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include "PipeWire/PipeWireCalls.h"

namespace tobrin {

namespace {

std::string textOf(const spa_dict& properties, const char* key) {
  const char* text = spa_dict_lookup(&properties, key);
  return text == nullptr ? std::string() : text;
}

std::optional<uint32_t> numberOf(const spa_dict& properties, const char* key) {
  const std::string text = textOf(properties, key);
  uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// The server knows the process at the other end of its socket. All clients of the PulseAudio layer
/// share that layer's process, and the number that a program gives itself counts, unless it is in a
/// sandbox: outside, that number is a stranger's, or ours. 0: not known.
int32_t processOf(const spa_dict& properties) {
  const auto own = numberOf(properties, PW_KEY_APP_PROCESS_ID);
  const bool isRelayed = textOf(properties, PW_KEY_CLIENT_API) == "pipewire-pulse" && own;
  if (isRelayed && !textOf(properties, "pipewire.access.portal.app_id").empty()) return 0;
  return static_cast<int32_t>((isRelayed ? own : numberOf(properties, PW_KEY_SEC_PID)).value_or(0));
}

/// The name in the server's {"name": "..."}; empty where there is none.
std::string nameInJson(const char* json) {
  if (json == nullptr) return {};
  spa_json outer{};
  spa_json object{};
  char key[64];
  char value[256];
  spa_json_init(&outer, json, std::strlen(json));
  if (spa_json_enter_object(&outer, &object) <= 0) return {};
  while (spa_json_get_string(&object, key, sizeof key) > 0) {
    if (spa_json_get_string(&object, value, sizeof value) <= 0) return {};
    if (std::string_view(key) == "name") return value;
  }
  return {};
}

}  // namespace

class PipeWireGraphWatch::Registry {
 public:
  Registry(pw_core* core, PipeWireGraphWatch& watch) : registry_(getRegistry(core)) {
    coreEvents_.version = PW_VERSION_CORE_EVENTS;
    coreEvents_.done = [](void* self, uint32_t id, int sequence) {
      if (id == PW_ID_CORE) static_cast<PipeWireGraphWatch*>(self)->answered(sequence);
    };
    addListener(core, coreHook_, coreEvents_, &watch);
    events_.version = PW_VERSION_REGISTRY_EVENTS;
    events_.global = [](void* self, uint32_t id, uint32_t, const char* type, uint32_t,
                        const spa_dict* properties) {
      static_cast<PipeWireGraphWatch*>(self)->added(id, type, properties);
    };
    events_.global_remove = [](void* self, uint32_t id) {
      static_cast<PipeWireGraphWatch*>(self)->removed(id);
    };
    addListener(registry_, hook_, events_, &watch);
  }
  ~Registry() {
    spa_hook_remove(&coreHook_);
    spa_hook_remove(&hook_);
    destroyProxy(registry_);
  }
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;

  [[nodiscard]] pw_registry* get() const { return registry_; }

 private:
  pw_registry* const registry_;
  spa_hook coreHook_{};
  pw_core_events coreEvents_{};
  spa_hook hook_{};
  pw_registry_events events_{};
};

class PipeWireGraphWatch::BoundObject {
 public:
  BoundObject(PipeWireGraphWatch& watch, uint32_t id, const char* type, uint32_t version)
      : watch_(watch), id_(id), proxy_(bind(watch.registry_->get(), id, type, version)) {
    watch.hasAskedSince_ = true;
  }
  virtual ~BoundObject() {
    if (isListening_) spa_hook_remove(&hook_);
    if (proxy_ != nullptr) pw_proxy_destroy(proxy_);
  }
  BoundObject(const BoundObject&) = delete;
  BoundObject& operator=(const BoundObject&) = delete;

  [[nodiscard]] pw_proxy* proxy() const { return proxy_; }

 protected:
  template <typename Proxy, typename Events>
  void listen(const Events& events, void* self) {
    if (proxy_ == nullptr) return;
    addListener(reinterpret_cast<Proxy*>(proxy_), hook_, events, self);
    isListening_ = true;
  }
  [[nodiscard]] CaptureGraph& graph() const { return watch_.graph_; }
  [[nodiscard]] uint32_t id() const { return id_; }
  void updated() const { watch_.updated_(); }

 private:
  PipeWireGraphWatch& watch_;
  const uint32_t id_;
  pw_proxy* const proxy_;
  spa_hook hook_{};
  bool isListening_ = false;
};

class PipeWireGraphWatch::BoundNode final : public BoundObject {
 public:
  BoundNode(PipeWireGraphWatch& watch, uint32_t id)
      : BoundObject(watch, id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE) {
    events_.version = PW_VERSION_NODE_EVENTS;
    events_.info = [](void* self, const pw_node_info* info) {
      static_cast<BoundNode*>(self)->told(*info);
    };
    listen<pw_node>(events_, this);
  }

 private:
  void told(const pw_node_info& info) {
    const auto found = graph().nodes.find(id());
    if (found == graph().nodes.end()) return;
    CaptureGraph::Node& node = found->second;
    node.isRunning = info.state == PW_NODE_STATE_RUNNING;
    // Later news that bring a state alone come without properties.
    if ((info.change_mask & PW_NODE_CHANGE_MASK_PROPS) != 0 && info.props != nullptr) {
      node.linkGroup = textOf(*info.props, PW_KEY_NODE_LINK_GROUP);
      node.isLevelMeter = textOf(*info.props, PW_KEY_STREAM_MONITOR) == "true";
    }
    updated();
  }

  pw_node_events events_{};
};

class PipeWireGraphWatch::BoundClient final : public BoundObject {
 public:
  BoundClient(PipeWireGraphWatch& watch, uint32_t id)
      : BoundObject(watch, id, PW_TYPE_INTERFACE_Client, PW_VERSION_CLIENT) {
    events_.version = PW_VERSION_CLIENT_EVENTS;
    events_.info = [](void* self, const pw_client_info* info) {
      static_cast<BoundClient*>(self)->told(*info);
    };
    listen<pw_client>(events_, this);
  }

 private:
  void told(const pw_client_info& info) {
    if ((info.change_mask & PW_CLIENT_CHANGE_MASK_PROPS) == 0 || info.props == nullptr) return;
    graph().processes[id()] = processOf(*info.props);
    updated();
  }

  pw_client_events events_{};
};

class PipeWireGraphWatch::BoundMetadata final : public BoundObject {
 public:
  BoundMetadata(PipeWireGraphWatch& watch, uint32_t id)
      : BoundObject(watch, id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA) {
    events_.version = PW_VERSION_METADATA_EVENTS;
    events_.property = [](void* self, uint32_t subject, const char* key, const char*,
                          const char* value) {
      if (subject == PW_ID_CORE) static_cast<BoundMetadata*>(self)->told(key, value);
      return 0;
    };
    listen<pw_metadata>(events_, this);
  }

 private:
  void told(const char* key, const char* value) {
    // Without a key, everything is taken back.
    if (key != nullptr && std::string_view(key) != "default.audio.source") return;
    graph().defaultSource = nameInJson(key == nullptr ? nullptr : value);
    updated();
  }

  pw_metadata_events events_{};
};

PipeWireGraphWatch::PipeWireGraphWatch(pw_core* core, std::function<void()> updated, Depth depth)
    : core_(core),
      updated_(std::move(updated)),
      depth_(depth),
      registry_(std::make_unique<Registry>(core, *this)),
      awaited_(sync(core)) {}

PipeWireGraphWatch::~PipeWireGraphWatch() = default;

void PipeWireGraphWatch::added(uint32_t id, const char* type, const spa_dict* properties) {
  if (properties == nullptr) return;
  const std::string_view kind = type;
  if (kind == PW_TYPE_INTERFACE_Node) {
    addNode(id, *properties);
  } else if (kind == PW_TYPE_INTERFACE_Link) {
    addLink(id, *properties);
  } else if (kind == PW_TYPE_INTERFACE_Metadata &&
             textOf(*properties, PW_KEY_METADATA_NAME) == "default") {
    bound_[id] = std::make_unique<BoundMetadata>(*this, id);
    metadataId_ = id;
    updated_();
  }
}

void PipeWireGraphWatch::removed(uint32_t id) {
  if (metadataId_ == id) metadataId_.reset();
  const bool mattered = bound_.erase(id) + graph_.nodes.erase(id) + graph_.links.erase(id) +
                            graph_.processes.erase(id) >
                        0;
  if (mattered) updated_();
}

bool PipeWireGraphWatch::moveStream(uint32_t streamId, const std::string& nodeName) {
  if (!metadataId_) return false;
  auto* const metadata = reinterpret_cast<pw_metadata*>(bound_.at(*metadataId_)->proxy());
  if (metadata == nullptr) return false;
  setProperty(metadata, streamId, "target.object", "Spa:String", nodeName.c_str());
  return true;
}

void PipeWireGraphWatch::answered(int sequence) {
  if (sequence != awaited_ || isSettled_) return;
  // What was listed led to more questions.
  if (std::exchange(hasAskedSince_, false)) {
    awaited_ = sync(core_);
    return;
  }
  isSettled_ = true;
  updated_();
}

void PipeWireGraphWatch::addNode(uint32_t id, const spa_dict& properties) {
  CaptureGraph::Node& node = graph_.nodes[id];
  node.name = textOf(properties, PW_KEY_NODE_NAME);
  node.description = textOf(properties, PW_KEY_NODE_DESCRIPTION);
  node.mediaClass = textOf(properties, PW_KEY_MEDIA_CLASS);
  node.category = textOf(properties, PW_KEY_MEDIA_CATEGORY);
  node.clientId = numberOf(properties, PW_KEY_CLIENT_ID);
  node.deviceId = numberOf(properties, PW_KEY_DEVICE_ID);
  bindNodeIfNeeded(id);
  updated_();
}

void PipeWireGraphWatch::addLink(uint32_t id, const spa_dict& properties) {
  const auto from = numberOf(properties, PW_KEY_LINK_OUTPUT_NODE);
  const auto to = numberOf(properties, PW_KEY_LINK_INPUT_NODE);
  if (!from || !to) return;
  graph_.links[id] = {.from = *from, .to = *to};
  bindNodeIfNeeded(*to);
  updated_();
}

void PipeWireGraphWatch::bindNodeIfNeeded(uint32_t id) {
  if (depth_ == Depth::devices || bound_.contains(id) || !graph_.needsDetails(id)) return;
  // Its client first, so that the process is known before the node is seen to run.
  const std::optional<uint32_t> client = graph_.nodes.at(id).clientId;
  if (client && !bound_.contains(*client)) {
    bound_[*client] = std::make_unique<BoundClient>(*this, *client);
  }
  bound_[id] = std::make_unique<BoundNode>(*this, id);
}

}  // namespace tobrin
