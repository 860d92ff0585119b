/// Pictures of the panel, drawn without a display. Thread: main.
#pragma once

#include <memory>

#include "Application/UserInterface.h"

namespace tobrin {

std::unique_ptr<PanelPicture> makePanelPicture();

}  // namespace tobrin
