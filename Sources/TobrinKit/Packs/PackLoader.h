/// Loads packs: decodes the takes that a manifest lists, on all cores where that saves time. The
/// result, or the error, is the one that a single thread would give that goes through the lists in
/// order. Thread: any.
#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "Packs/FrameAllowance.h"
#include "Packs/LoadedPack.h"
#include "Packs/PackManifest.h"

namespace tobrin {

class PackLoader final {
 public:
  /// `threads` is the most to use, this one included; 0 means one per core, or this one alone where
  /// the work takes a few milliseconds.
  PackLoader(std::filesystem::path directory, double sampleRate, unsigned threads = 0)
      : directory_(std::move(directory)), sampleRate_(sampleRate), threads_(threads) {}

  /// Throws `PackError`.
  LoadedPack::Contents load(const PackManifest& manifest);

 private:
  using Buffer = std::unique_ptr<SampleBuffer>;

  void plan(const PackManifest& manifest);
  std::vector<std::size_t> entries(const std::vector<std::string>& paths);
  void decodeAhead();
  [[nodiscard]] unsigned threadsWorth(double probedMs) const;
  void settle();
  [[nodiscard]] std::size_t batches() const;
  std::span<Buffer> filesOf(std::size_t batch);
  void decodeBatch(std::size_t batch, FrameAllowance& allowance);
  [[nodiscard]] std::filesystem::path resolved(const std::string& path) const;

  std::filesystem::path directory_;
  std::filesystem::path realDirectory_;  // without symbolic links
  double sampleRate_;
  unsigned threads_;
  std::vector<std::string> paths_;  // distinct, in the order of the lists
  std::unordered_map<std::string, std::size_t> entryOf_;
  LoadedPack::Contents contents_;
};

/// Loads a pack folder at `sampleRate` frames a second. Throws `PackError`.
std::shared_ptr<const LoadedPack> loadPack(const PackInfo& info, double sampleRate);

}  // namespace tobrin
