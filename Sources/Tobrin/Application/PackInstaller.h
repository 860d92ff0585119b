/// Adds packs by way of the pack workshop, in a separate process that ends with the work: code that
/// unpacks and reads the files of strangers never shares the memory of the program that reads keys.
/// The process is confined as this one is. Thread: any.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace tobrin {

/// Puts a pack, an archive or a pack of another program among the user's own and returns its id.
/// `progress` is called with 0 to 1 and may throw to end it. Throws `ImportError`, or
/// `std::runtime_error`; nothing has changed then.
std::string addByWorkshop(const std::filesystem::path& source,
                          const std::function<void(double)>& progress);

}  // namespace tobrin
