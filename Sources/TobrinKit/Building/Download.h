/// Fetches a resource by its address into a file. Waits for the network. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace tobrin {

/// Why a resource could not be fetched; the text names its address.
class DownloadError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr int64_t largestDownload = 512LL << 20;  ///< bytes; more is refused

/// Fetches http and https addresses, following redirects, and moves the result to `file` only when
/// it is complete. A server that stalls is given up after half a minute. Throws `DownloadError`, or
/// `std::filesystem::filesystem_error` where it cannot be kept.
void download(const std::string& url, const std::filesystem::path& file);

}  // namespace tobrin
