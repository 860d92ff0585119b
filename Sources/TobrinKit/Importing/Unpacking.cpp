#include "Importing/Unpacking.h"

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

#include "Base/RegularFile.h"
#include "Importing/ImportError.h"
#include "Importing/Utf8Names.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Kind = ImportError::Kind;

struct Closer {
  void operator()(archive* handle) const { archive_read_free(handle); }
};

/// One archive on its way into a folder.
class Unpacker {
 public:
  Unpacker(const fs::path& file, const fs::path& folder, ImportNotes& notes)
      : name_(file.filename().string()), folder_(folder), notes_(notes) {
    // Not all that the library knows: some of its filters run programs.
    archive_read_support_filter_gzip(archive_.get());
    archive_read_support_filter_bzip2(archive_.get());
    archive_read_support_filter_xz(archive_.get());
    archive_read_support_filter_zstd(archive_.get());
    archive_read_support_format_zip(archive_.get());
    archive_read_support_format_tar(archive_.get());
    archive_read_support_format_7zip(archive_.get());
    open(file);
  }

  std::vector<SourceFiles::File> unpack() {
    std::vector<SourceFiles::File> files;
    while (archive_entry* const entry = next()) {
      const auto name = nameOf(entry);
      if (!name) continue;
      fs::path path = folder_ / std::to_string(files.size());
      const uint64_t bytes = write(path);
      files.push_back({*name, std::move(path), bytes});
    }
    return files;
  }

 private:
  void open(const fs::path& file) {
    try {
      bytes_ = RegularFile(file).readText(SourceFiles::mostBytes);
    } catch (const std::system_error& error) {
      const bool isLarge = error.code() == std::errc::file_too_large;
      throw ImportError(isLarge ? Kind::tooLarge : Kind::unreadable,
                        "Can't read " + file.string() + ": " + error.code().message());
    }
    if (archive_read_open_memory(archive_.get(), bytes_.data(), bytes_.size()) != ARCHIVE_OK)
      fail();
  }

  archive_entry* next() {
    archive_entry* entry = nullptr;
    const int status = archive_read_next_header(archive_.get(), &entry);
    if (status == ARCHIVE_EOF) return nullptr;
    if (status < ARCHIVE_WARN) fail();
    if (++entries_ > SourceFiles::mostFiles)
      throw ImportError(Kind::tooLarge, name_ + " holds too many files");
    // Skipped entries are unpacked too, and thrown away.
    claimed_ += static_cast<uint64_t>(std::max<la_int64_t>(archive_entry_size(entry), 0));
    if (claimed_ > SourceFiles::mostBytes) failTooLarge();
    return entry;
  }

  /// The entry's name; nothing where it is not a file to take.
  std::optional<std::string> nameOf(archive_entry* entry) {
    const char* name = archive_entry_pathname_utf8(entry);
    if (name == nullptr) name = archive_entry_pathname(entry);
    auto clean = SourceFiles::cleanName(name != nullptr ? name : "");
    if (archive_entry_is_encrypted(entry) != 0)
      throw ImportError(Kind::unreadable, name_ + " is locked with a password");
    if (archive_entry_filetype(entry) == AE_IFDIR) return std::nullopt;
    if (!clean) {
      notes_.leftOut("names that lead out of the archive", name);
    } else if (archive_entry_filetype(entry) != AE_IFREG ||
               archive_entry_hardlink(entry) != nullptr) {
      notes_.leftOut("links and devices in the archive", *clean);
    } else if (!clean->empty() && !SourceFiles::isClutter(*clean)) {
      return clean;
    }
    return std::nullopt;
  }

  /// The bytes are counted as they come, because an archive's own figures may be false.
  uint64_t write(const fs::path& path) {
    std::ofstream out(path, std::ios::binary);
    demandWritten(out, path);
    uint64_t bytes = 0;
    for (;;) {
      const la_ssize_t count = archive_read_data(archive_.get(), buffer_.data(), buffer_.size());
      if (count < 0) fail();
      if (count == 0) break;
      bytes += static_cast<uint64_t>(count);
      if (unpacked_ + bytes > SourceFiles::mostBytes) failTooLarge();
      demandWritten(out.write(buffer_.data(), static_cast<std::streamsize>(count)), path);
    }
    unpacked_ += bytes;
    demandWritten(out.flush(), path);
    return bytes;
  }

  /// At once, while the system still knows why it failed.
  static void demandWritten(const std::ostream& out, const fs::path& path) {
    if (!out)
      throw fs::filesystem_error("can't unpack", path,
                                 std::error_code(errno, std::generic_category()));
  }

  [[noreturn]] void fail() const {
    const char* const reason = archive_error_string(archive_.get());
    throw ImportError(Kind::unreadable,
                      name_ + " is no archive that can be read (zip, tar and 7z can): " +
                          (reason != nullptr ? reason : "it is damaged"));
  }

  [[noreturn]] void failTooLarge() const {
    throw ImportError(Kind::tooLarge, name_ + " unpacks to more than " +
                                          std::to_string(SourceFiles::mostBytes >> 20) + " MiB");
  }

  std::string name_;
  fs::path folder_;
  ImportNotes& notes_;
  std::string bytes_;  // of the archive; it reads on in them to its end
  std::unique_ptr<archive, Closer> archive_{archive_read_new()};
  std::array<char, 65536> buffer_{};
  std::size_t entries_ = 0;
  uint64_t claimed_ = 0;
  uint64_t unpacked_ = 0;
};

}  // namespace

SourceFiles unpack(const fs::path& archive, const fs::path& folder, ImportNotes& notes) {
  const Utf8Names names;
  return SourceFiles(Unpacker(archive, folder, notes).unpack());
}

}  // namespace tobrin
