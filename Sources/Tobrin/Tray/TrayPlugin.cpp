#include "Tray/TrayInterface.h"

namespace tobrin {

/// By this the application finds what this library offers.
class TrayPlugin final : public QObject, public TrayModule {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID TOBRIN_TRAY_MODULE)
  Q_INTERFACES(tobrin::TrayModule)

 public:
  [[nodiscard]] std::unique_ptr<UserInterface> makeInterface() const override {
    return std::make_unique<TrayInterface>();
  }
};

}  // namespace tobrin

#include "TrayPlugin.moc"
