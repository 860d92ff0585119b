/// Plasma: KWin runs a script of ours that moves the panel when it appears. Thread: main.
#pragma once

#include <QString>
#include <QTimer>
#include <cstddef>

#include "Panel/Placing/WindowPlacer.h"

namespace tobrin {

class KWinPlacer final : public WindowPlacer {
 public:
  /// `script` is the file that KWin runs.
  explicit KWinPlacer(QString script);
  ~KWinPlacer() override;

  void placeNext() override;

 private:
  void unload();

  const QString script_;
  std::size_t name_ = 0;  // of those that the script has in turn
  QTimer patience_;       // runs while the script is loaded
};

}  // namespace tobrin
