/// The file beside a recording that says which keys were typed when: CSV with the header
/// `time_ns,action,group,key`, one line a press or release in order of time, such as
/// `1503211000,down,alpha,4`. Keys are numbers in order of first use; no codes are written.
/// Thread: any.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Recording/KeyedRecording.h"

namespace tobrin {

/// The action's name in the file, in lower case.
[[nodiscard]] std::string_view nameOf(KeyAction action);

/// Reads a file. Throws `TraceError` that names the file and the line at fault.
[[nodiscard]] std::vector<RecordedKey> loadKeyTimes(const std::filesystem::path& file);
/// The same of a text; `name` stands for the file in errors.
[[nodiscard]] std::vector<RecordedKey> parseKeyTimes(std::string_view text,
                                                     const std::string& name);

/// Replaces the file whole. Measured force is not kept. Throws
/// `std::filesystem::filesystem_error`.
void saveKeyTimes(std::span<const RecordedKey> keys, const std::filesystem::path& file);

}  // namespace tobrin
