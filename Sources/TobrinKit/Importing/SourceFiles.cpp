#include "Importing/SourceFiles.h"

#include <algorithm>
#include <system_error>

#include "Base/LowerCase.h"
#include "Base/RegularFile.h"
#include "Importing/ImportError.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr int deepestFolder = 8;

bool isInside(const fs::path& file, const fs::path& folder) {
  return std::ranges::mismatch(folder, file).in1 == folder.end();
}

/// Collects the files of a folder; links may lead anywhere inside it.
class FolderListing {
 public:
  FolderListing(const fs::path& folder, ImportNotes& notes)
      : root_(fs::canonical(folder)), notes_(notes) {}

  std::vector<SourceFiles::File> list() {
    const auto options = fs::directory_options::skip_permission_denied;
    for (auto entry = fs::recursive_directory_iterator(root_, options);
         entry != fs::recursive_directory_iterator(); ++entry) {
      if (entry.depth() >= deepestFolder) entry.disable_recursion_pending();
      add(*entry);
    }
    std::ranges::sort(files_, {}, &SourceFiles::File::name);
    return std::move(files_);
  }

 private:
  void add(const fs::directory_entry& entry) {
    if (++seen_ > SourceFiles::mostFiles)
      throw ImportError(ImportError::Kind::tooLarge, root_.string() + " holds too many files");
    const std::string name = entry.path().lexically_relative(root_).generic_string();
    std::error_code missing;
    if (entry.is_symlink() && !isInside(fs::canonical(entry.path(), missing), root_))
      return notes_.leftOut("links that leave the folder", name);
    if (!entry.is_regular_file(missing) || SourceFiles::isClutter(name)) return;
    files_.push_back({name, entry.path(), entry.file_size(missing)});
  }

  fs::path root_;
  ImportNotes& notes_;
  std::size_t seen_ = 0;
  std::vector<SourceFiles::File> files_;
};

bool hasDrive(std::string_view name) {
  return name.size() > 1 && name[1] == ':';
}

}  // namespace

SourceFiles::SourceFiles(std::vector<File> files) : files_(std::move(files)) {
  keys_.reserve(files_.size());
  for (const File& file : files_)
    keys_.push_back(keysOf(file.name));
}

SourceFiles SourceFiles::ofFolder(const fs::path& folder, ImportNotes& notes) {
  try {
    return SourceFiles(FolderListing(folder, notes).list());
  } catch (const fs::filesystem_error& error) {
    throw ImportError(ImportError::Kind::unreadable,
                      "Can't read " + folder.string() + ": " + error.code().message());
  }
}

std::optional<std::string> SourceFiles::cleanName(std::string_view name) {
  std::string plain(name);
  std::ranges::replace(plain, '\\', '/');
  if (plain.starts_with('/') || hasDrive(plain) || plain.find('\0') != std::string::npos)
    return std::nullopt;
  const std::string normal = fs::path(plain).lexically_normal().generic_string();
  if (normal == ".." || normal.starts_with("../")) return std::nullopt;
  return normal == "." ? "" : normal;
}

bool SourceFiles::isClutter(std::string_view cleanName) {
  const std::string_view file = fileOf(cleanName);
  return cleanName.starts_with("__MACOSX/") || file.starts_with("._") || file == ".DS_Store" ||
         file == "Thumbs.db" || file == "desktop.ini";
}

const SourceFiles::File* SourceFiles::find(std::string_view folder, std::string_view name) const {
  const auto wanted = cleanName(std::string(folder).append("/").erase(0, folder.empty() ? 1 : 0) +
                                std::string(name));
  if (!wanted || wanted->empty()) return nullptr;
  const auto exact = std::ranges::find(files_, *wanted, &File::name);
  if (exact != files_.end()) return &*exact;
  const Keys keys = keysOf(*wanted);
  if (const File* folded = findOnly(&Keys::folded, keys.folded)) return folded;
  return findOnly(&Keys::letters, keys.letters);
}

const SourceFiles::File* SourceFiles::findOnly(std::string Keys::*key,
                                               const std::string& wanted) const {
  const auto first = std::ranges::find(keys_, wanted, key);
  if (first == keys_.end()) return nullptr;
  if (std::find_if(first + 1, keys_.end(), [&](const Keys& keys) { return keys.*key == wanted; }) !=
      keys_.end())
    return nullptr;
  return &files_[static_cast<std::size_t>(first - keys_.begin())];
}

SourceFiles::Keys SourceFiles::keysOf(std::string_view name) {
  Keys keys{lowerCase(name), ""};
  for (const char c : keys.folded) {
    const bool isAscii = static_cast<unsigned char>(c) < 0x80;
    if (isAscii)
      keys.letters += c;
    else if (!keys.letters.ends_with('?'))
      keys.letters += '?';
  }
  return keys;
}

std::string SourceFiles::read(const File& file, uint64_t longest) {
  try {
    return RegularFile(file.path).readText(longest);
  } catch (const std::system_error& error) {
    throw ImportError(ImportError::Kind::unreadable,
                      "Can't read " + file.name + ": " + error.code().message());
  }
}

std::string_view folderOf(std::string_view name) {
  const auto slash = name.rfind('/');
  return slash == std::string_view::npos ? "" : name.substr(0, slash);
}

std::string_view fileOf(std::string_view name) {
  return name.substr(name.rfind('/') + 1);  // npos + 1 is 0
}

}  // namespace tobrin
