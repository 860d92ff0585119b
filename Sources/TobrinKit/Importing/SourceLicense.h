/// Whose sounds they are and what may be done with them, as far as a source says. Pure functions;
/// thread: any.
#pragma once

#include <string>

#include "Importing/ForeignPack.h"
#include "Packs/PackManifest.h"

namespace tobrin {

/// The licence of imported sounds: what the description says and the texts that lie with it, or
/// that there is none.
std::string licenseOf(const ForeignPack& pack, const SourceFiles& files);

/// Whether a pack says under which licence its sounds may be handed on.
bool namesLicense(const PackManifest& manifest);

}  // namespace tobrin
