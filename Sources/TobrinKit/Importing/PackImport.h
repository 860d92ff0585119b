/// Imports packs of other programs: reads a folder or an archive in one of their formats and makes
/// a Tobrin pack from it, at the loudness of built packs and in all strengths. Thread: any.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Base/KeyEvent.h"
#include "Building/PackFolder.h"
#include "Building/ProcessRunner.h"
#include "Importing/ForeignKeys.h"
#include "Importing/ImportError.h"
#include "Importing/ImportNotes.h"
#include "Importing/PackDraft.h"

namespace tobrin {

struct PackImport {
  struct Request {
    std::filesystem::path source;  ///< a folder or an archive
    std::filesystem::path into;    ///< the pack's folder, replaced whole
    std::string id;                ///< in place of the source's own, where it is not empty
    std::string name;
  };

  /// What the platform supplies; outlives the call.
  struct Services {
    KernelKeyCodes keyCodes;
    const ProcessRunner& programs;
    FolderExchange exchange;
  };

  struct Result {
    std::string id;
    std::string name;
    std::string format;  ///< for people: which format the source was taken for
    std::filesystem::path folder;
    std::map<KeyGroup, std::size_t> takes;  ///< press takes by group, of one strength
    std::size_t releases = 0;
    std::size_t keys = 0;  ///< that the pack names
    int rate = 0;          ///< of the files, in Hz
    double lufs = 0;       ///< of the typing demo
    std::vector<ImportNotes::Note> notes;
  };

  /// Called with the part that is done, 0 to 1, on the calling thread.
  using Progress = std::function<void(double)>;

  /// A failure leaves the folder as it was. Throws `ImportError`, or the file system's own error.
  static Result run(const Request& request, const Services& services,
                    const Progress& progress = {});

  /// A pack that is not written yet; `result.folder` is empty.
  struct Made {
    PackDraft draft;
    Result result;
  };

  /// As `run`, but keeps the pack in memory; `request.into` is not looked at.
  static Made make(const Request& request, const Services& services, const Progress& progress = {});
};

}  // namespace tobrin
