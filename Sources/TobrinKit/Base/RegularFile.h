/// Opens files that others supplied: only regular ones, so that a FIFO or a device in a pack folder
/// can neither hang a load nor feed it without end. Owns its descriptor. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "Base/FileDescriptor.h"

namespace tobrin {

class RegularFile final {
 public:
  /// Opens a file for reading. Throws `std::system_error` with the system's reason alone as text.
  explicit RegularFile(const std::filesystem::path& path);

  /// A descriptor of the caller's own, to close; it reads on where the others of this file are, the
  /// first from the start. Throws `std::system_error` where there are none left.
  [[nodiscard]] int duplicate() const;
  [[nodiscard]] uint64_t size() const { return size_; }  ///< bytes, when it was opened

  /// The whole content, refused with `EFBIG` where it is longer than `maxBytes`.
  /// Throws `std::system_error`.
  [[nodiscard]] std::string readText(uint64_t maxBytes) const;

 private:
  FileDescriptor descriptor_;
  uint64_t size_ = 0;
};

}  // namespace tobrin
