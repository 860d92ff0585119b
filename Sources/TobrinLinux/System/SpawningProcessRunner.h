/// Runs the programs that the kit asks for. Thread: any.
#pragma once

#include "Building/ProcessRunner.h"

namespace tobrin {

class SpawningProcessRunner final : public ProcessRunner {
 public:
  [[nodiscard]] int run(const std::filesystem::path& program,
                        const std::vector<std::string>& arguments) const override;
};

}  // namespace tobrin
