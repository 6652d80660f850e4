// Plain corner functions, as one would write them: derivatives and products row by row, sums of a few
// product rows down the columns and then along the row, a formula for each pixel. Compiled by each
// compiler. In single precision, not bit for bit the library's sums.
#include "features/eigen_plain.h"

#include <cmath>
#include <vector>

#include "support/plain.h"

namespace nuqi::bench::PLAIN_COMPILER {
namespace {

int clamped(int i, int count) { return i < 0 ? 0 : i < count ? i : count - 1; }

constexpr int kSmooth[3][7] = {{1, 2, 1}, {1, 4, 6, 4, 1}, {1, 6, 15, 20, 15, 6, 1}};
constexpr int kDerive[3][7] = {{-1, 0, 1}, {-1, -2, 0, 2, 1}, {-1, -4, -5, 0, 5, 4, 1}};
constexpr int kEdge = 3;

// Both derivatives of row y, and their products.
template <class T, int n>
void products(const test::EigenArgs<T>& a, int y, float* const* columns, float* const* planes) {
  const int width = a.roi.width;
  const T* rows[n];
  for (int k = 0; k < n; ++k) rows[k] = row(a.src, a.srcStep, clamped(y + k - n / 2, a.roi.height));
  float* __restrict smooth = columns[0], * __restrict slope = columns[1];
  for (int x = 0; x < width; ++x) {
    float sums[2] = {};
    for (int k = 0; k < n; ++k) {
      sums[0] += static_cast<float>(kSmooth[n / 2 - 1][k] * rows[k][x]);
      sums[1] += static_cast<float>(kDerive[n / 2 - 1][k] * rows[k][x]);
    }
    smooth[x] = sums[0], slope[x] = sums[1];
  }
  for (int i = 1; i <= kEdge; ++i) {
    smooth[-i] = smooth[0], smooth[width - 1 + i] = smooth[width - 1];
    slope[-i] = slope[0], slope[width - 1 + i] = slope[width - 1];
  }
  float* __restrict xx = planes[0], * __restrict xy = planes[1], * __restrict yy = planes[2];
  for (int x = 0; x < width; ++x) {
    float dx = 0, dy = 0;
    for (int k = 0; k < n; ++k) {
      dx += static_cast<float>(kDerive[n / 2 - 1][k]) * smooth[x + k - n / 2];
      dy += static_cast<float>(kSmooth[n / 2 - 1][k]) * slope[x + k - n / 2];
    }
    xx[x] = dx * dx, xy[x] = dx * dy, yy[x] = dy * dy;
  }
}

void minimum(const float* const* sums, float* __restrict dst, int width, double scale) {
  const float* __restrict xx = sums[0], * __restrict xy = sums[1], * __restrict yy = sums[2];
  for (int x = 0; x < width; ++x) {
    const double a = 0.5 * xx[x], b = xy[x], c = 0.5 * yy[x];
    dst[x] = static_cast<float>((a + c - std::sqrt(b * b + (a - c) * (a - c))) * scale);
  }
}

void vectors(const float* const* sums, float* __restrict dst, int width, double scale) {
  for (int x = 0; x < width; ++x, dst += 6) {
    const double a = sums[0][x] * scale, b = sums[1][x] * scale, c = sums[2][x] * scale;
    const double limit = 0.01 * (a > c ? a : c), d = a * c - b * b;
    const auto write = [&](double l1, double l2, double x1, double y1, double x2, double y2) {
      const double all[6] = {l1, l2, x1, y1, x2, y2};
      for (int i = 0; i < 6; ++i) dst[i] = static_cast<float>(all[i]);
    };
    if ((a < c ? a : c) < limit) {
      write(0, 0, 0, 0, 0, 0);
    } else if (std::fabs(b) < limit) {
      write(a, c, 1, 0, 0, 1);
    } else if (d < limit) {
      write(0, 0, 0, 0, 0, 0);
    } else {
      const double t = a + c, root = std::sqrt(t * t - 4 * d);
      const double l1 = (t + root) * 0.5, l2 = (t - root) * 0.5;
      const double n1 = std::sqrt(b * b + (l1 - a) * (l1 - a));
      const double n2 = std::sqrt(b * b + (l2 - a) * (l2 - a));
      write(l1, l2, b / n1, (l1 - a) / n1, b / n2, (l2 - a) / n2);
    }
  }
}

template <class T, int n, int window, int values>
void eigen(const test::EigenArgs<T>& a) {
  const int width = a.roi.width, height = a.roi.height, half = window / 2;
  const int pitch = (width + 2 * kEdge + 31) / 16 * 16;
  static thread_local std::vector<float> memory;
  memory.resize(static_cast<size_t>(pitch) * (3 * window + 8) + 16);
  const auto line = [&](int i) { return memory.data() + 16 + static_cast<size_t>(pitch) * i; };
  float *const columns[2] = {line(0), line(1)}, *const down[3] = {line(2), line(3), line(4)};
  float* const along[3] = {line(5), line(6), line(7)};
  const auto plane = [&](int p, int y) { return line(8 + p * window + (y + window) % window); };
  double gain = 1 << (n - 1);
  const double scale = 1 / (gain * gain * 255 * a.block * a.block);
  for (int y = 0; y < height && y < half; ++y) {
    float* const planes[3] = {plane(0, y), plane(1, y), plane(2, y)};
    products<T, n>(a, y, columns, planes);
  }
  for (int y = 0; y < height; ++y) {
    if (y + half < height) {
      float* const planes[3] = {plane(0, y + half), plane(1, y + half), plane(2, y + half)};
      products<T, n>(a, y + half, columns, planes);
    }
    for (int p = 0; p < 3; ++p) {
      const float* rows[window];
      for (int k = 0; k < window; ++k) rows[k] = plane(p, clamped(y + k - half, height));
      float* __restrict sums = down[p];
      for (int x = 0; x < width; ++x) {
        float sum = 0;
        for (int k = 0; k < window; ++k) sum += rows[k][x];
        sums[x] = sum;
      }
      for (int i = 1; i <= half; ++i) sums[-i] = sums[0], sums[width - 1 + i] = sums[width - 1];
      float* __restrict out = along[p];
      for (int x = 0; x < width; ++x) {
        float sum = 0;
        for (int k = -half; k <= half; ++k) sum += sums[x + k];
        out[x] = sum;
      }
    }
    (values == 1 ? minimum : vectors)(along, row(a.dst, a.dstStep, y), width, scale);
  }
}

template <class T, int n, int window>
EigenLoop<T> of_values(int values) {
  return values == 1 ? eigen<T, n, window, 1> : eigen<T, n, window, 6>;
}
template <class T, int n>
EigenLoop<T> of_window(int values, int window) {
  return window == 3   ? of_values<T, n, 3>(values)
         : window == 5 ? of_values<T, n, 5>(values)
                       : of_values<T, n, 7>(values);
}

}  // namespace

template <class T>
EigenLoop<T> plain_eigen(int values, int aperture, int window) {
  return aperture == 3   ? of_window<T, 3>(values, window)
         : aperture == 5 ? of_window<T, 5>(values, window)
                         : of_window<T, 7>(values, window);
}
template EigenLoop<uint8_t> plain_eigen<uint8_t>(int, int, int);
template EigenLoop<int8_t> plain_eigen<int8_t>(int, int, int);
template EigenLoop<float> plain_eigen<float>(int, int, int);

}  // namespace nuqi::bench::PLAIN_COMPILER
