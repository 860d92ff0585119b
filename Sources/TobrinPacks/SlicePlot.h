/// A picture of what the slicer made of a recording. Thread: any.
#pragma once

#include <span>
#include <string>

#include "Building/RecordingSlicer.h"

namespace tobrin {

/// An SVG document: all presses in order of energy with the bands that the tiers are taken from,
/// and below them the recording's level in rows, with every hit coloured by what became of it and
/// the noise floor.
std::string slicePlot(const SlicedRecording& result, std::span<const float> left,
                      std::span<const float> right, double rate, const SlicerOptions& options);

}  // namespace tobrin
