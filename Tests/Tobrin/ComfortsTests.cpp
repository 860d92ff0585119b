#include "Model/Comforts.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(Comforts, WhatIsDamagedCostsItselfAlone) {
  const struct {
    const char* text;
    Comforts expected;
  } rows[] = {
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
           "b": {"boost": 2}, "c": {"volume": -1}, "d": 1, "e": {"volume": 0.5, "boost": 2}}})",
       {.outputs = {.chosenName = "Mine", .loudness = {{"a", {0.25F, 1}}, {"e", {0.5F, 2}}}}}},
  };
  for (const auto& row : rows) {
    const Comforts read = Comforts::fromJson(row.text);
    EXPECT_EQ(read, row.expected) << row.text;
    EXPECT_EQ(Comforts::fromJson(read.toJson()), read) << row.text;
  }
}

}  // namespace
}  // namespace tobrin
