#include "PipeWire/CaptureGraph.h"

#include <algorithm>
#include <string_view>

namespace tobrin {

namespace {

bool isSource(const CaptureGraph::Node& node) {
  return node.mediaClass.starts_with("Audio/Source") || node.mediaClass == "Audio/Duplex";
}

bool isCaptureStream(const CaptureGraph::Node& node) {
  return node.mediaClass == "Stream/Input/Audio";
}

bool canPlay(const CaptureGraph::Node& node) {
  return node.mediaClass.starts_with("Audio/Sink") || node.mediaClass == "Audio/Duplex";
}

}  // namespace

MicActivity CaptureGraph::activity(int32_t ownProcess) const {
  const std::optional<uint32_t> input = defaultSourceId();
  MicActivity found;
  std::set<int32_t> recording;
  for (const auto& [id, node] : nodes) {
    if (!isUser(node)) continue;
    Ids visited;
    const Ids microphones = microphonesBehind(id, visited);
    const auto process = processes.find(node.clientId.value_or(UINT32_MAX));
    const int32_t pid = process == processes.end() ? 0 : process->second;
    if (pid == ownProcess) continue;
    visited.clear();
    if (hearsAnOutput(id, visited)) found.outputRecorded = true;
    if (microphones.empty()) continue;
    recording.insert(pid);
    if (input && microphones.contains(*input)) found.inputRunningSomewhere = true;
  }
  found.recordingProcesses.emplace(recording.begin(), recording.end());
  if (input) {
    const Node& device = nodes.at(*input);
    found.inputDeviceName = device.description.empty() ? device.name : device.description;
    found.inputDeviceHasOutput = alsoPlays(*input);
  }
  return found;
}

bool CaptureGraph::needsDetails(uint32_t nodeId) const {
  const Node* node = find(nodeId);
  if (node == nullptr) return false;
  if (isCaptureStream(*node) || isSource(*node)) return true;
  // A JACK program shows what it is by its links alone.
  return node->mediaClass.empty() && std::any_of(links.begin(), links.end(), [&](const auto& link) {
           const Node* from = find(link.second.from);
           return link.second.to == nodeId && from != nullptr && isSource(*from);
         });
}

/// The sources whose sound reaches the node, those behind filters included. A source that is a
/// filter's output is a microphone only where the filter gets one: it may as well pass on what a
/// program plays.
CaptureGraph::Ids CaptureGraph::microphonesBehind(uint32_t nodeId, Ids& visited) const {
  Ids microphones;
  if (!visited.insert(nodeId).second) return microphones;
  for (const auto& [id, link] : links) {
    const Node* from = link.to == nodeId ? find(link.from) : nullptr;
    if (from == nullptr) continue;
    if (isSource(*from) && from->linkGroup.empty()) {
      microphones.insert(link.from);
    } else if (from->mediaClass.empty() && isLookedThrough(*from)) {
      microphones.merge(microphonesBehind(link.from, visited));
    } else if (isSource(*from)) {
      Ids behind;
      addMicrophonesOfFilter(*from, behind, visited);
      if (!behind.empty()) microphones.insert(link.from);
      microphones.merge(behind);
    }
  }
  return microphones;
}

/// Whether the sound that an output plays reaches the node, also through filters.
bool CaptureGraph::hearsAnOutput(uint32_t nodeId, Ids& visited) const {
  if (!visited.insert(nodeId).second) return false;
  return std::any_of(links.begin(), links.end(), [&](const auto& entry) {
    const Link& link = entry.second;
    const Node* from = link.to == nodeId ? find(link.from) : nullptr;
    if (from == nullptr) return false;
    if (canPlay(*from) && !isSource(*from)) return true;
    if (from->mediaClass.empty() && isLookedThrough(*from))
      return hearsAnOutput(link.from, visited);
    return isSource(*from) && std::any_of(nodes.begin(), nodes.end(), [&](const auto& peer) {
             return !from->linkGroup.empty() && peer.second.linkGroup == from->linkGroup &&
                    !isSource(peer.second) && hearsAnOutput(peer.first, visited);
           });
  });
}

/// Those whose sound the filter with this output gets.
void CaptureGraph::addMicrophonesOfFilter(const Node& output, Ids& microphones,
                                          Ids& visited) const {
  for (const auto& [peerId, peer] : nodes)
    if (peer.linkGroup == output.linkGroup && !isSource(peer))
      microphones.merge(microphonesBehind(peerId, visited));
}

std::optional<uint32_t> CaptureGraph::unfilteredDefaultId() const {
  const std::optional<uint32_t> input = defaultSourceId();
  if (!input || nodes.at(*input).linkGroup.empty()) return input;
  Ids visited;
  Ids microphones;
  addMicrophonesOfFilter(nodes.at(*input), microphones, visited);
  const auto found = std::find_if(microphones.begin(), microphones.end(),
                                  [&](uint32_t id) { return nodes.at(id).linkGroup.empty(); });
  return found == microphones.end() ? input : *found;
}

std::vector<SoundCapture::Input> CaptureGraph::microphones() const {
  const std::optional<uint32_t> defaultId = unfilteredDefaultId();
  std::vector<SoundCapture::Input> found;
  for (const auto& [id, node] : nodes) {
    if (!isSource(node)) continue;
    found.push_back({.name = node.name,
                     .description = node.description.empty() ? node.name : node.description,
                     .isDefault = id == defaultId,
                     .isProcessed = !node.linkGroup.empty()});
  }
  std::stable_partition(found.begin(), found.end(),
                        [](const SoundCapture::Input& input) { return !input.isProcessed; });
  return found;
}

bool CaptureGraph::isLookedThrough(const Node& node) const {
  if (node.mediaClass.empty()) return node.category == "Filter";
  return !node.linkGroup.empty() && std::any_of(nodes.begin(), nodes.end(), [&](const auto& peer) {
    return peer.second.linkGroup == node.linkGroup && isSource(peer.second);
  });
}

bool CaptureGraph::isUser(const Node& node) const {
  const bool mayRecord = isCaptureStream(node) || node.mediaClass.empty();
  return mayRecord && node.isRunning && !node.isLevelMeter && !isLookedThrough(node);
}

std::optional<uint32_t> CaptureGraph::defaultSourceId() const {
  // Where there is no source at all, the server names a sink, whose monitor is no microphone.
  const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const auto& node) {
    return node.second.name == defaultSource && isSource(node.second);
  });
  if (found == nodes.end()) return std::nullopt;
  return found->first;
}

bool CaptureGraph::alsoPlays(uint32_t nodeId) const {
  const Node& input = nodes.at(nodeId);
  if (canPlay(input)) return true;
  return input.deviceId && std::any_of(nodes.begin(), nodes.end(), [&](const auto& node) {
           return node.second.deviceId == input.deviceId && canPlay(node.second);
         });
}

const CaptureGraph::Node* CaptureGraph::find(uint32_t nodeId) const {
  const auto found = nodes.find(nodeId);
  return found == nodes.end() ? nullptr : &found->second;
}

}  // namespace tobrin
