/// Follows the sound server's nodes, links and default source over one connection. The caller holds
/// the loop's lock. Thread: any.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "PipeWire/CaptureGraph.h"

struct pw_core;
struct spa_dict;

namespace tobrin {

class PipeWireGraphWatch final {
 public:
  enum class Depth {
    devices,  ///< what a listing shows
    users,    ///< and which streams run, and whose they are: for the microphone watch
  };

  /// `updated` is called after each change, on the loop thread; it must not destroy the watch.
  PipeWireGraphWatch(pw_core* core, std::function<void()> updated, Depth depth = Depth::users);
  ~PipeWireGraphWatch();
  PipeWireGraphWatch(const PipeWireGraphWatch&) = delete;
  PipeWireGraphWatch& operator=(const PipeWireGraphWatch&) = delete;

  [[nodiscard]] const CaptureGraph& graph() const { return graph_; }

  /// Whether everything that was there at the start is known.
  [[nodiscard]] bool isSettled() const { return isSettled_; }

  /// Asks the server's policy to play a stream on the node of this name whenever there is one, and
  /// on the default device else; "-1": on the default device always. Mixer programs do the same;
  /// the last request holds. False where the policy is not there yet.
  bool moveStream(uint32_t streamId, const std::string& nodeName);

 private:
  class Registry;
  class BoundObject;
  class BoundNode;
  class BoundClient;
  class BoundMetadata;

  void added(uint32_t id, const char* type, const spa_dict* properties);
  void removed(uint32_t id);
  void answered(int sequence);
  void addNode(uint32_t id, const spa_dict& properties);
  void addLink(uint32_t id, const spa_dict& properties);
  void bindNodeIfNeeded(uint32_t id);

  pw_core* const core_;
  const std::function<void()> updated_;
  const Depth depth_;
  CaptureGraph graph_;
  std::map<uint32_t, std::unique_ptr<BoundObject>> bound_;
  std::optional<uint32_t> metadataId_;  // of what the policy reads; it is among the bound
  std::unique_ptr<Registry> registry_;
  int awaited_ = 0;             // number of the answer waited for
  bool hasAskedSince_ = false;  // for more than that answer covers
  bool isSettled_ = false;
};

}  // namespace tobrin
