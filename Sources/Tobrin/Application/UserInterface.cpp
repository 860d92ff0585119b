#include "Application/UserInterface.h"

#include "Application/Modules.h"

namespace tobrin {

std::unique_ptr<UserInterface> UserInterface::load() {
  using Make = UserInterface* (*)();
  const auto make = reinterpret_cast<Make>(Modules::symbol("tray", "tobrinMakeUserInterface"));
  return std::unique_ptr<UserInterface>(make != nullptr ? make() : nullptr);
}

std::unique_ptr<PanelPicture> PanelPicture::load() {
  using Make = PanelPicture* (*)();
  const auto make = reinterpret_cast<Make>(Modules::symbol("panel", "tobrinMakePanelPicture"));
  return std::unique_ptr<PanelPicture>(make != nullptr ? make() : nullptr);
}

}  // namespace tobrin
