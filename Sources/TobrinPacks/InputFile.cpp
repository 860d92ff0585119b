#include "InputFile.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace tobrin {
namespace {

constexpr std::size_t maxBytes = std::size_t{16} << 20;

std::string readAll(std::FILE* file) {
  std::string text;
  char part[65536];
  while (const std::size_t count = std::fread(part, 1, sizeof part, file)) {
    text.append(part, count);
    if (text.size() > maxBytes) throw std::runtime_error("longer than 16 MiB");
  }
  if (std::ferror(file) != 0) throw std::system_error(errno, std::generic_category());
  return text;
}

}  // namespace

std::string readInputFile(const std::string& path) {
  try {
    if (path == "-") return readAll(stdin);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rbe"),
                                                               std::fclose);
    if (!file) throw std::system_error(errno, std::generic_category());
    return readAll(file.get());
  } catch (const std::runtime_error& error) {
    throw std::runtime_error("Can't read " + path + ": " + error.what());
  }
}

}  // namespace tobrin
