#include "Application/TerminalReport.h"

#include <cstdio>

#include "Base/PrintableText.h"

namespace tobrin {

namespace {

std::string soundLine(const AudioOutput& audio) {
  return audio.problem().empty() ? audio.description() : audio.problem();
}

}  // namespace

TerminalReport::TerminalReport(const AppModel& model) : model_(model) {
  std::printf("Tobrin %s\nType anywhere; Ctrl-C ends it.\n", TOBRIN_VERSION);
  const auto report = [this] { printChanges(); };
  connect(&model, &AppModel::statusChanged, this, report);
  connect(&model, &AppModel::selectedPackChanged, this, report);
  connect(&model, &AppModel::permissionChanged, this, report);
  connect(&model, &AppModel::outputChanged, this, report);
  printChanges();
}

TerminalReport::~TerminalReport() {
  const AudioOutput& audio = model_.conductor().audio();
  std::printf("played: %llu sounds, %llu lost\n",
              static_cast<unsigned long long>(audio.startedVoices()),
              static_cast<unsigned long long>(audio.droppedCommands()));
}

void TerminalReport::printChanges() {
  if (const PackInfo* pack = model_.selectedPack()) {
    print("pack", pack->name + " (" + pack->kind + ")");
  }
  if (model_.listening()) print("keys", model_.monitor().description());
  if (!model_.listening() && !model_.monitor().problem().empty()) {
    print("keys", model_.monitor().problem());
  }
  print("sound", soundLine(model_.conductor().audio()));
  print("status", model_.statusLine());
}

void TerminalReport::print(const std::string& subject, const std::string& text) {
  std::string& last = printed_[subject];
  if (text == last) return;
  last = text;
  std::printf("%s: %s\n", subject.c_str(), printable(text).c_str());
}

}  // namespace tobrin
