/// Plasma: KWin runs a script of ours that moves the panel when it appears. Thread: main.
#pragma once

#include <QTimer>

#include "Panel/Placing/WindowPlacer.h"

namespace tobrin {

class KWinPlacer final : public WindowPlacer {
 public:
  KWinPlacer();
  ~KWinPlacer() override;

  void placeNext() override;

 private:
  void unload();

  QTimer patience_;  // runs while the script is loaded
};

}  // namespace tobrin
