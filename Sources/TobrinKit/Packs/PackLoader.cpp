#include "Packs/PackLoader.h"

#include <algorithm>
#include <cassert>
#include <system_error>

#include "Base/MachTime.h"
#include "Base/PackError.h"
#include "Base/ParallelFor.h"
#include "Packs/AudioDecoder.h"

namespace tobrin {
namespace {

constexpr uint64_t budgetFrames = LoadedPack::memoryBudget / bytesPerFrame;
// Files decoded by one decoder: a result may depend, in a last bit, on what was decoded before it,
// and must not depend on how the files are shared among the threads. The first batch is decoded
// alone, to see how long that takes.
constexpr std::size_t batchFiles = 4;
constexpr double leastWorkForHelp = 4;  // ms; below, waiting for a thread costs more than it saves

bool isWithin(const std::filesystem::path& folder, const std::filesystem::path& file) {
  return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first ==
         folder.end();
}

}  // namespace

LoadedPack::Contents PackLoader::load(const PackManifest& manifest) {
  std::error_code ignored;
  plan(manifest);
  realDirectory_ = std::filesystem::canonical(directory_, ignored);
  contents_.buffers.resize(paths_.size());
  decodeAhead();
  settle();
  return std::move(contents_);
}

void PackLoader::plan(const PackManifest& manifest) {
  for (const auto& [groupName, listed] : manifest.groups) {
    const auto group = keyGroup(groupName);
    if (!group) continue;
    for (const auto& [tierName, paths] : listed.down) {
      const auto tier = tierNamed(tierName);
      if (tier && !paths.empty()) contents_.down[*group][*tier] = entries(paths);
    }
    if (listed.up && !listed.up->empty()) contents_.up[*group] = entries(*listed.up);
  }
}

std::vector<std::size_t> PackLoader::entries(const std::vector<std::string>& paths) {
  std::vector<std::size_t> result;
  result.reserve(paths.size());
  for (const std::string& path : paths) {
    const auto [found, isNew] = entryOf_.try_emplace(path, paths_.size());
    if (isNew) paths_.push_back(path);
    result.push_back(found->second);
  }
  return result;
}

/// Decodes what it can, on several threads where that is worth it, under one budget. A file that
/// fails, or that finds the budget used up by others that are being decoded, is left open:
/// `settle` has the last word.
void PackLoader::decodeAhead() {
  if (batches() == 0) return;
  FrameAllowance allowance(budgetFrames);
  try {
    const uint64_t start = machNow();
    decodeBatch(0, allowance);
    const double probedMs = machMilliseconds(machNow() - start);
    parallelFor(batches() - 1, threadsWorth(probedMs),
                [&](std::size_t i) { decodeBatch(i + 1, allowance); });
  } catch (...) {
    // It comes again in `settle`, where a single thread would have met it.
  }
}

/// The most threads to decode with, as `parallelFor` counts them, by the time the first batch took.
unsigned PackLoader::threadsWorth(double probedMs) const {
  const double work = probedMs * static_cast<double>(batches() - 1);
  return threads_ == 0 && work < leastWorkForHelp ? 1 : threads_;
}

/// Goes through the batches in order, keeps those that are there, decodes the others, and meets
/// every error where a single thread would have met it.
void PackLoader::settle() {
  uint64_t framesLeft = budgetFrames;
  for (std::size_t batch = 0; batch < batches(); ++batch) {
    const auto files = filesOf(batch);
    if (!std::ranges::all_of(files, [](const Buffer& buffer) { return buffer != nullptr; })) {
      // Later files are given up, so that the budget holds; they are decoded again in their turn.
      for (std::size_t later = batch; later < batches(); ++later)
        std::ranges::fill(filesOf(later), nullptr);
      FrameAllowance allowance(framesLeft);
      try {
        decodeBatch(batch, allowance);
      } catch (const AllowanceExceeded&) {
        throw PackError::invalidManifest(directory_, "pack is too large");
      }
    }
    for (const Buffer& buffer : files)
      framesLeft -= buffer->frames();
  }
}

std::size_t PackLoader::batches() const {
  return (paths_.size() + batchFiles - 1) / batchFiles;
}

std::span<PackLoader::Buffer> PackLoader::filesOf(std::size_t batch) {
  assert(batch < batches());
  const std::size_t first = batch * batchFiles;
  return std::span(contents_.buffers).subspan(first, std::min(batchFiles, paths_.size() - first));
}

void PackLoader::decodeBatch(std::size_t batch, FrameAllowance& allowance) {
  AudioDecoder decoder(sampleRate_);
  std::size_t entry = batch * batchFiles;
  for (Buffer& buffer : filesOf(batch))
    buffer = decoder.decode(resolved(paths_[entry++]), allowance);
}

/// The file of a path. One that leaves the folder, by its text or through a symbolic link, is
/// refused; one that leads nowhere is left for the decoder to report.
std::filesystem::path PackLoader::resolved(const std::string& path) const {
  const auto escapes = [&] {
    return PackError::invalidManifest(directory_, "path escapes pack: " + path);
  };
  if (path.find("..") != std::string::npos || path.starts_with('/')) throw escapes();
  std::filesystem::path file = directory_ / path;
  std::error_code missing;
  const auto target = std::filesystem::canonical(file, missing);
  if (!missing && !isWithin(realDirectory_, target)) throw escapes();
  return file;
}

std::shared_ptr<const LoadedPack> loadPack(const PackInfo& info, double sampleRate) {
  PackManifest manifest;
  try {
    manifest = PackManifest::read(info.directory);
  } catch (const PackError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw PackError::invalidManifest(info.directory / PackManifest::fileName, error.what());
  }
  LoadedPack::Contents contents = PackLoader(info.directory, sampleRate).load(manifest);
  return std::make_shared<const LoadedPack>(info, std::move(manifest), std::move(contents));
}

}  // namespace tobrin
