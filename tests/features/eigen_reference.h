// The corner functions as they are defined: two Sobel filters, three box blurs, a formula for each pixel.
#pragma once

#include <cmath>
#include <vector>

#include "nuqi/nuqi.h"

namespace nuqi::test {

inline StatusCode public_sobel(const uint8_t* src, int32_t step, int16_t* dst, int32_t dst_step,
                               RoiSize* roi, ConvolState* state) {
  return nuqiSobel_8u16s_C1R(src, step, dst, dst_step, roi, state, 0);
}
inline StatusCode public_sobel(const int8_t* src, int32_t step, int16_t* dst, int32_t dst_step,
                               RoiSize* roi, ConvolState* state) {
  return nuqiSobel_8s16s_C1R(src, step, dst, dst_step, roi, state, 0);
}
inline StatusCode public_sobel(const float* src, int32_t step, float* dst, int32_t dst_step,
                               RoiSize* roi, ConvolState* state) {
  return nuqiSobel_32f_C1R(src, step, dst, dst_step, roi, state, 0);
}

// The sums over the window of dx * dx, dx * dy and dy * dy. The picture's rows lie back to back.
template <class T>
class EigenSums {
 public:
  EigenSums(const std::vector<T>& picture, RoiSize roi, int aperture, int window)
      : roi_(roi), window_(window) {
    const auto dx = derivative(picture, aperture, 1, 0), dy = derivative(picture, aperture, 0, 1);
    xx = blurred_product(dx, dx);
    xy = blurred_product(dx, dy);
    yy = blurred_product(dy, dy);
  }
  std::vector<float> xx, xy, yy;

 private:
  static constexpr int32_t kType = sizeof(T) == 1 ? 1 : 9;

  std::vector<float> derivative(const std::vector<T>& picture, int aperture, int x, int y) {
    using D = std::conditional_t<sizeof(T) == 1, int16_t, float>;
    std::vector<D> out(picture.size());
    ConvolState* state = nullptr;
    RoiSize roi = roi_;
    failed |= nuqiSobelInitAlloc(roi.width, kType, aperture, 0, x, y, &state);
    failed |= public_sobel(picture.data(), roi.width * int{sizeof(T)}, out.data(),
                           roi.width * int{sizeof(D)}, &roi, state);
    nuqiConvolFree(state);
    return {out.begin(), out.end()};
  }
  std::vector<float> blurred_product(const std::vector<float>& a, const std::vector<float>& b) {
    std::vector<float> product(a.size()), sums(a.size());
    for (size_t i = 0; i < a.size(); ++i)
      product[i] = static_cast<float>(static_cast<double>(a[i]) * static_cast<double>(b[i]));
    ConvolState* state = nullptr;
    RoiSize roi = roi_;
    failed |= nuqiBlurInitAlloc(roi.width, 9, window_, &state);
    failed |=
        nuqiBlur_32f_C1R(product.data(), 4 * roi.width, sums.data(), 4 * roi.width, &roi, state, 0);
    nuqiConvolFree(state);
    return sums;
  }

  RoiSize roi_;
  int window_;

 public:
  int failed = 0;
};

inline double eigen_scale(int aperture, int block) {
  double gain = 1;
  for (int i = 1; i < aperture; ++i) gain *= 2;
  return 1 / (gain * gain * 255 * block * block);
}

inline void push_minimum(std::vector<float>& out, double xx, double xy, double yy, double scale) {
  const double a = 0.5 * xx, b = xy, c = 0.5 * yy;
  const double squares = b * b + (a - c) * (a - c);
  out.push_back(static_cast<float>((a + c - std::sqrt(squares)) * scale));
}

inline void push_vectors(std::vector<float>& out, double xx, double xy, double yy, double scale) {
  const auto push = [&](double l1, double l2, double x1, double y1, double x2, double y2) {
    for (double value : {l1, l2, x1, y1, x2, y2}) out.push_back(static_cast<float>(value));
  };
  const double a = xx * scale, b = xy * scale, c = yy * scale;
  const double larger = a > c ? a : c, smaller = a < c ? a : c, limit = 0.01 * larger;
  if (smaller < limit) return push(0, 0, 0, 0, 0, 0);
  if (std::fabs(b) < limit) return push(a, c, 1, 0, 0, 1);
  const double ac = a * c, bb = b * b, d = ac - bb;
  if (d < limit) return push(0, 0, 0, 0, 0, 0);
  const double t = a + c, tt = t * t, root = std::sqrt(tt - 4 * d);
  const double l1 = (t + root) * 0.5, l2 = (t - root) * 0.5;
  const auto length = [&](double l) {
    const double ee = (l - a) * (l - a), n = std::sqrt(bb + ee);
    return n == 0 ? 0x1p-23 : n;
  };
  const double n1 = length(l1), n2 = length(l2);
  push(l1, l2, b / n1, (l1 - a) / n1, b / n2, (l2 - a) / n2);
}

}  // namespace nuqi::test
