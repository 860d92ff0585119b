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

  /// A new descriptor, which the caller closes. All of them share one position in the file, at
  /// first its start. Throws `std::system_error` where the process may open no more.
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
