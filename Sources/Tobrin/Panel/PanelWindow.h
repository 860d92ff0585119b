/// The panel's window: a pop-up next to the tray item that closes when it loses the focus (but not
/// to a pointer that only passes over another window), or an ordinary window. Thread: main.
#pragma once

#include <QQuickView>
#include <QTimer>
#include <functional>
#include <memory>

#include "Application/UserInterface.h"
#include "Panel/FocusLoss.h"
#include "Panel/PackChooser.h"
#include "Panel/PanelModel.h"
#include "Panel/Placing/WindowPlacer.h"

namespace tobrin {

class PanelWindow final : public QObject, public Panel {
 public:
  /// The model outlives the window. `onClosed` is called whenever the panel has closed.
  PanelWindow(AppModel& model, std::function<void()> onClosed);
  ~PanelWindow() override;

  void open(const QPoint* anchor) override;
  void close() override;
  void setLook(const Look& look) override;
  [[nodiscard]] bool isOpen() const override;

  /// The view itself, for pictures of it.
  [[nodiscard]] QQuickView& view() { return *view_; }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void takeForm();
  [[nodiscard]] QRect roomOnScreen() const;
  void fitToScreen();
  void takeSize();
  void windowIsFramed();
  void keepFrameOnScreen();
  void followContent();
  void closeOnEscape(const QKeyEvent& key);
  void loseFocus();
  void leaveWithFocus();
  void wirePackChooser();
  void askForPacks();
  [[nodiscard]] bool isRecording() const;
  void followRecording();
  void hideToReopen();
  void endAsking(PackShelfModel::Asking next);

  std::unique_ptr<PanelModel> model_;  // before the view, which binds to it
  std::unique_ptr<QQuickView> view_;
  std::unique_ptr<WindowPlacer> placer_;  // null where windows place themselves
  PackChooser packChooser_;
  std::function<void()> onClosed_;
  bool closesWithFocus_ = false;
  bool isReopening_ = false;  // hidden for a moment, and not closed
  FocusLoss focusLoss_;
  QTimer leaving_;   // runs from a loss of the focus until it is known who has it
  QPoint anchor_;    // where it opened, if it closes with the focus
  QSize fitted_;     // the size last chosen for it
  int tallest_ = 0;  // it may be while it is open
};

}  // namespace tobrin
