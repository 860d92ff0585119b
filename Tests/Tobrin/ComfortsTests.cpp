#include "Model/Comforts.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(Comforts, WhatIsDamagedCostsItselfAlone) {
  const std::string whole =
      R"({"heldBackKeyboards":["Youré"],"keepsWideKeyAccess":true,"maskWhileRecorded":false,)"
      R"("mouseSounds":true,"output":"usb","outputLoudness":{"usb":{"boost":1.5,"volume":0.7}},)"
      R"("outputName":"Mine","quietApps":[{"id":"a","name":"A"}],"quietInFullScreen":true,)"
      R"("quietWhileLocked":false,"wheelSounds":true})";
  EXPECT_EQ(Comforts::fromJson(whole).toJson(), whole);
  std::string many;
  for (int i = 0; i < 300; ++i)
    many += R"("Mine",)";
  many = R"({"heldBackKeyboards": [)" + many + R"("last"]})";
  const struct {
    std::string text;
    Comforts expected;
  } rows[] = {
      {whole,
       {.maskWhileRecorded = false,
        .quietWhileLocked = false,
        .mouseSounds = true,
        .wheelSounds = true,
        .keepsWideKeyAccess = true,
        .quiet = {.apps = {{"a", "A"}}, .inFullScreen = true},
        .heldBackKeyboards = {"Youré"},
        .outputs = {.chosen = "usb", .chosenName = "Mine", .loudness = {{"usb", {0.7F, 1.5F}}}}}},
      {many, {.heldBackKeyboards = HeldBackKeyboards::Names(200, "Mine")}},
      {"{", {}},
      {"[true]", {}},
      {R"({"maskWhileRecorded": "yes", "quietWhileLocked": false})", {.quietWhileLocked = false}},
      {R"({"maskWhileRecorded": false, "heldBackKeyboards": "Mine"})",
       {.maskWhileRecorded = false}},
      {R"({"heldBackKeyboards": ["Mine", 1, {}, "Youré"]})",
       {.heldBackKeyboards = {"Mine", "Youré"}}},
      {R"({"heldBackKeyboards": [], "quietApps": [[], {"id": 1}, {"id": "a", "name": 2}, {"id": ""}],
           "quietInFullScreen": true})",
       {.quiet = {.apps = {{"a", "a"}}, .inFullScreen = true}, .heldBackKeyboards = {}}},
      {R"({"quietApps": {"id": "a"}})", {}},
      {R"({"output": 7, "outputName": "Mine", "outputLoudness": {"a": {"volume": 0.25, "boost": 9},
           "b": {"boost": 2}, "c": {"volume": -1}, "d": 1, "e": {"volume": 0, "boost": 2},
           "f": {"volume": 4, "boost": 0.5}, "g": {"volume": 4.1}}})",
       {.outputs = {.chosenName = "Mine",
                    .loudness = {{"a", {0.25F, 1}}, {"e", {0, 2}}, {"f", {4, 1}}}}}},
  };
  for (const auto& row : rows) {
    const Comforts read = Comforts::fromJson(row.text);
    EXPECT_EQ(read, row.expected) << row.text;
    EXPECT_EQ(Comforts::fromJson(read.toJson()), read) << row.text;
  }
  EXPECT_EQ(Comforts().toJson().find("heldBack"), std::string::npos) << "later versions know more";
}

}  // namespace
}  // namespace tobrin
