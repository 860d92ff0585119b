/// A pack folder that is being built: written aside, then moved into place whole. Thread: any.
#pragma once

#include <filesystem>
#include <functional>

#include "Base/WorkFolder.h"

namespace tobrin {

/// Exchanges the names of two folders in one step; false, with nothing changed, where the file
/// system cannot.
using FolderExchange =
    std::function<bool(const std::filesystem::path& one, const std::filesystem::path& other)>;

class PackFolder final {
 public:
  /// The folder that a pack built into `wanted` replaces: its full path, links followed. Throws
  /// `std::runtime_error` where that is not for us to replace. Changes nothing.
  static std::filesystem::path replaceable(const std::filesystem::path& wanted);

  /// Makes an empty folder beside `target`, which must be `replaceable`, and removes what
  /// interrupted builds of the same pack left there. Throws `std::filesystem::filesystem_error`.
  explicit PackFolder(const std::filesystem::path& target);

  /// Gone with this object where it was not moved into place.
  [[nodiscard]] const std::filesystem::path& aside() const { return work_.path(); }

  /// Replaces the target by the new folder; the old one goes only once the new one is there. With
  /// `exchange` there is a whole pack at every moment. Throws `std::filesystem::filesystem_error`.
  void moveIntoPlace(const FolderExchange& exchange = {});

 private:
  std::filesystem::path target_;
  WorkFolder work_;  // hidden, so that no library lists it
};

}  // namespace tobrin
