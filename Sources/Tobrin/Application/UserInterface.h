/// What shows the program to its user where there is a display. Its libraries are loaded only then,
/// so that the engine alone stays small; the panel's own only when it first opens. Thread: main.
#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QPoint>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tobrin {

class AppModel;

/// How the panel is to look.
struct Look {
  bool dark = false;
  bool highContrast = false;
  bool reducedMotion = false;  ///< nothing moves that need not
};

class UserInterface {
 public:
  virtual ~UserInterface() = default;

  /// The application object that windows need; made before anything else of Qt. The references stay
  /// valid for its life.
  virtual std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) = 0;

  /// Puts the item into the tray, or opens the panel as a window where there is no tray. The model
  /// outlives the interface.
  virtual void start(AppModel& model) = 0;

  /// Opens the panel.
  virtual void showPanel() = 0;

  /// Takes item and panel away; the model may go after that.
  virtual void stop() = 0;
};

/// The panel by itself, made by its own library.
class Panel {
 public:
  virtual ~Panel() = default;
  /// Opens the panel near a place on the screen (in the desktop's coordinates), or as an ordinary
  /// window where `anchor` is null or a keyboard is being recorded in it. Brings one that is open
  /// to the front.
  virtual void open(const QPoint* anchor) = 0;
  /// Brings it to the front instead while a keyboard is being recorded in it.
  virtual void close() = 0;
  virtual void setLook(const Look& look) = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;
};

/// Draws the panel into an image file, without a display; made by the panel's library.
class PanelPicture {
 public:
  enum class Page : uint8_t { front, more };

  virtual ~PanelPicture() = default;
  /// The application object that drawing needs; made before anything else of Qt.
  virtual std::unique_ptr<QCoreApplication> makeApplication() = 0;
  /// Returns why the picture could not be written; empty on success. The file's ending decides its
  /// format.
  virtual std::string save(AppModel& model, const std::string& path, const Look& look,
                           Page page) = 0;
};

/// What the tray's library offers.
class TrayModule {
 public:
  virtual ~TrayModule() = default;
  [[nodiscard]] virtual std::unique_ptr<UserInterface> makeInterface() const = 0;
};

/// What the panel's library offers.
class PanelModule {
 public:
  virtual ~PanelModule() = default;
  /// The model outlives the panel. `onClosed` is called whenever the panel has closed.
  [[nodiscard]] virtual std::unique_ptr<Panel> makePanel(AppModel& model,
                                                         std::function<void()> onClosed) const = 0;
  [[nodiscard]] virtual std::unique_ptr<PanelPicture> makePicture() const = 0;
};

}  // namespace tobrin

// With the version, a program that is updated while it runs notices a library that is not its own.
#define TOBRIN_TRAY_MODULE "app.tobrin.TrayModule/" TOBRIN_VERSION
#define TOBRIN_PANEL_MODULE "app.tobrin.PanelModule/" TOBRIN_VERSION
Q_DECLARE_INTERFACE(tobrin::TrayModule, TOBRIN_TRAY_MODULE)
Q_DECLARE_INTERFACE(tobrin::PanelModule, TOBRIN_PANEL_MODULE)
