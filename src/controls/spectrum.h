// The spectrum component: three in-place operations on one frame of N single-precision
// samples (real and imaginary arrays), each a radix-2 FFT of N points on FFTW.
//
//   Fourier          X[k] = (1/N) * sum_n x[n] * exp(-2*pi*i*k*n/N)   (re, im := X)
//   Power            P[k] = |X[k]|^2                                   (re := P, im := 0)
//   Autocorrelation  r[m] = sum_k P[k] * exp(+2*pi*i*k*m/N)
//                         = (1/N) * sum_n x[n] * conj(x[(n+m) mod N])  (re := r, im := 0)
//
// The 1/N on the forward transform makes a sine of amplitude A show A/2 at its frequency and
// its mirror, and r[0] the mean power of the frame. N must be a power of two from 1 to 1024;
// anything else returns false and leaves the arrays alone. A plan and its buffer are made once
// per N and reused: a frame allocates nothing.
#pragma once

#include <map>
#include <memory>

namespace merida {

class Spectrum {
 public:
  Spectrum();
  ~Spectrum();
  Spectrum(const Spectrum&) = delete;
  Spectrum& operator=(const Spectrum&) = delete;

  bool Fourier(int n, float* re, float* im);
  bool Power(int n, float* re, float* im);
  bool Autocorrelation(int n, float* re, float* im);

  static constexpr int kMaxPoints = 1024;

 private:
  struct Plans;
  // The forward transform scaled by 1/N into the plan's buffer; null when n is unusable.
  Plans* forward(int n, const float* re, const float* im);
  std::map<int, std::unique_ptr<Plans>> plans_;
};

}  // namespace merida
