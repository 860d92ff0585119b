#include "Importing/PackExport.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Base/AtomicFile.h"
#include "Importing/ImportError.h"
#include "Importing/SoundLoader.h"
#include "Importing/SourceFiles.h"
#include "Importing/Utf8Names.h"
#include "Packs/PackLoader.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// A zip in memory. The same files give the same bytes: it holds no times.
class ZipWriter {
 public:
  ZipWriter() {
    archive_write_set_format_zip(archive_.get());
    archive_write_set_options(archive_.get(), "hdrcharset=UTF-8");
    archive_write_set_bytes_in_last_block(archive_.get(), 1);
    check(archive_write_open(archive_.get(), &bytes_, nullptr, append, nullptr));
  }

  void add(const std::string& name, const std::string& content) {
    const std::unique_ptr<archive_entry, EntryFree> entry(archive_entry_new());
    constexpr int readable = 0644;
    archive_entry_set_pathname_utf8(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), readable);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(content.size()));
    check(archive_write_header(archive_.get(), entry.get()));
    if (archive_write_data(archive_.get(), content.data(), content.size()) < 0) fail();
  }

  std::string finish() && {
    check(archive_write_close(archive_.get()));
    return std::move(bytes_);
  }

 private:
  struct EntryFree {
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
  };
  struct WriterFree {
    void operator()(archive* handle) const { archive_write_free(handle); }
  };

  static la_ssize_t append(archive* /*handle*/, void* bytes, const void* data, std::size_t size) {
    static_cast<std::string*>(bytes)->append(static_cast<const char*>(data), size);
    return static_cast<la_ssize_t>(size);
  }

  void check(int status) const {
    if (status < ARCHIVE_WARN) fail();
  }
  [[noreturn]] void fail() const {
    const char* const reason = archive_error_string(archive_.get());
    throw std::runtime_error(std::string("can't pack: ") + (reason != nullptr ? reason : "failed"));
  }

  std::string bytes_;  // outlives the archive, which writes to it until it is freed
  std::unique_ptr<archive, WriterFree> archive_{archive_write_new()};
};

bool isHidden(const std::string& name) {
  return name.starts_with('.') || name.find("/.") != std::string::npos;
}

/// What others get: nothing hidden, and no file that was exported into the folder itself.
SourceFiles toHandOn(const SourceFiles& files) {
  std::vector<SourceFiles::File> chosen;
  std::ranges::copy_if(files.all(), std::back_inserter(chosen), [](const auto& file) {
    return !isHidden(file.name) && !file.name.ends_with(PackExport::extension);
  });
  return SourceFiles(std::move(chosen));
}

/// What `install` takes, export may write.
void demandInstallable(const SourceFiles& files) {
  uint64_t bytes = 0;
  for (const auto& file : files.all())
    bytes += file.bytes;
  if (bytes > SourceFiles::mostBytes)
    throw ImportError(
        ImportError::Kind::tooLarge,
        "the folder holds more than " + std::to_string(SourceFiles::mostBytes >> 20) + " MiB");
}

}  // namespace

PackManifest PackExport::run(const fs::path& packFolder, const fs::path& file) {
  const auto pack = loadPack(PackInfo::read(packFolder, false), SoundLoader::rate);
  ImportNotes links;  // those that leave the folder are no part of a pack that loads
  const SourceFiles files = toHandOn(SourceFiles::ofFolder(packFolder, links));
  demandInstallable(files);
  const Utf8Names names;
  ZipWriter zip;
  for (const auto& each : files.all())
    zip.add(each.name, SourceFiles::read(each, SourceFiles::mostBytes));
  writeFileAtomically(file, std::move(zip).finish());
  return pack->manifest();
}

}  // namespace tobrin
