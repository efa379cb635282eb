// Estimate-mode plans: at N <= 1024 measuring would cost more than every frame it could save.
#include "controls/spectrum.h"

#include <fftw3.h>

namespace merida {

struct Spectrum::Plans {
  explicit Plans(int points)
      : buffer(static_cast<fftwf_complex*>(fftwf_malloc(sizeof(fftwf_complex) * static_cast<size_t>(points)))) {
    const int n = points;
    forwardPlan = fftwf_plan_dft_1d(n, buffer, buffer, FFTW_FORWARD, FFTW_ESTIMATE);
    inversePlan = fftwf_plan_dft_1d(n, buffer, buffer, FFTW_BACKWARD, FFTW_ESTIMATE);
  }
  ~Plans() {
    fftwf_destroy_plan(forwardPlan);
    fftwf_destroy_plan(inversePlan);
    fftwf_free(buffer);
  }
  Plans(const Plans&) = delete;
  Plans& operator=(const Plans&) = delete;

  fftwf_complex* buffer;
  fftwf_plan forwardPlan = nullptr, inversePlan = nullptr;
};

Spectrum::Spectrum() = default;
Spectrum::~Spectrum() = default;

Spectrum::Plans* Spectrum::forward(int n, const float* re, const float* im) {
  if (n < 1 || n > kMaxPoints || (n & (n - 1)) != 0) return nullptr;
  std::unique_ptr<Plans>& p = plans_[n];
  if (!p) p = std::make_unique<Plans>(n);
  for (int k = 0; k < n; ++k) {
    p->buffer[k][0] = re[k];
    p->buffer[k][1] = im[k];
  }
  fftwf_execute(p->forwardPlan);
  const float scale = 1.0f / static_cast<float>(n);
  for (int k = 0; k < n; ++k) {
    p->buffer[k][0] *= scale;
    p->buffer[k][1] *= scale;
  }
  return p.get();
}

bool Spectrum::Fourier(int n, float* re, float* im) {
  Plans* p = forward(n, re, im);
  if (!p) return false;
  for (int k = 0; k < n; ++k) {
    re[k] = p->buffer[k][0];
    im[k] = p->buffer[k][1];
  }
  return true;
}

bool Spectrum::Power(int n, float* re, float* im) {
  Plans* p = forward(n, re, im);
  if (!p) return false;
  for (int k = 0; k < n; ++k) {
    re[k] = p->buffer[k][0] * p->buffer[k][0] + p->buffer[k][1] * p->buffer[k][1];
    im[k] = 0;
  }
  return true;
}

bool Spectrum::Autocorrelation(int n, float* re, float* im) {
  Plans* p = forward(n, re, im);
  if (!p) return false;
  for (int k = 0; k < n; ++k) {
    p->buffer[k][0] = p->buffer[k][0] * p->buffer[k][0] + p->buffer[k][1] * p->buffer[k][1];
    p->buffer[k][1] = 0;
  }
  fftwf_execute(p->inversePlan);
  for (int k = 0; k < n; ++k) {
    re[k] = p->buffer[k][0];
    im[k] = 0;
  }
  return true;
}

}  // namespace merida
