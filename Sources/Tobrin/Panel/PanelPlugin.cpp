#include "Panel/PanelPicture.h"
#include "Panel/PanelWindow.h"

namespace tobrin {

/// By this the application finds what this library offers.
class PanelPlugin final : public QObject, public PanelModule {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID TOBRIN_PANEL_MODULE)
  Q_INTERFACES(tobrin::PanelModule)

 public:
  [[nodiscard]] std::unique_ptr<Panel> makePanel(AppModel& model,
                                                 std::function<void()> onClosed) const override {
    return std::make_unique<PanelWindow>(model, std::move(onClosed));
  }
  [[nodiscard]] std::unique_ptr<PanelPicture> makePicture() const override {
    return makePanelPicture();
  }
};

}  // namespace tobrin

#include "PanelPlugin.moc"
