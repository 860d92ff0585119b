/// A second-order filter section (transposed direct form II) in double precision, with the usual
/// designs by centre or corner frequency. A plain value with its state. Thread: any.
#pragma once

#include <array>

namespace tobrin {

class Biquad {
 public:
  /// Coefficients of powers 0, -1 and -2 of z; all are divided by `a[0]`, which must not be 0.
  Biquad(const std::array<double, 3>& b, const std::array<double, 3>& a)
      : b0_(b[0] / a[0]), b1_(b[1] / a[0]), b2_(b[2] / a[0]), a1_(a[1] / a[0]), a2_(a[2] / a[0]) {}

  /// `frequency` and `rate` in Hz; frequencies above 0.45 of the rate count as 0.45 of it.
  static Biquad lowpass(double frequency, double q, double rate);
  static Biquad highpass(double frequency, double q, double rate);
  /// 0 dB at its centre.
  static Biquad bandpass(double frequency, double q, double rate);

  double process(double x) {
    const double y = b0_ * x + z1_;
    z1_ = b1_ * x - a1_ * y + z2_;
    z2_ = b2_ * x - a2_ * y;
    return y;
  }

 private:
  double b0_, b1_, b2_, a1_, a2_;
  double z1_ = 0, z2_ = 0;
};

}  // namespace tobrin
