#include "Panel/RecordingModel.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "Application/Translation.h"
#include "Model/AppModel.h"
#include "Model/RecordingGuide.h"
#include "Panel/StrangersText.h"

namespace tobrin {

namespace {

constexpr double quietestLevel = -60;  // dBFS

struct StepText {
  QString title;
  QString instruction;
  QString sample;  // what may be typed
};

}  // namespace

RecordingModel::RecordingModel(AppModel& model, QObject* parent)
    : QObject(parent), guide_(model.recordingGuide()) {
  connect(&guide_, &RecordingGuide::changed, this, &RecordingModel::changed);
  connect(&guide_, &RecordingGuide::levelChanged, this, &RecordingModel::levelChanged);
}

RecordingModel::Stage RecordingModel::stage() const {
  return static_cast<Stage>(guide_.stage());
}

QStringList RecordingModel::inputs() const {
  QStringList names;
  for (const auto& input : guide_.inputs())
    names.append(strangersText(input.description));
  return names;
}

int RecordingModel::inputIndex() const {
  const auto& inputs = guide_.inputs();
  const auto found = std::find_if(inputs.begin(), inputs.end(),
                                  [&](const auto& input) { return input.name == guide_.input(); });
  return found == inputs.end() ? -1 : static_cast<int>(std::distance(inputs.begin(), found));
}

QString RecordingModel::inputWarning() const {
  const int index = inputIndex();
  if (index < 0 || !guide_.inputs()[static_cast<std::size_t>(index)].isProcessed) return {};
  return tr("This microphone's sound is filtered, which changes the sound of keys.");
}

double RecordingModel::level() const {
  const double decibels = 20 * std::log10(std::max(guide_.live().peak, 1e-6F));
  return std::clamp(1 - decibels / quietestLevel, 0.0, 1.0);
}

QString RecordingModel::advice() const {
  switch (guide_.live().verdict) {
    case LiveVerdict::waiting:
      return tr("Type a few keys.");
    case LiveVerdict::nothingHeard:
      return tr("This microphone does not hear your keys. Is it the right one, and switched on?");
    case LiveVerdict::tooQuiet:
      return tr("Too quiet. Bring the microphone nearer or turn it up.");
    case LiveVerdict::tooLoud:
      return tr("Too loud. Turn the microphone down or move it away.");
    case LiveVerdict::tooNoisy:
      return tr("It is too noisy here: fans, music, voices.");
    case LiveVerdict::good:
      return tr("That sounds good.");
  }
  return {};
}

bool RecordingModel::soundsGood() const {
  return guide_.live().verdict == LiveVerdict::good;
}

QString RecordingModel::problem() const {
  return strangersText(guide_.problem());
}

int RecordingModel::step() const {
  return static_cast<int>(guide_.step());
}

QVariantList RecordingModel::steps() const {
  using Step = RecordingGuide::Step;
  const auto text = [](Step step) -> StepText {
    const QString sentence = tr("the quick brown fox jumps over the lazy dog");
    switch (step) {
      case Step::soft:
        return {tr("Softly"), tr("Type softly, as if somebody slept next door."), sentence};
      case Step::usual:
        return {tr("As usual"), tr("Now type as you usually do."), sentence};
      case Step::hard:
        return {tr("Hard"), tr("Now hit the keys hard."), sentence};
      case Step::space:
        return {tr("Space Bar"), tr("Press the space bar, softly and hard, with pauses."), {}};
      case Step::enter:
        return {tr("Return"), tr("Press Return, softly and hard."), {}};
      case Step::backspace:
        return {tr("Backspace"), tr("Press Backspace, softly and hard."), {}};
      case Step::modifier:
        return {tr("Shift and Others"), tr("Press Shift, Ctrl and Alt one by one."), {}};
    }
    return {};
  };
  QVariantList all;
  for (const Step step : RecordingGuide::allSteps) {
    const StepText words = text(step);
    all.append(QVariantMap{{"title", words.title},
                           {"instruction", words.instruction},
                           {"sample", words.sample},
                           {"wanted", static_cast<int>(RecordingGuide::wanted(step))}});
  }
  return all;
}

QList<int> RecordingModel::counts() const {
  QList<int> all;
  for (const auto step : RecordingGuide::allSteps)
    all.append(static_cast<int>(std::min(guide_.have(step), RecordingGuide::wanted(step))));
  return all;
}

bool RecordingModel::paused() const {
  return guide_.isPaused();
}

QString RecordingModel::report() const {
  return tr("%1 of %2 presses and releases sound good.")
      .arg(guide_.goodCount())
      .arg(guide_.keyCount());
}

void RecordingModel::begin() {
  guide_.begin();
}

void RecordingModel::chooseInput(int index) {
  if (index >= 0 && index < std::ssize(guide_.inputs()))
    guide_.chooseInput(guide_.inputs()[static_cast<std::size_t>(index)].name);
}

void RecordingModel::startTyping() {
  guide_.startTyping();
}

void RecordingModel::pause() {
  guide_.pause();
}

void RecordingModel::resume() {
  guide_.resume();
}

void RecordingModel::skip() {
  guide_.skip();
}

void RecordingModel::finish() {
  guide_.finish();
}

void RecordingModel::typeMore() {
  guide_.typeMore();
}

void RecordingModel::listen() {
  guide_.listen();
}

void RecordingModel::keep(const QString& name) {
  guide_.keep(name.trimmed().toStdString());
}

void RecordingModel::leave() {
  guide_.leave();
}

void RecordingModel::panelClosed() {
  guide_.panelClosed();
}

}  // namespace tobrin
