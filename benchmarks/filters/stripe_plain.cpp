// Plain loops of the filters over a square window, as one would write them. Compiled by each compiler.
#include "filters/stripe_plain.h"

#include <cstddef>
#include <vector>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

using test::StripeArgs;

int clamped(int i, int count) { return i < 0 ? 0 : i < count ? i : count - 1; }

template <class D, class Sum>
D result(Sum sum) {
  if constexpr (sizeof(D) == 4)
    return sum;
  else
    return static_cast<D>(sum < -32768 ? -32768 : sum > 32767 ? 32767 : sum);
}

template <class D>
struct SumOf {
  using Type = int;
};
template <>
struct SumOf<float> {
  using Type = float;
};

template <int n, int order>
struct Kernel {
  int c[n] = {1};
  constexpr Kernel() {
    for (int pass = 0; pass < n - 1; ++pass) {
      const int sign = pass < n - 1 - order ? 1 : -1;
      for (int i = n - 1; i > 0; --i) c[i] = c[i - 1] + sign * c[i];
      c[0] *= sign;
    }
  }
};

// Weighted sums down the columns, then along the row: for a filter, or for the sum of two.
template <int n, int x1, int y1, int x2, int y2, class T, class D>
void separable(const StripeArgs<T, D>& a) {
  using Sum = typename SumOf<D>::Type;
  constexpr int half = n / 2;
  constexpr bool two = x1 != x2 || y1 != y2;
  static constexpr Kernel<n, x1> kx1;
  static constexpr Kernel<n, y1> ky1;
  static constexpr Kernel<n, x2> kx2;
  static constexpr Kernel<n, y2> ky2;
  const int width = a.roi->width, height = a.roi->height;
  static thread_local std::vector<Sum> first, second;
  first.resize(width + n);
  second.resize(width + n);
  Sum* __restrict s1 = first.data() + half;
  Sum* __restrict s2 = second.data() + half;
  for (int y = 0; y < height; ++y) {
    const T* rows[n];
    for (int k = 0; k < n; ++k) rows[k] = row(a.src, a.srcStep, clamped(y + k - half, height));
    for (int x = 0; x < width; ++x) {
      Sum sum1 = 0, sum2 = 0;
      for (int k = 0; k < n; ++k) sum1 += static_cast<Sum>(ky1.c[k]) * rows[k][x];
      for (int k = 0; two && k < n; ++k) sum2 += static_cast<Sum>(ky2.c[k]) * rows[k][x];
      s1[x] = sum1;
      if (two) s2[x] = sum2;
    }
    for (int i = 1; i <= half; ++i) {
      s1[-i] = s1[0], s1[width - 1 + i] = s1[width - 1];
      s2[-i] = s2[0], s2[width - 1 + i] = s2[width - 1];
    }
    D* __restrict dst = row(a.dst, a.dstStep, y);
    for (int x = 0; x < width; ++x) {
      Sum sum = 0;
      for (int k = 0; k < n; ++k) sum += static_cast<Sum>(kx1.c[k]) * s1[x + k - half];
      for (int k = 0; two && k < n; ++k) sum += static_cast<Sum>(kx2.c[k]) * s2[x + k - half];
      dst[x] = result<D>(sum);
    }
  }
}

// Integers: column sums that lose a row and gain a row, then the sum of n of them.
template <int n, class T>
void blur(const StripeArgs<T, int16_t>& a) {
  constexpr int half = n / 2;
  const int width = a.roi->width, height = a.roi->height;
  static thread_local std::vector<int16_t> buffer;
  buffer.assign(width + n, 0);
  int16_t* __restrict column = buffer.data() + half;
  for (int y = 0; y < height; ++y) {
    if (y == 0) {
      for (int k = -half; k <= half; ++k) {
        const T* in = row(a.src, a.srcStep, clamped(k, height));
        for (int x = 0; x < width; ++x) column[x] = static_cast<int16_t>(column[x] + in[x]);
      }
    } else {
      const T* in = row(a.src, a.srcStep, clamped(y + half, height));
      const T* out = row(a.src, a.srcStep, clamped(y - half - 1, height));
      for (int x = 0; x < width; ++x) column[x] = static_cast<int16_t>(column[x] + in[x] - out[x]);
    }
    for (int i = 1; i <= half; ++i)
      column[-i] = column[0], column[width - 1 + i] = column[width - 1];
    int16_t* __restrict dst = row(a.dst, a.dstStep, y);
    for (int x = 0; x < width; ++x) {
      int16_t sum = 0;
      for (int k = -half; k <= half; ++k) sum = static_cast<int16_t>(sum + column[x + k]);
      dst[x] = sum;
    }
  }
}

