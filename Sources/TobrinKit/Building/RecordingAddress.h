/// Where a recording lies, as recipes write it: on the network, or in a file of this machine.
/// Thread: any.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace tobrin {

/// The file that an address names: a file address, with spaces written as they are or as "%20", or
/// a plain path. Nothing where it names something on the network.
std::optional<std::filesystem::path> localFile(std::string_view address);

}  // namespace tobrin
