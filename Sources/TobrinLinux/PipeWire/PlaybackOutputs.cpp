#include "PipeWire/PlaybackOutputs.h"

namespace tobrin {

namespace {

bool isOutput(const CaptureGraph::Node& node) {
  return node.mediaClass == "Audio/Sink" || node.mediaClass == "Audio/Sink/Virtual" ||
         node.mediaClass == "Audio/Duplex";
}

}  // namespace

SoundOutputs playbackOutputs(const CaptureGraph& graph, std::optional<uint32_t> streamId) {
  SoundOutputs outputs;
  for (const auto& [id, node] : graph.nodes) {
    if (!isOutput(node)) continue;
    outputs.present.push_back(
        {.id = node.name, .name = node.description.empty() ? node.name : node.description});
  }
  for (const auto& [id, link] : graph.links) {
    const auto node = link.from == streamId ? graph.nodes.find(link.to) : graph.nodes.end();
    if (node != graph.nodes.end() && isOutput(node->second)) outputs.used = node->second.name;
  }
  return outputs;
}

}  // namespace tobrin
