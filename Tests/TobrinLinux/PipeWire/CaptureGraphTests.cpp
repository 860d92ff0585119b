#include "PipeWire/CaptureGraph.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace tobrin {
namespace {

using Processes = std::vector<int32_t>;

constexpr int32_t ownProcess = 7;

/// A card whose microphone (1) is the default and which plays too (2), another microphone (3), and
/// a program (10, of client 20, process 99) that is linked to nothing yet.
CaptureGraph exampleGraph() {
  CaptureGraph graph;
  graph.nodes[1] = {
      .name = "mic", .description = "Webcam", .mediaClass = "Audio/Source", .deviceId = 50};
  graph.nodes[2] = {.name = "sink", .mediaClass = "Audio/Sink", .deviceId = 51};
  graph.nodes[3] = {.name = "other", .mediaClass = "Audio/Source/Virtual"};
  graph.nodes[10] = {.mediaClass = "Stream/Input/Audio", .clientId = 20, .isRunning = true};
  graph.processes[20] = 99;
  graph.defaultSource = "mic";
  return graph;
}

TEST(CaptureGraph, CountsRunningStreamsLinkedToMicrophones) {
  struct Row {
    const char* label;
    std::function<void(CaptureGraph&)> change;
    Processes recording;
    bool defaultRuns;
  };
  const auto link = [](uint32_t from, uint32_t to) {
    return [=](CaptureGraph& graph) { graph.links[from * 100 + to] = {from, to}; };
  };
  const auto linkedBut = [&](auto change) {
    return [=](CaptureGraph& graph) {
      link(1, 10)(graph);
      change(graph);
    };
  };
  const Row rows[] = {
      {"not linked", [](auto&) {}, {}, false},
      {"default microphone", link(1, 10), {99}, true},
      {"other microphone", link(3, 10), {99}, false},
      {"monitor of a sink", link(2, 10), {}, false},
      {"resting", linkedBut([](auto& graph) { graph.nodes[10].isRunning = false; }), {}, false},
      {"meter", linkedBut([](auto& graph) { graph.nodes[10].isLevelMeter = true; }), {}, false},
      {"own", linkedBut([](auto& graph) { graph.processes[20] = ownProcess; }), {}, false},
      {"process unknown", linkedBut([](auto& graph) { graph.processes.clear(); }), {0}, true},
      {"JACK program", linkedBut([](auto& graph) { graph.nodes[10].mediaClass = ""; }), {99}, true},
      {"sink fed by a microphone",
       linkedBut([](auto& graph) { graph.nodes[10].mediaClass = "Audio/Sink"; }),
       {},
       false},
  };
  for (const Row& row : rows) {
    CaptureGraph graph = exampleGraph();
    row.change(graph);
    const MicActivity activity = graph.activity(ownProcess);
    EXPECT_EQ(activity.recordingProcesses, row.recording) << row.label;
    EXPECT_EQ(activity.inputRunningSomewhere, row.defaultRuns) << row.label;
    EXPECT_EQ(activity.inputDeviceName, "Webcam") << row.label;
    EXPECT_EQ(activity.outputRecorded, row.label == std::string("monitor of a sink")) << row.label;
  }
}

TEST(CaptureGraph, LooksThroughFilters) {
  CaptureGraph graph = exampleGraph();
  graph.nodes[30] = {.mediaClass = "Stream/Input/Audio", .linkGroup = "echo", .isRunning = true};
  graph.nodes[31] = {.name = "clean", .mediaClass = "Audio/Source", .linkGroup = "echo"};
  graph.links[1] = {1, 30};
  EXPECT_FALSE(graph.activity(ownProcess).micInUse());  // no program uses what it makes

  graph.links[2] = {31, 10};
  EXPECT_EQ(graph.activity(ownProcess).recordingProcesses, Processes{99});

  graph.links[1] = {2, 30};  // now it passes on what is played
  EXPECT_FALSE(graph.activity(ownProcess).micInUse());
  EXPECT_TRUE(graph.activity(ownProcess).outputRecorded);

  graph.links[1] = {31, 30};  // a circle ends
  EXPECT_FALSE(graph.activity(ownProcess).micInUse());

  graph.nodes[40] = {.category = "Filter", .isRunning = true};
  graph.links = {{1, {1, 40}}, {2, {40, 10}}};
  EXPECT_EQ(graph.activity(ownProcess).recordingProcesses, Processes{99});
}

TEST(CaptureGraph, KnowsTheDefaultInput) {
  CaptureGraph graph = exampleGraph();
  EXPECT_FALSE(graph.activity(ownProcess).inputDeviceHasOutput);
  graph.nodes[2].deviceId = 50;  // a headset
  EXPECT_TRUE(graph.activity(ownProcess).inputDeviceHasOutput);
  graph.defaultSource = "sink";  // what the server names where there is no source
  EXPECT_EQ(graph.activity(ownProcess).inputDeviceName, std::nullopt);
}

TEST(CaptureGraph, ListsMicrophonesAndTheOneBehindAFilteredDefault) {
  using Input = SoundCapture::Input;
  CaptureGraph graph = exampleGraph();
  graph.nodes[0] = {.name = "clean", .mediaClass = "Audio/Source", .linkGroup = "echo"};
  graph.nodes[30] = {.mediaClass = "Stream/Input/Audio", .linkGroup = "echo"};
  graph.defaultSource = "clean";
  const auto listed = [&](bool otherIsDefault, bool cleanIsDefault) {
    return std::vector<Input>{{"mic", "Webcam", false, false},
                              {"other", "other", otherIsDefault, false},
                              {"clean", "clean", cleanIsDefault, true}};
  };
  EXPECT_EQ(graph.microphones(), listed(false, true)) << "nothing is linked to the filter";
  graph.links[1] = {3, 30};
  EXPECT_EQ(graph.microphones(), listed(true, false));
}

}  // namespace
}  // namespace tobrin