// Floats: the same running sums as the library's, row after row.
template <int n>
void running_blur(const StripeArgs<float, float>& a) {
  constexpr int half = n / 2;
  const int width = a.roi->width, height = a.roi->height;
  static thread_local std::vector<float> buffer;
  buffer.assign(static_cast<size_t>(width) * (n + 1), 0);
  float* column = buffer.data();
  const auto ring = [&](int y) { return buffer.data() + (1 + (y + n) % n) * width; };
  for (int y = 0; y < height + half; ++y) {
    float* __restrict h = ring(y);
    const float* __restrict old = h;
    const float* src = row(a.src, a.srcStep, clamped(y, height));
    static thread_local std::vector<float> sums;
    sums.resize(width);
    float* __restrict fresh = sums.data();
    double sum = (half + 1) * static_cast<double>(src[0]);
    for (int k = 1; k <= half; ++k) sum += src[clamped(k, width)];
    fresh[0] = static_cast<float>(sum);
    for (int x = 1; x < width; ++x) {
      sum = sum + src[clamped(x + half, width)] - src[clamped(x - half - 1, width)];
      fresh[x] = static_cast<float>(sum);
    }
    if (y == 0) {
      for (int x = 0; x < width; ++x) column[x] = (half + 1) * fresh[x];
      for (int k = -half; k < 0; ++k)
        for (int x = 0; x < width; ++x) ring(k)[x] = fresh[x];
      for (int x = 0; x < width; ++x) h[x] = fresh[x];
      continue;
    }
    for (int x = 0; x < width; ++x) {
      column[x] += fresh[x] - (y <= half ? 0.0f : old[x]);
      h[x] = fresh[x];
    }
    if (y < half) continue;
    float* dst = row(a.dst, a.dstStep, y - half);
    for (int x = 0; x < width; ++x) dst[x] = column[x];
  }
}

template <class T, class D>
StripeLoop<T, D> blur_of(int size) {
  if constexpr (sizeof(T) == 4)
    return size == 3 ? running_blur<3> : size == 5 ? running_blur<5> : running_blur<7>;
  else
    return size == 3 ? blur<3, T> : size == 5 ? blur<5, T> : blur<7, T>;
}
template <int x1, int y1, int x2, int y2, class T, class D>
StripeLoop<T, D> separable_of(int size) {
  return size == 3   ? separable<3, x1, y1, x2, y2, T, D>
         : size == 5 ? separable<5, x1, y1, x2, y2, T, D>
                     : separable<7, x1, y1, x2, y2, T, D>;
}

}  // namespace

template <class T, class D>
StripeLoop<T, D> plain_stripe(StripeFilter filter, int size) {
  switch (filter) {
    case StripeFilter::blur: return blur_of<T, D>(size);
    case StripeFilter::sobel: return separable_of<1, 0, 1, 0, T, D>(size);
    default: return separable_of<2, 0, 0, 2, T, D>(size);
  }
}
template StripeLoop<uint8_t, int16_t> plain_stripe<uint8_t, int16_t>(StripeFilter, int);
template StripeLoop<int8_t, int16_t> plain_stripe<int8_t, int16_t>(StripeFilter, int);
template StripeLoop<float, float> plain_stripe<float, float>(StripeFilter, int);

}  // namespace nuqi::bench::PLAIN_COMPILER
