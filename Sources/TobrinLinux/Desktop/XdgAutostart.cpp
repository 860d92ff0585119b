#include "Desktop/XdgAutostart.h"

#include <unistd.h>

#include <fstream>
#include <string_view>

#include "Base/AtomicFile.h"
#include "Base/FlushToDisk.h"

namespace tobrin {
namespace {

constexpr std::string_view tryExec = "TryExec=";

/// An Exec value's argument, quoted as the desktop entry rules want it. The value is unescaped
/// twice, once as a string and once as a command line.
std::string quoted(const std::string& argument) {
  std::string result = "\"";
  for (const char c : argument) {
    if (c == '"' || c == '`' || c == '$') result += "\\\\";
    if (c == '\\') result += "\\\\\\";
    if (c == '%') result += '%';
    result += c;
  }
  return result + "\"";
}

/// A string value: unescaped once.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text)
    result += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return result;
}

std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value.substr(i).starts_with("\\\\")) ++i;
    text += value[i];
  }
  return text;
}

/// Whether the desktop finds the program of a TryExec value. A bare name it looks for by itself; we
/// never write one.
bool isFound(const std::string& program) {
  return !program.starts_with('/') || access(program.c_str(), X_OK) == 0;
}

}  // namespace

XdgAutostart::XdgAutostart(const std::filesystem::path& configFolder, std::filesystem::path program)
    : entry_(configFolder / "autostart" / "app.tobrin.Tobrin.desktop"),
      program_(std::move(program)) {}

bool XdgAutostart::isEnabled() const {
  std::ifstream file(entry_);
  bool startsTobrin = false;
  for (std::string line; std::getline(file, line);) {
    if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false") return false;
    if (line.starts_with(tryExec) && !isFound(unescaped(line.substr(tryExec.size())))) return false;
    if (line.starts_with("Exec=")) startsTobrin = true;
  }
  return startsTobrin;
}

std::string XdgAutostart::setEnabled(bool on) {
  std::error_code error;
  if (!on) {
    std::filesystem::remove(entry_, error);
    return error ? entry_.string() + ": " + error.message() : "";
  }
  try {
    std::filesystem::create_directories(entry_.parent_path());
    writeFileAtomically(entry_,
                        "[Desktop Entry]\n"
                        "Type=Application\n"
                        "Name=Tobrin\n"
                        "Comment=Velocity-sensitive keyboard sounds\n"
                        "Icon=app.tobrin.Tobrin\n"
                        "Exec=" +
                            quoted(program_.string()) + " --at-login\n" +
                            // Desktops leave the entry alone once the program was removed.
                            std::string(tryExec) + escaped(program_.string()) +
                            "\n"
                            "Terminal=false\n",
                        flushToDisk);
    return "";
  } catch (const std::exception& problem) {
    return problem.what();
  }
}

}  // namespace tobrin
