#include "Model/PackProblem.h"

#include "Model/FilledText.h"

namespace tobrin {

std::string PackProblem::sentence(
    const std::function<std::string(std::string_view english)>& translate) const {
  const auto text = [&] {
    switch (kind) {
      case Kind::noPack:
        return translate("%1 holds no pack in a format that Tobrin knows.");
      case Kind::mouse:
        return translate("%1 holds sounds for a mouse, not for keys.");
      case Kind::tooLarge:
        return translate("%1 is too large for a pack.");
      case Kind::noSounds:
        return translate("%1 holds no sounds that can be played.");
      case Kind::notAdded:
        return translate("%1 can't be added: %2.");
      case Kind::notRemoved:
        return translate("%1 can't be moved to the trash: %2.");
      case Kind::notBroughtBack:
        return translate("%1 can't be brought back: %2.");
    }
    return std::string();
  };
  std::string first = filled(filled(text(), reason, "%2"), name);
  if (others == 0) return first;
  return first + " " + filled(translate("Others that failed: %1."), std::to_string(others));
}

}  // namespace tobrin
