#include "Application/UserInterface.h"

#include "Application/Modules.h"

namespace tobrin {

std::unique_ptr<UserInterface> UserInterface::load() {
  using Make = UserInterface* (*)();
  const auto make = reinterpret_cast<Make>(Modules::symbol("tray", "tobrinMakeUserInterface"));
  return std::unique_ptr<UserInterface>(make != nullptr ? make() : nullptr);
}

}  // namespace tobrin
