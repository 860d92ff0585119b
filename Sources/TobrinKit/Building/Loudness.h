/// Integrated loudness by ITU-R BS.1770: K-weighting, blocks of 400 ms that overlap by 75 %, an
/// absolute gate at -70 LUFS and a relative one 10 LU below what passes it. Thread: any.
#pragma once

#include <optional>
#include <span>

namespace tobrin {

/// Loudness in LUFS; minus infinity where the signal is shorter than one block or never louder than
/// the absolute gate, -200.691 where no block passes the relative gate. The length of `left` is the
/// frame count; `right` must be at least as long. `rate` must be 48000, the one that the filter's
/// coefficients hold for. A caller that breaks these promises ends the process. Mono counts as one
/// channel, not as two.
[[nodiscard]] double integratedLoudness(std::span<const float> left,
                                        std::optional<std::span<const float>> right, double rate);

}  // namespace tobrin
