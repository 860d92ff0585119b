// tobrin-key-access: see usage(). Started as root by pkexec, with an administrator's consent.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

#include "KeyboardDevices.h"
#include "KeysRule.h"
#include "RuleFile.h"

namespace tobrin {
namespace {

constexpr int done = 0, failed = 1, wrongUsage = 2;

int complain(const char* words, int status) {
  static_cast<void>(std::fputs(words, stderr));  // there is no place left to report a failure
  return status;
}

int usage() {
  return complain(
      "tobrin-key-access grant     let the user who sits at this computer read its keyboards\n"
      "tobrin-key-access --remove  take that back\n"
      "tobrin-key-access explain   say exactly what \"grant\" does, and do nothing\n"
      "With --root DIR after it, only the rule's file is written, below DIR; not as root.\n",
      wrongUsage);
}

int explain(const RuleFile& file) {
  std::printf(
      "\"grant\" writes the file %s:\n\n%s\n"
      "Then the device manager applies it to the keyboards that are plugged in. From then on the\n"
      "user who sits at this computer, and every program of theirs, may open its keyboards' event\n"
      "devices, as long as they sit there. Nobody else may, and no other device is opened.\n"
      "\"--remove\" deletes the file and takes the access back.\n",
      file.path().c_str(), keysRule);
  return done;
}

int grant(const RuleFile& file, bool isReal) {
  file.install(keysRule);
  std::printf("Wrote %s.\n", file.path().c_str());
  if (!isReal) return done;
  if (keyboards::applyRules()) {
    std::puts("The user who sits at this computer may now read its keyboards.");
  } else {
    std::puts("The device manager did not answer: it takes effect with the next start.");
  }
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error).string();
  std::printf("To take it back: pkexec %s --remove\n", program.c_str());
  return done;
}

int remove(const RuleFile& file, bool isReal) {
  const bool wasThere = file.remove();
  std::printf(wasThere ? "Deleted %s.\n" : "There is no %s.\n", file.path().c_str());
  if (!isReal || !wasThere) return done;
  keyboards::takeBackAccess();
  if (!keyboards::applyRules()) std::puts("It takes effect with the next start.");
  std::puts("Other programs that have a keyboard open keep it until they end.");
  return done;
}

/// Another root is for looking at what would be written. A process that may write everywhere takes
/// no path that a user chose.
bool mayChooseRoot() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
  const bool isForSomebodyElse = std::getenv("PKEXEC_UID") != nullptr;
  return !isForSomebodyElse && geteuid() != 0 && geteuid() == getuid();
}

int run(int count, char** words) {
  constexpr mode_t onlyOwnerWrites = 022;
  umask(onlyOwnerWrites);
  const bool hasRoot = count == 4 && std::string_view(words[2]) == "--root";
  if (count != 2 && !hasRoot) return usage();
  if (hasRoot && !mayChooseRoot()) {
    return complain("tobrin-key-access: --root is not for root\n", wrongUsage);
  }
  const RuleFile file(hasRoot ? words[3] : "");
  const std::string_view action = words[1];
  if (action == "grant") return grant(file, !hasRoot);
  if (action == "--remove") return remove(file, !hasRoot);
  if (action == "explain") return explain(file);
  return usage();
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  try {
    return tobrin::run(argc, argv);
  } catch (const std::exception& error) {
    const std::string words = std::string("tobrin-key-access: ") + error.what() + "\n";
    return tobrin::complain(words.c_str(), tobrin::failed);
  }
}
