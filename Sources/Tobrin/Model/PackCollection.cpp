#include "Model/PackCollection.h"

#include <utility>

namespace tobrin {

PackCollection::PackCollection(const Services& services, const std::string& selectedID)
    : played_({.main = services.main,
               .loader = services.loader,
               .loadPack = services.loadPack,
               .conductor = services.conductor}),
      selection_({.main = services.main,
                  .loader = services.loader,
                  .findPacks = services.findPacks,
                  .loadPack = services.loadPack,
                  .keepChoice = services.keepChoice,
                  .play =
                      [this, auditions = services.auditions](auto pack, bool audition) {
                        played_.select(std::move(pack), audition && auditions);
                      }},
                 selectedID),
      shelf_(services.main, services.adding, services.addPack, services.discardPack) {
  connect(&selection_, &PackSelection::selectedChanged, this, &PackCollection::selectedChanged);
  connect(&selection_, &PackSelection::loaded, this, &PackCollection::selectedChanged);
  connect(&shelf_, &PackShelf::added, this, &PackCollection::choose);
}

void PackCollection::look() {
  selection_.refresh();
  selection_.loadWhereMissing(false);
}

void PackCollection::choose(const std::string& addedID) {
  selection_.refresh();
  selection_.select(addedID);
  emit added();
}

void PackCollection::remove(const std::string& id) {
  const PackInfo* const pack = selection_.withID(id);
  if (pack == nullptr) return;
  const std::string selected = selection_.selectedID();
  const auto place = static_cast<std::size_t>(pack - selection_.packs().data());
  if (!shelf_.discard(*pack)) return;
  selectedBeforeRemoval_ = selected;
  selection_.refresh(place);
}

void PackCollection::undoRemoval() {
  if (!shelf_.bringBack()) return;
  look();
  selection_.select(selectedBeforeRemoval_);
}

}  // namespace tobrin
