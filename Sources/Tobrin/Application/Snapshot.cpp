#include "Application/Snapshot.h"

#include <QEventLoop>
#include <cstdio>
#include <optional>

#include "Application/Assembly.h"
#include "Application/Modules.h"
#include "Application/Translation.h"

namespace tobrin {
namespace {

struct Wish {
  std::string path = "menu.png";
  Look look;
  PanelPicture::Page page = PanelPicture::Page::front;
  AppModel::Preview preview;
};

int fail(const std::string& words) {
  std::printf("%s\n", words.c_str());
  return 1;
}

/// Nothing where a second word is unknown: only one path is allowed.
std::optional<Wish> parse(const std::vector<std::string>& words) {
  constexpr std::string_view packPrefix = "pack=";
  Wish wish;
  // A firm stroke, so that the meter has something to show.
  wish.preview.reading =
      ForceReading{.position = 1.7F, .relative = 1.6F, .peak = 0.084F, .sensed = true};
  bool hasPath = false;
  for (const std::string& word : words) {
    if (word == "dark") {
      wish.look.dark = true;
    } else if (word == "contrast") {
      wish.look.highContrast = true;
    } else if (word == "more") {
      wish.page = PanelPicture::Page::more;
    } else if (word == "call") {
      wish.preview.micInUse = true;
    } else if (word.starts_with(packPrefix)) {
      wish.preview.pack = word.substr(packPrefix.size());
    } else if (std::exchange(hasPath, true)) {
      return std::nullopt;
    } else {
      wish.path = word;
    }
  }
  return wish;
}

/// Returns once the selected pack is there, or it is known why not.
void waitForPack(const AppModel& model) {
  QEventLoop loop;
  const auto look = [&] {
    if (model.loadedManifest() || model.packError()) loop.quit();
  };
  QObject::connect(&model, &AppModel::selectedPackChanged, &loop, look);
  QObject::connect(&model, &AppModel::packErrorChanged, &loop, look);
  if (!model.loadedManifest() && !model.packError()) loop.exec();
}

std::string idsOf(const std::vector<PackInfo>& packs) {
  std::string ids;
  for (const PackInfo& pack : packs)
    ids += (ids.empty() ? "" : ", ") + pack.id;
  return ids.empty() ? "none" : ids;
}

}  // namespace

int drawSnapshot(const std::vector<std::string>& words) {
  const auto wish = parse(words);
  if (!wish)
    return fail("Usage: tobrin --snapshot [path] [dark] [contrast] [more] [call] [pack=ID]");
  const Launcher launcher(DesktopWorkspace::errands());
  const PanelModule* const panel = loadPanelModule();
  if (panel == nullptr) return fail("The panel's library is missing.");
  const auto picture = panel->makePicture();
  const auto application = picture->makeApplication();
  installTranslation();
  Assembly assembly(launcher, wish->preview);
  AppModel& model = assembly.model();
  if (wish->preview.pack && model.selectedPackID() != *wish->preview.pack) {
    return fail("There is no pack \"" + *wish->preview.pack +
                "\". There are: " + idsOf(model.packs()) + ".");
  }
  waitForPack(model);
  const std::string problem = picture->save(model, wish->path, wish->look, wish->page);
  return problem.empty() ? 0 : fail(problem);
}

}  // namespace tobrin
